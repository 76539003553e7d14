<?php

// Logs that were compressed or rotated oddly, joined: the day files are those of one log that was never cut.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;

final class JuntarTest extends TestCase
{
    private const LOG = 'MAIL_DISPATCHER.LOG';

    private static string $um;
    private Arvore $arvore;
    private string $raiz;

    public static function setUpBeforeClass(): void
    {
        self::$um = implode('', array_map([Despachante::class, 'dia'], [-3, -2, -1, 0], [24, 24, 24, 1]));
    }

    protected function setUp(): void
    {
        $this->arvore = new Arvore('UTC');
        $this->raiz = $this->arvore->dados;
    }

    /** @return list<string> the one log cut before the first line at or after each of these local times, "-2 12:00" */
    private static function cortado(string ...$onde): array
    {
        $partes = [];
        $resto = self::$um;
        foreach ($onde as $quando) {
            [$dia, $hora] = explode(' ', $quando);
            $corte = strtotime("today UTC $dia days $hora");
            for ($lugar = 0; strtotime(substr($resto, $lugar, 24) . ' UTC') < $corte;) {
                $lugar = strpos($resto, "\n", $lugar) + 1;
            }
            $partes[] = substr($resto, 0, $lugar);
            $resto = substr($resto, $lugar);
        }
        return [...$partes, $resto];
    }

    /** @return array<string, array<string, string>> bytes by name, the last part the live log, by what is odd */
    private static function rodizios(): array
    {
        $gz = static fn (string $texto): string => gzencode($texto, 6);
        $nomes = static fn (array $partes): array => array_combine(
            array_map(static fn (int $n): string => self::LOG . ($n ? ".$n" : ''), range(count($partes) - 1, 0)),
            $partes
        );
        $dias = self::cortado('-2 00:00', '-1 00:00', '0 00:00');
        [$a, $b, $c, $vivo] = $dias;
        $comprimidos = [self::LOG . '-3.gz' => $gz($a), self::LOG . '-2.gz' => $gz($b), self::LOG . '-1.gz' => $gz($c), self::LOG => $vivo];
        return [
            'compressed' => $comprimidos,
            'in two pieces, padded' => [self::LOG . '-2.gz' => $gz(substr($b, 0, 999)) . $gz(substr($b, 999)) . str_repeat("\0", 512)] + $comprimidos,
            'at midday' => $nomes(self::cortado('-3 12:00', '-2 12:00', '-1 12:00')),
            'before midnight' => $nomes(self::cortado('-3 23:40', '-2 23:40', '-1 23:40')),
            'missed for a day' => $nomes(self::cortado('-2 00:00', '0 00:00')),
            'never' => [self::LOG => self::$um],
            'within a line' => $nomes([$a, substr($b, 0, -70), substr($b, -70) . $c, $vivo]),
            'plain beside its own .gz' => [self::LOG . '.1' => $c] + $comprimidos,
            'while it is compressed' => [self::LOG . '.1' => $c, self::LOG . '-1.gz' => substr($gz($c), 0, 400)] + $comprimidos,
            'copied, not truncated' => [self::LOG . '.1' => substr(self::$um, 0, -500), self::LOG => self::$um],
            'copied, not truncated, twice' => [self::LOG . '.1' => substr(self::$um, 0, -500), self::LOG . '.2.gz' => $gz($a), self::LOG => self::$um],
            'beside what is no log' => [self::LOG . '.sum' => "d41d8cd98f00  x\n", self::LOG . '.0' => ''] + $comprimidos,
        ];
    }

    private function consolida(array $logs, ?int $ponto, string ...$mais): Vtmrel
    {
        is_dir("$this->raiz/r") && Arvore::apaga("$this->raiz/r");
        mkdir("$this->raiz/r/logs", 0755, true);
        foreach ($logs as $nome => $bytes) {
            file_put_contents("$this->raiz/r/logs/$nome", $bytes);
        }
        $ponto === null
            || file_put_contents("$this->raiz/r/ponto", gmdate('\1 D M d H:i:s Y', strtotime("today UTC $ponto days")) . "\n");
        return Vtmrel::roda(['consolida', "--dados=$this->raiz/r/dat", "--logs=$this->raiz/r/logs", "--ponto=$this->raiz/r/ponto",
            '--fuso=UTC', '--formato=json', '--lingua=pt', ...$mais]);
    }

    /** @return array<string, string> bytes by path, of all that is there but the logs */
    private function tudo(): array
    {
        $tudo = [];
        foreach (new \RecursiveIteratorIterator(new \RecursiveDirectoryIterator("$this->raiz/r", \FilesystemIterator::SKIP_DOTS)) as $f) {
            str_contains((string) $f, '/logs/') || $tudo[(string) $f] = file_get_contents((string) $f);
        }
        ksort($tudo);
        return $tudo;
    }

    public function testComoUmSo(): void
    {
        foreach ([null, -3, -2, -1] as $ponto) {
            self::assertSame(0, $this->consolida([self::LOG => self::$um], $ponto)->codigo);
            $certo = $this->tudo();
            self::assertCount(2 * -($ponto ?? -3) + 1, $certo);
            foreach (self::rodizios() as $nome => $logs) {
                $r = $this->consolida($logs, $ponto, '--juntar');
                self::assertSame(0, $r->codigo, "$nome: $r->erros");
                self::assertSame($certo, $this->tudo(), "$nome, point " . ($ponto ?? 'none'));
                self::assertFileDoesNotExist("$this->raiz/r/dat.juntos");
                self::assertMatchesRegularExpression('/^vtmrel: juntando \d logs, que ocupam até [\d,]+ K?B .* livres\.\n$/', $r->erros);
            }
        }
        // Up to this moment as well.
        self::assertSame(0, $this->consolida([self::LOG => self::$um], -1, '--ate-agora')->codigo);
        $certo = $this->tudo();
        self::assertSame(0, $this->consolida(self::rodizios()['at midday'], -1, '--ate-agora', '--juntar')->codigo);
        self::assertSame($certo, $this->tudo());
    }

    /** A log that cannot be read to its end would be mail that is missing. */
    public function testRecusa(): void
    {
        $logs = self::rodizios()['compressed'];
        $gz = $logs[self::LOG . '-2.gz'];
        $estragado = $gz;
        $estragado[300] = chr(ord($gz[300]) ^ 255);
        $casos = [
            'está cortado' => [self::LOG . '-2.gz' => substr($gz, 0, -4)],
            'LOG-2.gz está cortado' => [self::LOG . '-2.gz' => $estragado],
            'LOG.9.xz não é texto' => [self::LOG . '.9.xz' => "\xFD7zXZ\0..."],
            'Falta o log' => array_fill_keys(array_keys($logs), ''),
        ];
        foreach ($casos as $frase => $mudados) {
            $r = $this->consolida($mudados + $logs, -3, '--juntar');
            self::assertSame(1, $r->codigo, $frase);
            self::assertStringContainsString($frase, json_decode($r->saida, true)['motivo']);
            self::assertSame(['ponto'], array_map('basename', array_keys($this->tudo())), $frase);
            self::assertFileDoesNotExist("$this->raiz/r/dat.juntos", $frase);
        }
        // Nothing to do: nothing is joined.
        $r = $this->consolida($logs, 0, '--juntar');
        self::assertSame([0, ''], [$r->codigo, $r->erros]);
    }

    /** Ended from outside while it joins or consolidates, it leaves nothing of its own behind. */
    public function testInterrompida(): void
    {
        $this->consolida(self::rodizios()['compressed'], -3);
        unlink("$this->raiz/r/ponto");
        foreach ([SIGTERM, SIGINT] as $sinal) {
            file_put_contents("$this->raiz/r/logs/" . self::LOG . '.4', str_repeat(Despachante::dia(-2), 4000));
            $processo = proc_open([Vtmrel::PROGRAMA, 'consolida', '--juntar', "--dados=$this->raiz/r/dat", "--logs=$this->raiz/r/logs",
                "--ponto=$this->raiz/r/ponto", '--fuso=UTC'], [1 => ['file', '/dev/null', 'w'], 2 => ['file', '/dev/null', 'w']], $canos);
            for ($i = 0; $i < 500 && !file_exists("$this->raiz/r/dat.juntos/" . self::LOG); ++$i) {
                usleep(5000);
            }
            self::assertFileExists("$this->raiz/r/dat.juntos/" . self::LOG);
            proc_terminate($processo, $sinal);
            self::assertSame(1, proc_close($processo));
            self::assertFileDoesNotExist("$this->raiz/r/dat.juntos");
        }
    }
}
