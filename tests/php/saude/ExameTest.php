<?php

// The statistics counted over again: what the engine wrote is right however it ran, and no damage goes unseen.

declare(strict_types=1);

namespace Vorna\Mrel\Testes\Saude;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Saude\{Examinador, Nivel, Presas, Verificacao};
use Vorna\Mrel\Testes\Vtmrel;

final class ExameTest extends TestCase
{
    /** @return array<string, Verificacao> those that are not well, by name; "somas" in any case */
    private static function examina(Mes $mes): array
    {
        clearstatcache();
        $r = (new Examinador($mes->relay(), $mes->agora()))->resultado();
        self::assertSame(Examinador::TODAS, array_map(fn ($v) => $v->nome, $r->verificacoes));
        $viu = [];
        foreach ($r->verificacoes as $v) {
            if ($v->nivel !== Nivel::Ok || $v->nome === 'somas') {
                $viu[$v->nome] = $v;
            }
        }
        return $viu;
    }

    private static function confere(array $viu, string $somas, string $texto, array $outras = [], string $caso = ''): void
    {
        $detalhes = implode("\n", $viu['somas']->detalhes('pt'));
        $tudo = $caso . ': ' . implode("\n", array_map(fn ($v) => $v->texto('pt'), $viu)) . "\n$detalhes";
        self::assertSame($somas, $viu['somas']->nivel->value, $tudo);
        self::assertStringContainsString($texto, $viu['somas']->texto('pt') . "\n$detalhes", $tudo);
        $niveis = array_map(fn ($v) => $v->nivel->value, array_diff_key($viu, ['somas' => 1]));
        self::assertSame($outras, $niveis, $tudo);
    }

    /** Every figure of the month, exactly, when one run did all of it. */
    public function testUmaExecucao(): void
    {
        $viu = self::examina(Mes::copia());
        self::confere($viu, 'ok', 'As estatísticas de 31 dias são as dos eventos.');
        self::assertSame([], $viu['somas']->detalhes('pt'));
    }

    /** Events in any order, of few messages, over three midnights: to the last figure as the engine counts them. */
    public function testAoAcaso(): void
    {
        $mes = Mes::copia();
        $eventos = ['MAILQ SUBMIT Msg %1$s de %4$s remetente %2$s com %5$d bytes', 'MAILQ SUBMIT Msg %1$s de %4$s remetente com %5$d bytes',
            'MAILQ DELIVER Msg %1$s', 'MAILSMTP DELIVER Msg %1$s', 'MAILQ OK Msg %1$s para %2$s', 'MAILSMTP OK Msg %1$s para %2$s',
            'MAILSMTP OK Msg %1$s para %2$s', 'MAILSMTP OK Msg %1$s para semarroba', 'MAILQ END Msg %1$s', 'MAILSMTP END Msg %1$s',
            'MAILSMTP ERROR_CONNECT Msg %1$s a em %3$s', 'MAILSMTP ERROR_SENDER Msg %1$s a b c d %3$s', 'MAILSMTP ERROR_DEST Msg %1$s a %2$s',
            'MAILSMTP ERROR_FINAL Msg %1$s 550 5.1.1 nao, nao e nao, nunca mais aqui', 'MAILSMTP ERROR_DATA Msg %1$s', 'MAILSMTP ERROR_HELO Msg %1$s a %3$s',
            'MAILSMTP ERROR_SIZE Msg %1$s', 'MAILSMTP ERROR_DOMAIN Msg %1$s Dominio %3$s', 'MAILSMTP RETRY_DEST Msg %1$s %2$s', 'ANTIVIRUS VIRUS Msg %1$s',
            'SPAMCATCHER TAGGED Msg %1$s', 'POPSRV READ Msg %1$s', 'POPSRV QUIT Msg %1$s'];
        foreach ([1 => 2500, 2 => 400, 3 => 90] as $semente => $passo) {
            mt_srand($semente);
            array_map('unlink', glob("$mes->raiz/{logs/*,dat/rels*/*,ponto}", GLOB_BRACE));
            $log = '';
            for ($t = strtotime('2026-08-31 00:00:01 -03:00'); $t < strtotime('2026-09-03 06:00 -03:00'); $t += mt_rand(0, 90)) {
                $quando = (new \DateTimeImmutable("@$t"))->setTimezone($mes->relay()->fuso);
                // New messages all the time, each of which lives for a day or two; some have ids that are too long.
                $n = intdiv($t, $passo) - mt_rand(0, intdiv(150000, $passo));
                $id = "M$n" . ($n % 9 === 0 ? str_repeat('x', 20) : '');
                $log .= $quando->format('D M ') . sprintf('%2d', $quando->format('j')) . $quando->format(' H:i:s Y') . ': 09 '
                    . sprintf($eventos[mt_rand(0, count($eventos) - 1)], $id, 'u' . mt_rand(0, 9) . '@d' . mt_rand(0, 2), 'd' . mt_rand(0, 2),
                        ['INTERNO', 'SMTPCONNINT', 'SMTPCONNEXT'][mt_rand(0, 2)], mt_rand(0, 2000000000)) . "\n";
            }
            file_put_contents($mes->log(), $log);
            Mes::consolida($mes->raiz);
            $viu = self::examina($mes);
            self::assertMatchesRegularExpression(
                '/^[1-9]\d* contas de bytes recomeçaram do zero\.$/',
                $viu['somas']->texto('pt'),
                "semente $semente: " . implode("\n", $viu['somas']->detalhes('pt'))
            );
        }
    }

    /** A run a night: what the point's file loses of messages in flight is explained, and there is little of it. */
    public function testPorNoite(): void
    {
        $mes = Mes::copia()->porNoite();
        $viu = self::examina($mes);
        self::confere($viu, 'ok', 'As estatísticas de 31 dias são as dos eventos.');
        self::assertLessThan(4, count($viu['somas']->detalhes('pt')));
        // Nothing is explained away: a figure of a message that was submitted and ended within its day.
        Mes::troca($mes->arquivo('mail_stat_01'), ['/^(\S+@metalurgica\S+ )([1-9])( \d+ 0 0 )/m' => '${1}9$2$3']);
        self::confere(self::examina($mes), 'critico', ' h, enviadas: 9', caso: 'noite');
    }

    /** A day that was done twice, since the live log had no line of the next day. */
    public function testDiaRepetido(): void
    {
        $mes = Mes::copia();
        $linhas = file($mes->log());
        $ontem = file($mes->rodado(Mes::ONTEM));
        unlink($mes->rodado(Mes::ONTEM));
        unlink("$mes->raiz/ponto");
        file_put_contents($mes->log(), implode('', array_slice($ontem, 0, intdiv(count($ontem), 2))));
        Mes::consolida($mes->raiz);
        file_put_contents($mes->log(), implode('', [...$ontem, ...$linhas]));
        Mes::consolida($mes->raiz);
        rename($mes->log(), $mes->rodado(Mes::ONTEM));
        file_put_contents($mes->rodado(Mes::ONTEM), implode('', $ontem));
        file_put_contents($mes->log(), implode('', $linhas));
        self::confere(self::examina($mes), 'ok', 'As estatísticas de 31 dias', caso: 'repetido');
    }

    /** The first days are gone: messages of which nobody knows the submission. */
    public function testSemOsPrimeirosDias(): void
    {
        $mes = Mes::copia();
        foreach (glob("$mes->raiz/dat/rels_08-26/*_{0,1}?.txt", GLOB_BRACE) as $arquivo) {
            unlink($arquivo);
        }
        self::confere(self::examina($mes), 'ok', 'As estatísticas de 14 dias');
    }

    public function testDanos(): void
    {
        $falhas = [
            'total' => ['mail_stat_01', ['/^((?:\d+ ){8})(\d+)/' => '${1}9$2'], 'critico', 'externas: 9'],
            'bytes do total' => ['mail_stat_01', ['/^((?:\d+ ){7})(\d+)/' => '${1}9$2'], 'critico', 'bytes_internas: 9'],
            'um usuario' => ['mail_stat_01', ['/^(\S+@metalurgica\S+ 0 0 )(\d+)/m' => '${1}9$2'], 'critico', ' h, recebidas: 9'],
            'linha de usuario a menos' => ['mail_stat_01', ['/^\S+@metalurgica\S+ 0 0 \d.*\n/m' => ''], 'critico', ' h, recebidas: 0 nas'],
            'linha de usuario a mais' => ['mail_stat_01', ['/\z/' => "zeca@x.example 0 0 3 30 0 0 0 0\n"], 'critico', 'zeca@x.example, 23 h, recebidas: 3 nas'],
            'aceite a menos' => ['compact_mail_01', ['/^\S+ 1 2 .*\n/m' => ''], 'critico', 'dano'],
            'fim a menos' => ['compact_mail_01', ['/^(\S+ 1 4 .*\n)/m' => ''], 'critico', 'dano'],
            'submissao a menos' => ['compact_mail_01', ['/^(\S+ 1 1 .*\n)/m' => ''], 'critico', 'dano'],
            'tamanho trocado' => ['compact_mail_01', ['/^(\S+ 1 1 \S+ \S+ \S+ \d+)$/m' => '${1}0'], 'critico', 'bytes_'],
            'veredito a mais' => ['compact_mail_01', ['/^(\S+) 1 1 (\S+) (?=\S*INT).*\n/m' => "$0$1 2 18 $2\n"], 'critico', 'spam: '],
            'linha estranha' => ['compact_mail_01', ['/^(\S+ 1 4 .*\n)/m' => "$1lixo\n"], 'ok', '30 dias', ['inteiro' => 'critico']],
            'linha rasgada' => ['compact_mail_01', ['/^(\S+ 1 1 \S+) .*\n/m' => "$1\n"], 'ok', '30 dias', ['inteiro' => 'critico']],
            'campos a menos' => ['mail_stat_01', ['/^(\S+@metalurgica\S+ 0 0 \d+) .*/m' => '$1'], 'ok', '30 dias', ['inteiro' => 'critico']],
            'linha de outro dia' => ['compact_mail_01', ['/\z/' => "12345678 3 3 x\n"], 'ok', '31 dias', ['inteiro' => 'aviso']],
        ];
        foreach ($falhas as $nome => [$arquivo, $trocas, $somas, $texto]) {
            $mes = Mes::copia();
            Mes::troca($mes->arquivo($arquivo), $trocas);
            self::confere(self::examina($mes), $somas, $texto, $falhas[$nome][4] ?? [], $nome);
        }
    }

    /** Three messages of 3 GB: the engine's counters of 32 bits begin again at 0, and the true figure is told. */
    public function testTransbordo(): void
    {
        $mes = Mes::copia();
        $linhas = '';
        foreach ([0, 1, 2] as $i) {
            $t = "Wed Sep  2 23:59:5$i 2026: 09";
            $linhas .= "$t MAILQ SUBMIT Msg W$i de INTERNO remetente zeca@x.example com 3000000000 bytes\n"
                . "$t MAILSMTP DELIVER Msg W$i\n$t MAILQ OK Msg W$i para eva@x.example\n$t MAILQ END Msg W$i\n";
        }
        file_put_contents($mes->rodado(Mes::ONTEM), $linhas, FILE_APPEND);
        unlink("$mes->raiz/ponto");
        Mes::consolida($mes->raiz);
        $viu = self::examina($mes);
        self::confere($viu, 'aviso', '3 contas de bytes recomeçaram');
        self::assertContains('2026-09-02, zeca@x.example, 23 h, bytes_enviados: 410065408 recomeçou do zero aos 4 GiB; são 9000000000.', $viu['somas']->detalhes('pt'));
        preg_match('/^2026-09-02, bytes_internas: (\d+) .* são (\d+)\.$/m', implode("\n", $viu['somas']->detalhes('pt')), $m);
        self::assertSame(2 * 0x100000000, (int) $m[2] - (int) $m[1]);
        self::assertGreaterThan(9000000000, (int) $m[2]);
    }

    public function testPresas(): void
    {
        $mes = Mes::copia();
        $ponto = strtotime('2026-09-03 00:00 -03:00');
        $presas = fn (int $antes): Verificacao => Presas::presas(['A1' => $ponto - $antes, 'A2' => $ponto - 60], Mes::HOJE, $mes->relay()->fuso);
        self::assertSame(['ok', 'aviso'], [$presas(5 * 86400)->nivel->value, $presas(5 * 86400 + 1)->nivel->value]);
        file_put_contents("$mes->raiz/ponto", "\r\nVELHA 10 N N N S 1780000000 0 ana@x.example\r\nSEM 0 N N N N 0 0 (null)", FILE_APPEND);
        $viu = self::examina($mes);
        self::confere($viu, 'ok', '', ['presas' => 'aviso']);
        self::assertStringContainsString('1 mensagens em curso há mais de 5 dias; a mais antiga, VELHA, desde 2026-05-28', $viu['presas']->texto('pt'));
    }

    /** A blank line far from both ends of a log, which only a whole reading finds; and the command. */
    public function testComando(): void
    {
        $mes = Mes::copia();
        $log = file($mes->rodado(Mes::ONTEM));
        file_put_contents($mes->rodado(Mes::ONTEM), implode('', [...$log, "\n", ...array_fill(0, 5000, end($log))]));
        $linha = file_get_contents($mes->rodado(Mes::ONTEM));
        file_put_contents($mes->rodado(Mes::ONTEM), str_repeat($log[0], 2000) . $linha);
        self::confere(self::examina($mes), 'ok', '', ['logs' => 'aviso']);
        $onde = ["--dados=$mes->raiz/dat", "--logs=$mes->raiz/logs", "--ponto=$mes->raiz/ponto", '--fuso=' . Mes::FUSO, '--sem=ponto,logs,trava'];
        Mes::troca($mes->arquivo('mail_stat_01'), ['/^(\S+@metalurgica\S+ 0 0 )(\d+)/m' => '${1}9$2']);
        $r = Vtmrel::roda(['doctor', ...$onde, '--language=en']);
        self::assertSame(2, $r->codigo, $r->saida . $r->erros);
        self::assertMatchesRegularExpression('/^VTMREL CRITICAL - local: somas \|/', $r->saida);
        self::assertMatchesRegularExpression('/^    2026-09-01, \S+, \d+ h, recebidas: 9\d+ in the statistics, \d+ in the events: damage\.$/m', $r->saida);
    }
}
