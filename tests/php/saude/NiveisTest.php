<?php

// Where each level begins, to the second, the message and the byte: the checks as functions of what was seen.

declare(strict_types=1);

namespace Vorna\Mrel\Testes\Saude;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Saude\{Andamento, Arquivos, Instalacao, Registro, Rotacao, Trafego, Verificacao};
use Vorna\Mrel\Testes\Arvore;
use Vorna\Mrel\Trava;

final class NiveisTest extends TestCase
{
    /** @param array<string, Verificacao> $casos under "level, what" */
    private static function confere(array $casos): void
    {
        foreach ($casos as $caso => $v) {
            self::assertSame(explode(',', $caso)[0], $v->nivel->value, "$caso: {$v->texto('pt')}");
        }
    }

    private static function agora(string $quando, string $fuso = 'America/Sao_Paulo'): \DateTimeImmutable
    {
        return new \DateTimeImmutable($quando, new \DateTimeZone($fuso));
    }

    public function testAndamento(): void
    {
        $ponto = fn (string $dia, string $agora): Verificacao => Andamento::ponto($dia, self::agora($agora));
        $fuso = fn (string $dia, string $inicio, string $nome): Verificacao =>
            Andamento::fuso([$dia => self::agora("$dia $inicio", $nome)->getTimestamp()], new \DateTimeZone($nome));
        self::confere([
            'ok, today' => $ponto('2026-03-12', '2026-03-12 23:59:59'),
            'ok, a day behind before seven' => $ponto('2026-03-11', '2026-03-12 06:59:59'),
            'aviso, a day behind' => $ponto('2026-03-11', '2026-03-12 07:00:00'),
            'critico, two days' => $ponto('2026-03-10', '2026-03-12 00:00:00'),
            'critico, tomorrow' => $ponto('2026-03-13', '2026-03-12 23:59:59'),
            'ok, over a year' => $ponto('2026-12-31', '2027-01-01 06:00'),
            'desconhecido, no day' => Andamento::dias(null, [], '2026-03-12'),
            'ok, midnight' => $fuso('2026-03-12', '00:00', 'America/Sao_Paulo'),
            'aviso, an hour off' => $fuso('2026-03-12', '01:00', 'America/Sao_Paulo'),
            // Clocks went on at midnight: the day began at one, its files at what would have been midnight.
            'ok, a midnight that was skipped' => $fuso('2017-10-15', '00:00', 'America/Sao_Paulo'),
            'aviso, two hours off that day' => $fuso('2017-10-15', '03:00', 'America/Sao_Paulo'),
        ]);
        self::assertSame(['2026-02-28', '2026-03-02'], Andamento::faltam('2026-02-27', '2026-03-03', ['2026-02-27', '2026-03-01', '2026-03-09']));
    }

    public function testInstalacao(): void
    {
        $trava = fn (...$a): Verificacao => Instalacao::trava(...[...$a, '/tmp/x.lck']);
        $espaco = fn (int $livre): Verificacao => Instalacao::espaco($livre, 1000, '/dados');
        self::confere([
            'critico, no module' => Instalacao::modulo(null, '1.0'),
            'aviso, another version' => Instalacao::modulo('0.9', '1.0'),
            'aviso, no version' => Instalacao::modulo('', '1.0'),
            'ok, the same' => Instalacao::modulo('1.0', '1.0'),
            'ok, no file' => $trava(null, null, 7),
            'ok, an hour' => $trava([9, 3600, '9 (php)'], [true, 7], 7),
            'critico, longer' => $trava([9, 3601, '9 (php)'], [true, 7], 7),
            'critico, of root' => $trava(null, [true, 0], 7),
            'ok, root consolidates' => $trava(null, [true, 7], 0),
            'ok, nobody known' => $trava(null, [true, 0], null),
            'critico, a link' => $trava(null, [false, 7], 7),
            'ok, 14 days' => $espaco(14000),
            'aviso, 13 days' => $espaco(13999),
            'aviso, a day' => $espaco(1000),
            'critico, less' => $espaco(999),
            'ok, a day of nothing' => Instalacao::espaco(1 << 20, 0, '/dados'),
        ]);
    }

    public function testTrafego(): void
    {
        $volume = fn (int $n, int ...$antes): Verificacao => Trafego::volume('2026-03-12', $n, $antes);
        $abuso = fn (int $agora, int $antes, int $dias = 28): Verificacao =>
            Trafego::abuso(['ana' => $agora, 'rui' => 3], array_filter(['ana' => $antes]), $dias, 500);
        self::confere([
            'ok, half' => $volume(50, 90, 100, 100, 1000),
            'aviso, less than half' => $volume(49, 90, 100, 100, 1000),
            'ok, twice' => $volume(200, 90, 100, 100, 1000),
            'aviso, more than twice' => $volume(201, 90, 100, 100, 1000),
            'ok, median of two' => $volume(60, 40, 200),
            'ok, nothing before' => $volume(5),
            'aviso, empty and nothing before' => $volume(0),
            'aviso, empty' => $volume(0, 1, 1, 1, 1),
            'ok, empty as always' => $volume(0, 0, 0),
            'ok, 500 an hour' => $abuso(500, 100),
            'aviso, 501' => $abuso(501, 501),
            'ok, ten times' => $abuso(60, 6),
            'aviso, more than ten times' => $abuso(61, 6),
            'ok, not above 50' => $abuso(50, 1),
            'aviso, 51' => $abuso(51, 1),
            'aviso, never sent before' => $abuso(51, 0, 7),
            'ok, too few days to say' => $abuso(51, 0, 6),
        ]);
        $muitos = Trafego::abuso(['a' => 501, "b\xE9" => 900, 'c' => 600, 'd' => 502], [], 28, 500);
        self::assertSame('Enviam demais: bé, 900 numa hora (antes até 0); c, 600 numa hora (antes até 0); '
            . 'd, 502 numa hora (antes até 0) e mais 1.', $muitos->texto('pt'));
    }

    public function testArquivos(): void
    {
        self::confere([
            'ok, one owner' => Arquivos::leitura(['/d/a' => [true, 5], '/d/b' => [true, 5]]),
            'aviso, another' => Arquivos::leitura(['/d/a' => [true, 5], '/d/b' => [true, 5], '/d/c' => [true, 0]]),
            'critico, unreadable' => Arquivos::leitura(['/d/a' => [true, 5], '/d/b' => [false, 0]]),
        ]);
        $certas = ['0 1 1 A1 INTERNO  10', '6ae 2 10 A1 ', '6ae 2 10 A1 550 a b c', '6ae 2  RETRY_DEST x', '6ae 3 3 (null)',
            '6ae 0 qualquer coisa', '6ae 1 2 A1 a@x', '6ae 2 18 A1', "6ae 1 "];
        $erradas = ['', '6ae', '6AE 1 1 A1 INTERNO a 10', '6ae 4 2 A1 a', '6ae 1 1 A1 INTERNO a', '6ae 2 2 A1', '6ae 2 4 A1 x',
            '6ae68000f 1 4 A1', ' 1 4 A1'];
        self::assertSame($certas, array_values(array_filter($certas, Arquivos::evento(...))));
        self::assertSame([], array_filter($erradas, Arquivos::evento(...)));
    }

    /** Which logs the next run reads, by when they begin and end. */
    public function testRotacao(): void
    {
        $logs = function (string $vivo, string $outros = '', string $agora = '10:00', ?string $ponto = '2026-03-12'): Verificacao {
            $registros = [];
            foreach (array_filter([$vivo, ...explode(';', $outros)]) as $i => $de) {
                [$inicio, $fim] = explode(' a ', $de);
                $registros[] = new Registro($i ? "LOG.$i" : 'LOG', $i === 0, 1, "2026-03-$inicio", "2026-03-$fim");
            }
            return Rotacao::logs($registros, $ponto, self::agora("2026-03-12 $agora"));
        };
        $hoje = '12 00:00:03 a 12 09:00:00';
        self::confere([
            'ok, nightly' => $logs($hoje, '11 00:00:02 a 12 00:00:02;10 00:00:04 a 11 00:00:01'),
            'ok, never rotated' => $logs('01 08:00:00 a 12 09:00:00'),
            'ok, a minute late' => $logs($hoje, '11 00:00:02 a 12 00:01:00'),
            'critico, more than a minute' => $logs($hoje, '11 00:00:02 a 12 00:01:01'),
            'critico, from the midnight itself' => $logs('12 10:00:00 a 12 11:00:00', '12 00:00:00 a 12 09:59:00'),
            'ok, a second later' => $logs('12 10:00:00 a 12 11:00:00', '12 00:00:01 a 12 09:59:00'),
            'critico, before midnight' => $logs('11 23:59:58 a 12 09:00:00', '12 09:00:05 a 12 09:30:00'),
            'aviso, a copy of the live one' => $logs('01 08:00:00 a 12 09:00:00', '01 08:00:00 a 12 08:00:00'),
            'critico, days to come without a log' => $logs('12 00:00:03 a 12 09:00:00', '10 00:00:02 a 10 23:59:59', ponto: '2026-03-11'),
            'critico, none of the point' => $logs('12 00:00:03 a 12 09:00:00', ponto: '2026-03-11'),
            'ok, before the run of the night' => $logs('12 00:00:03 a 12 00:05:00', '11 00:00:03 a 12 00:00:02', '00:05', '2026-03-11'),
            'aviso, a hole in what was done' => $logs($hoje, '08 00:00:02 a 09 00:00:02;11 00:00:02 a 12 00:00:02'),
            'aviso, a first run with a hole' => $logs($hoje, '08 00:00:02 a 09 00:00:02', ponto: null),
            'aviso, overlap' => $logs($hoje, '10 00:00:02 a 11 05:00:00;11 00:00:02 a 12 00:00:02'),
        ]);
        // The night on which clocks go back an hour at midnight repeats it.
        $volta = [new Registro('LOG.1', false, 1, '2018-02-17 00:00:02', '2018-02-17 23:59:59'),
            new Registro('LOG', true, 1, '2018-02-17 23:00:01', '2018-02-18 09:00:00')];
        self::confere(['ok, clocks' => Rotacao::logs($volta, '2018-02-17', self::agora('2018-02-18 06:00'))]);
        $vazio = [new Registro('LOG', true, 0, null, '2026-03-12 00:00:02'), new Registro('LOG.1', false, 9, '2026-03-11 00:00:05', '2026-03-12 00:00:01')];
        self::confere([
            'aviso, a quiet night' => Rotacao::logs($vazio, '2026-03-11', self::agora('2026-03-12 06:59')),
            'critico, a quiet morning' => Rotacao::logs($vazio, '2026-03-11', self::agora('2026-03-12 07:00')),
        ]);
    }

    public function testDonoDaTrava(): void
    {
        self::assertNull(Trava::donoComIdade());
        $raiz = new Arvore();
        $codigo = '$m = new vt_mrel(); $m->setLogDir("/nao"); $m->setDataDir("' . $raiz->dados . '/d");
            $m->consolidate("' . $raiz->dados . '/p"); echo "tem\n"; fgets(STDIN);';
        $p = proc_open([PHP_BINARY, '-n', '-d', 'extension=' . getenv('VT_EXTENSAO'), '-r', $codigo], [['pipe', 'r'], ['pipe', 'w']], $canos);
        self::assertSame("tem\n", fgets($canos[1]));
        [$pid, $idade, $quem] = Trava::donoComIdade();
        self::assertSame([proc_get_status($p)['pid'], true], [$pid, $idade >= 0 && $idade < 60]);
        self::assertStringStartsWith("$pid (php", $quem);
        self::assertSame([true, posix_getuid()], Trava::arquivo());
        fclose($canos[0]);
        proc_close($p);
    }
}
