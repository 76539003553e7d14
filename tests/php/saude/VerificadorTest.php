<?php

// A healthy month trips no check; each fault trips its own, and no other.

declare(strict_types=1);

namespace Vorna\Mrel\Testes\Saude;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Saude\Verificador;
use Vorna\Mrel\Testes\Arvore;

final class VerificadorTest extends TestCase
{
    /** @return array<string, string> state by check, of those that are not well */
    private static function problemas(Mes $mes, string $hora = '10:00', string $dia = Mes::HOJE, string $fuso = Mes::FUSO): array
    {
        clearstatcache();
        $r = (new Verificador($mes->relay($fuso), $mes->agora($hora, $dia)))->resultado();
        self::assertSame(Verificador::CHECAGENS, array_map(fn ($v) => $v->nome, $r->verificacoes));
        $estados = [];
        foreach ($r->problemas() as $v) {
            $estados[$v->nome] = $v->nivel->value . ': ' . $v->texto('pt');
            self::assertNotSame($v->texto('pt'), $v->texto('en'), $v->nome);
            self::assertMatchesRegularExpression('/^\p{Lu}.*\.$/us', $v->conselho('pt'), $v->nome);
        }
        ksort($estados);
        return $estados;
    }

    public function testSaudavel(): void
    {
        $mes = Mes::copia();
        self::assertSame([], self::problemas($mes));
        self::assertSame([], self::problemas($mes, '00:05'), 'just after midnight');
    }

    /** Each fault with the checks that it trips: state, and a part of the reason. */
    public function testFalhas(): void
    {
        $muitos = static function (string $arquivo, string $usuario, int $n): void {
            Mes::troca($arquivo, ['/(\[\d+\]\n)(?!.*\[)/s' => "$1$usuario $n 100 0 0 0 0 0 0\n"]);
        };
        $falhas = [
            'ponto dois dias atras' => [fn (Mes $m) => Mes::troca("$m->raiz/ponto", ['/Thu Sep +3/' => 'Tue Sep  1']),
                ['ponto' => 'critico: O ponto é 2026-09-01']],
            'ponto perdido' => [fn (Mes $m) => unlink("$m->raiz/ponto"), ['ponto' => 'critico: Nenhum']],
            'ponto no futuro' => [fn (Mes $m) => Mes::troca("$m->raiz/ponto", ['/Thu Sep +3/' => 'Sun Sep  6']),
                ['ponto' => 'critico: O ponto é 2026-09-06']],
            'falta um dia' => [fn (Mes $m) => unlink($m->arquivo('mail_stat_01')) && unlink($m->arquivo('compact_mail_01')),
                ['dias' => 'critico: Faltam dias: 2026-09-01']],
            'falta meio dia' => [fn (Mes $m) => unlink($m->arquivo('compact_mail_01')), ['dias' => 'critico: Faltam dias: 2026-09-01']],
            'dia vazio' => [function (Mes $m): void {
                Mes::troca($m->arquivo('mail_stat_02'), ['/^(\d+ \d+) [^\n]*/' => '$1 0 0 0 0 0 0 0 0']);
                file_put_contents($m->arquivo('compact_mail_02'), '');
            }, ['volume' => 'aviso: O dia 2026-09-02 está vazio']],
            'metade' => [fn (Mes $m) => Mes::troca($m->arquivo('mail_stat_02'), ['/^((?:\S+ ){6})\d+ (\S+) \d+/' => '${1}1 $2 1']),
                ['volume' => 'aviso: 2 mensagens']],
            'cortado no fim' => [fn (Mes $m) => Mes::troca($m->arquivo('compact_mail_02'), ['/.\n\z/' => '']),
                ['inteiro' => 'critico: Rasgados: rels_09-26/compact_mail_02.txt']],
            'lixo no comeco' => [fn (Mes $m) => Mes::troca($m->arquivo('compact_mail_02'), ['/\A/' => "\0\0\0\n"]), ['inteiro' => 'critico']],
            'horas cortadas' => [fn (Mes $m) => Mes::troca($m->arquivo('mail_stat_01'), ['/\n\[\d+\]\n(?!.*\[).*\z/s' => "\n"]),
                ['inteiro' => 'critico: Rasgados: rels_09-26/mail_stat_01.txt (não há 24']],
            'linha de usuario cortada' => [fn (Mes $m) => Mes::troca($m->arquivo('mail_stat_01'), ['/\z/' => "ana@x.example 1\n"]),
                ['inteiro' => 'critico: Rasgados: rels_09-26/mail_stat_01.txt (a última linha não tem nove']],
            'outro dono' => [fn (Mes $m) => chown($m->arquivo('compact_mail_01'), 12345) || self::fail('root only'),
                ['leitura' => 'aviso: De outro dono']],
            'abuso por hora' => [fn (Mes $m) => $muitos($m->arquivo('mail_stat_02'), 'ana@x.example', 501), ['abuso' => 'aviso: Enviam demais: ana@']],
            'abuso de quem nunca enviou' => [fn (Mes $m) => $muitos($m->arquivo('mail_stat_02'), 'ana@x.example', 51), ['abuso' => 'aviso']],
            'log com branco' => [fn (Mes $m) => Mes::troca($m->log(), ['/\n/' => "\n\n"]), ['logs' => 'aviso: MAIL_DISPATCHER.LOG tem linhas em branco']],
            'log comprimido antigo' => [fn (Mes $m) => file_put_contents($m->rodado('2026-08-20') . '.gz', gzencode(file_get_contents($m->rodado('2026-08-20'))))
                && touch($m->rodado('2026-08-20') . '.gz', strtotime('2026-08-21')) && unlink($m->rodado('2026-08-20')), ['logs' => 'aviso']],
            'log que falta' => [fn (Mes $m) => unlink($m->rodado('2026-08-20')), ['logs' => 'aviso: nenhum log tem linhas de 2026-08-20']],
            'log sobreposto' => [fn (Mes $m) => copy($m->rodado('2026-08-20'), $m->log('.copia')), ['logs' => 'aviso: MAIL_DISPATCHER.LOG']],
            'rotacao ao meio-dia' => [function (Mes $m): void {
                $linhas = file($m->log());
                $meio = intdiv(count($linhas), 2);
                // What lies before the point and behind it is in one file, which is passed over.
                file_put_contents($m->rodado(Mes::ONTEM), implode('', array_slice($linhas, 0, $meio)), FILE_APPEND);
                file_put_contents($m->log(), implode('', array_slice($linhas, $meio)));
            }, ['logs' => 'critico: MAIL_DISPATCHER.LOG.20260902 tem linhas depois do ponto']],
            'comprimido depois do ponto' => [fn (Mes $m) => file_put_contents($m->log('.1.gz'), gzencode(file_get_contents($m->log())))
                && touch($m->log('.1.gz'), strtotime('2026-09-03 12:00')), ['logs' => 'critico: MAIL_DISPATCHER.LOG.1.gz']],
            'log corrente vazio' => [fn (Mes $m) => file_put_contents($m->log(), ''), ['logs' => 'critico: o log corrente está vazio']],
            'log corrente sumiu' => [fn (Mes $m) => unlink($m->log()), ['logs' => 'critico: falta o log corrente']],
            'muitos logs' => [fn (Mes $m) => array_map(fn ($i) => touch($m->log(".v$i")), range(1, 900)), ['logs' => 'aviso: há 932 logs']],
        ];
        foreach ($falhas as $nome => [$faz, $espera]) {
            $mes = Mes::copia();
            $faz($mes);
            $viu = self::problemas($mes);
            self::assertSame(array_keys($espera), array_keys($viu), "$nome: " . print_r($viu, true));
            foreach ($espera as $checagem => $comeco) {
                self::assertStringStartsWith($comeco, $viu[$checagem], $nome);
            }
        }
    }

    public function testOutroFuso(): void
    {
        $viu = self::problemas(Mes::copia(), '13:00', fuso: 'Asia/Dili');
        self::assertSame(['fuso'], array_keys($viu));
        self::assertStringContainsString('começa aqui em 2026-08-03 12:00', $viu['fuso']);
    }

    /** Without the rights of root: a file, and a folder; and an engine without the extension. */
    public function testSemPermissao(): void
    {
        $mes = Mes::copia();
        $codigo = 'date_default_timezone_set("UTC"); $r = new Vorna\Mrel\Relay("' . $mes->raiz . '/dat", "m", "' . $mes->raiz
            . '/logs", "' . $mes->raiz . '/ponto", [], new DateTimeZone("' . Mes::FUSO . '"));
            $v = new Vorna\Mrel\Saude\Verificador($r, new DateTimeImmutable("2026-09-03 13:00"));
            foreach ($v->resultado()->problemas() as $p) echo $p->nome, " ", $p->nivel->value, ";";';
        self::assertSame('', Arvore::outroPhp($codigo));
        self::assertSame('modulo critico;', Arvore::outroPhp($codigo, ['-d', 'memory_limit=-1']));
        touch($mes->rodado('2026-08-20'), strtotime('2026-08-21'));
        chmod($mes->rodado('2026-08-20'), 0);
        self::assertSame('logs aviso;', Arvore::outroPhp($codigo));
        chmod($mes->arquivo('compact_mail_01'), 0);
        self::assertSame('leitura critico;logs aviso;', Arvore::outroPhp($codigo));
        chmod("$mes->raiz/dat/rels_09-26", 0);
        self::assertStringStartsWith('leitura critico;', Arvore::outroPhp($codigo));
        chmod("$mes->raiz/dat/rels_09-26", 0700);
    }
}
