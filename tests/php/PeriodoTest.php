<?php

// Ranges: what the extension reads when it is asked for a period, in zones where that is hard; and the
// words that name periods.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Calendario;
use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Falha\NenhumDia;
use Vorna\Mrel\Falha\SemDiaCompleto;
use Vorna\Mrel\Fuso;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Relay;

final class PeriodoTest extends TestCase
{
    private const ZONAS = [
        ['America/Sao_Paulo', 2026], ['Europe/Lisbon', 2026], ['Atlantic/Azores', 2026], ['Africa/Luanda', 2026],
        ['Africa/Maputo', 2026], ['Asia/Dili', 2026], ['Asia/Macau', 2026], ['UTC', 2026],
        ['Europe/Madrid', 2026],  // a day of 23 hours east of UTC
        ['America/Sao_Paulo', 2018], ['Atlantic/Azores', 2018],
    ];

    /** Every day, month and week of a year, through the extension, exactly. */
    public function testPeriodosVoltamExatos(): void
    {
        $erradas = [];
        $perguntas = 0;
        foreach (self::ZONAS as [$fuso, $ano]) {
            $arvore = new Arvore($fuso);
            $dias = $this->escreveAno($arvore, $ano);
            foreach (self::periodos($ano, new \DateTimeZone($fuso)) as $periodo) {
                $esperados = array_filter(
                    $dias,
                    static fn (string $dia): bool => $dia >= $periodo->primeiro && $dia <= $periodo->ultimo,
                    ARRAY_FILTER_USE_KEY,
                );
                if ($this->dias($arvore, $periodo) !== array_keys($esperados)
                    || $this->ids($arvore, $periodo) !== array_merge(...array_values($esperados))) {
                    $erradas[] = "$fuso $periodo->primeiro $periodo->ultimo";
                }
                ++$perguntas;
            }
        }
        self::assertSame([], $erradas);
        self::assertSame(count(self::ZONAS) * (365 + 12 + 359), $perguntas);
    }

    /**
     * Files for a year and some days around it: of each day the first and the last second and one at noon.
     * Which day a second belongs to is asked of date(), a quarter of an hour at a time.
     *
     * @return array<string, list<string>> ids by day, in their order
     */
    private function escreveAno(Arvore $arvore, int $ano): array
    {
        $antes = date_default_timezone_get();
        date_default_timezone_set($arvore->fuso);
        $dias = $linhas = [];
        $fim = gmmktime(0, 0, 0, 1, 12, $ano + 1);
        for ($t = gmmktime(0, 0, 0, 12, 20, $ano - 1), $ontem = date('Y-m-d', $t - 1); $t < $fim; $t += 900) {
            $dia = date('Y-m-d', $t);
            if ($dia !== $ontem) {
                foreach (['f' => $t - 1, 'i' => $t, 'm' => $t + 40000] as $letra => $segundo) {
                    $de = date('Y-m-d', $segundo);
                    $linhas[$de][$segundo] = dechex($segundo) . " 1 1 $letra$de INTERNO ana@x.example 1\n";
                    $dias[$de][$segundo] = "$letra$de";
                }
                $ontem = $dia;
            }
        }
        date_default_timezone_set($antes);
        foreach ($linhas as $dia => $textos) {
            ksort($textos);
            ksort($dias[$dia]);
            $dias[$dia] = array_values($dias[$dia]);
            file_put_contents($arvore->caminho('compact_mail', $dia), implode($textos));
            file_put_contents($arvore->caminho('mail_stat', $dia), "1 2 0 0 0 0 1 1 1 1\n");
        }
        return $dias;
    }

    /** @return \Generator<Periodo> */
    private static function periodos(int $ano, \DateTimeZone $fuso): \Generator
    {
        yield from Periodo::de("$ano-01-01", "$ano-12-31", $fuso)->cadaDia();
        for ($mes = 1; $mes <= 12; ++$mes) {
            yield Periodo::mes(sprintf('%d-%02d', $ano, $mes), $fuso);
        }
        foreach (Periodo::de("$ano-01-07", "$ano-12-31", $fuso)->cadaDia() as $dia) {
            yield Periodo::ultimos(7, $dia->ultimo, $fuso);
        }
    }

    private function dias(Arvore $arvore, Periodo $periodo): array
    {
        $m = new \vt_mrel();
        $m->setDataDir($arvore->dados);
        $itr = new \vt_mrel_itr();
        $m->msgs_per_day(...[...$periodo->dias(), ' ', $itr->getHandle()]);
        for ($dias = []; $itr->fetch();) {
            $dias[] = gmdate('Y-m-d', $itr->timestamp);
        }
        return $dias;
    }

    private function ids(Arvore $arvore, Periodo $periodo): array
    {
        $m = new \vt_mrel();
        $m->setDataDir($arvore->dados);
        $itr = new \vt_mrel_itr();
        $m->user_msgs('', '', ...[...$periodo->eventos(), '', 0, 0, $itr->getHandle()]);
        for ($ids = []; $itr->fetch();) {
            $ids[] = $itr->msg_id;
        }
        return $ids;
    }

    public function testDiasDeUmPeriodo(): void
    {
        $utc = new \DateTimeZone('UTC');
        self::assertSame('2024-02-01 2024-02-29', self::texto(Periodo::mes('2024-02', $utc)));
        self::assertSame('2026-02-27 2026-03-05', self::texto(Periodo::ultimos(7, '2026-03-05', $utc)));
        self::assertSame('2026-02-22 2026-03-05', self::texto(Periodo::de('2026-03-01', '2026-03-05', $utc)->alargado(7)));
        self::assertSame('2000-01-01 2000-01-03', self::texto(Periodo::dia('2000-01-03', $utc)->alargado(99)));
        self::assertSame(7, Periodo::ultimos(7, '2026-03-05', $utc)->quantosDias());
    }

    public function testRecusas(): void
    {
        $recusados = [
            ['dia', '2026-02-30'], ['dia', '9999-01-01'], ['dia', "2026-01-01\n"], ['dia', '10/03/2026'], ['dia', "\xFF"],
            ['mes', '2026-13'], ['mes', '2026-1'], ['de', '2026-03-02', '2026-03-01'], ['ultimos', 0, '2026-03-01'],
        ];
        foreach ($recusados as $caso) {
            [$metodo, $argumentos] = [$caso[0], array_slice($caso, 1)];
            try {
                Periodo::$metodo(...$argumentos);
                self::fail("$metodo $caso[1] foi aceito");
            } catch (EntradaInvalida $e) {
                self::assertMatchesRegularExpression('/^[^\n]+\.$/u', $e->getMessage());
            }
        }
    }

    public function testPalavras(): void
    {
        $arvore = new Arvore('America/Sao_Paulo');
        foreach (['2026-02-27', '2026-02-28', '2026-03-01', '2026-03-10', '2026-03-12'] as $dia) {
            $arvore->eventos($dia);
        }
        $ponto = "$arvore->dados/ponto";
        $relay = new Relay($arvore->dados, ponto: $ponto, fuso: new \DateTimeZone($arvore->fuso));
        $em = static fn (string $agora, ?string $de = null, ?string $ate = null): string => self::texto(
            (new Calendario($relay, new \DateTimeImmutable("$agora UTC")))->periodo($de, $ate)
        );
        // Without a point: the newest day file before today. 01:00 in UTC is still the day before.
        self::assertSame('2026-03-10 2026-03-10', $em('2026-03-13 01:00'));
        file_put_contents($ponto, "1 Thu Mar 12 00:00:00 2026\n\r\nA 1 N N N S 1 0 ana");
        $agora = '2026-03-12 12:00';
        self::assertSame('2026-03-11 2026-03-11', $em($agora));
        self::assertSame('2026-03-12 2026-03-12', $em($agora, 'hoje'));
        self::assertSame('2026-03-11 2026-03-11', $em($agora, null, 'ontem'));
        self::assertSame('2026-02-10 2026-03-11', $em($agora, 'ultimos-30'));
        self::assertSame('2026-03-01 2026-03-11', $em($agora, 'este-mes'));
        self::assertSame('2026-02-01 2026-02-28', $em($agora, 'mes-passado'));
        self::assertSame('2026-02-01 2026-03-12', $em($agora, 'mes-passado', 'hoje'));
        self::assertSame('2026-03-02 2026-03-02', $em($agora, '2026-03-02'));
        self::assertSame('2025-12-01 2025-12-31', $em('2026-01-31 12:00', 'last-month'));
        self::assertInstanceOf(EntradaInvalida::class, Arvore::falha(fn () => $em($agora, 'ultimos-0')));
        self::assertInstanceOf(EntradaInvalida::class, Arvore::falha(fn () => $em($agora, 'hoje', 'ontem')));
        file_put_contents($ponto, "1 Sun Mar  1 00:00:00 2026\n");
        self::assertInstanceOf(SemDiaCompleto::class, Arvore::falha(fn () => $em('2026-03-01 12:00', 'este-mes')));
        unlink($ponto);
        self::assertInstanceOf(NenhumDia::class, Arvore::falha(fn () => $em('2026-02-27 12:00', 'ultimos-7')));
    }

    /** The zone is the C library's, whatever PHP is set to. */
    public function testFusoDaMaquina(): void
    {
        $nome = static fn (array $ambiente): string => Arvore::outroPhp(
            'try { echo Vorna\Mrel\Fuso::daMaquina()->getName(); } catch (Vorna\Mrel\Falha $e) { echo get_class($e); }',
            ['-d', 'date.timezone=Asia/Tokyo'],
            $ambiente,
        );
        self::assertSame('America/Sao_Paulo', $nome(['TZ' => 'America/Sao_Paulo']));
        self::assertSame('Asia/Dili', $nome(['TZ' => ':/usr/share/zoneinfo/Asia/Dili']));
        self::assertSame('UTC', $nome(['TZ' => '']));
        self::assertSame('Vorna\Mrel\Falha\ConfiguracaoInvalida', $nome(['TZ' => 'BRT3']));
        $atalho = sys_get_temp_dir() . '/vt_localtime_' . getmypid();
        symlink('/usr/share/zoneinfo/Africa/Maputo', $atalho);
        $antes = getenv('TZ', true);
        putenv('TZ');
        try {
            self::assertSame('Africa/Maputo', Fuso::daMaquina($atalho)->getName());
            self::assertSame('UTC', Fuso::daMaquina("$atalho.nao")->getName());
        } finally {
            putenv($antes === false ? 'TZ' : "TZ=$antes");
            unlink($atalho);
        }
    }

    private static function texto(Periodo $periodo): string
    {
        return "$periodo->primeiro $periodo->ultimo";
    }
}
