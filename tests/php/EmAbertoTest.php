<?php

// Which days are told to be not over, and how the command marks them.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\EmAberto;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Ponto;
use Vorna\Mrel\Relay;

final class EmAbertoTest extends TestCase
{
    private const FUSO = 'America/Sao_Paulo';

    /** Files of two days; written at these times, "2026-03-11 14:32"; null for a file that is not there. */
    private static function arvore(?string $compacto, ?string $estatistica): Arvore
    {
        $arvore = (new Arvore(self::FUSO))->eventos('2026-03-10')->eventos('2026-03-11');
        foreach (['2026-03-10' => ['2026-03-11 00:15', '2026-03-11 00:15'], '2026-03-11' => [$compacto, $estatistica]] as $dia => $horas) {
            foreach (['compact_mail', 'mail_stat'] as $i => $tipo) {
                $arquivo = $arvore->caminho($tipo, $dia);
                $horas[$i] === null ? unlink($arquivo) : touch($arquivo, $arvore->hora($horas[$i]));
            }
        }
        return $arvore;
    }

    public function testAte(): void
    {
        $casos = [
            // written (compact, statistics), now, point => until
            'today' => ['2026-03-11 14:32', '2026-03-11 14:32', '2026-03-11 14:40', '2026-03-11', '14:32'],
            'the older of two' => ['2026-03-11 14:42', '2026-03-11 14:32', '2026-03-11 14:43', '2026-03-11', '14:32'],
            'one of two' => ['2026-03-11 14:42', null, '2026-03-11 14:43', '2026-03-11', '14:42'],
            'a clock that ran ahead' => ['2026-03-11 18:00', '2026-03-11 18:00', '2026-03-11 14:32', null, '14:32'],
            'no file' => [null, null, '2026-03-11 14:43', '2026-03-11', null],
            'after midnight, before the daily run' => ['2026-03-11 23:50', '2026-03-11 23:50', '2026-03-12 00:05', '2026-03-11', '23:50'],
            'the same without a point' => ['2026-03-11 23:50', '2026-03-11 23:50', '2026-03-12 00:05', null, '23:50'],
            'written after midnight' => ['2026-03-12 00:00', '2026-03-12 00:00', '2026-03-12 00:05', '2026-03-11', null],
            'one of them before' => ['2026-03-12 00:00', '2026-03-11 23:59:59', '2026-03-12 00:05', null, '23:59'],
            'the point has passed it, whatever a copy says' => ['2026-03-11 09:00', '2026-03-11 09:00', '2026-03-12 08:00', '2026-03-12', null],
        ];
        foreach ($casos as $nome => [$compacto, $estatistica, $agora, $ponto, $ate]) {
            $arvore = self::arvore($compacto, $estatistica);
            $ponto === null || file_put_contents("$arvore->dados/ponto", date('\1 D M d H:i:s Y', strtotime("$ponto 00:00")) . "\n");
            $fuso = new \DateTimeZone(self::FUSO);
            $relay = new Relay($arvore->dados, ponto: "$arvore->dados/ponto", fuso: $fuso);
            $aberto = new EmAberto($relay, new \DateTimeImmutable($agora, $fuso));
            $dias = $aberto->dias(Periodo::de('2026-01-01', '2026-03-12', $fuso));
            self::assertSame($ate === null ? [] : ['2026-03-11' => $ate], array_map(static fn ($a) => $a->format('H:i'), $dias), $nome);
            self::assertSame($ate, $aberto->ate('2026-03-11')?->format('H:i'), $nome);
        }
    }

    /** Yesterday's figures of ten to midnight are not those of a complete day. */
    public function testUltimoDiaCompleto(): void
    {
        foreach (['2026-03-11 23:50' => '2026-03-10', '2026-03-12 00:15' => '2026-03-11'] as $escrito => $completo) {
            $arvore = self::arvore($escrito, $escrito);
            self::assertSame($completo, Ponto::ultimoDiaCompleto($arvore->relay(), '2026-03-12'));
        }
    }

    /** In a table beside the day and below, for machines on standard error only. */
    public function testNoComando(): void
    {
        $arvore = self::arvore('2026-03-11 14:32', '2026-03-11 14:32');
        $pede = static fn (string ...$mais): Vtmrel => Vtmrel::roda(
            [...$mais, "--dados=$arvore->dados", '--fuso=' . self::FUSO, '--de=2026-03-10', '--ate=2026-03-11']
        );
        $tabela = $pede('dias', '--formato=tabela');
        self::assertSame('', $tabela->erros);
        self::assertMatchesRegularExpression('/^11\/03\/2026 \(até 14:32\) /m', $tabela->saida);
        self::assertMatchesRegularExpression('/^10\/03\/2026  /m', $tabela->saida);
        self::assertStringEndsWith("\n11/03/2026 ainda não terminou: vale até 14:32.\n", $tabela->saida);
        $horas = $pede('horas', '--formato=tabela', '--lingua=en');
        self::assertStringEndsWith("\n2026-03-11 is not over yet: figures are until 14:32.\n", $horas->saida);
        $csv = $pede('dias', '--formato=csv');
        self::assertSame('2026-03-11', Vtmrel::csv($csv->saida)[2][0]);
        self::assertSame("vtmrel: 11/03/2026 ainda não terminou: vale até 14:32.\n", $csv->erros);
    }
}
