<?php

// The state light: which reasons it gives at which time.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Linha\Totais;
use Vorna\Mrel\Paginas\Farol;
use Vorna\Mrel\Paginas\Situacao;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Saude\Guardado;
use Vorna\Mrel\Saude\Nivel;
use Vorna\Mrel\Saude\Resultado;
use Vorna\Mrel\Saude\Verificacao;

final class FarolTest extends TestCase
{
    /** @return list<string> the light and its reasons */
    private static function farol(Relay $relay, string $agora, ?array $totais = null): array
    {
        $s = new Situacao($relay, new \DateTimeImmutable($agora, $relay->fuso));
        $f = new Farol($s, static fn (string $dia): string => $dia, $totais, 'pt');
        return [$f->estado, ...array_column($f->razoes, 0)];
    }

    /** @return list<Totais> */
    private static function totais(array ...$dias): array
    {
        return array_map(static fn (array $d, int $i): Totais =>
            new Totais("2026-03-0$i", $d[0], 0, 0, 0, 0, 0, $d[1], static fn (): bool => false), $dias, array_keys($dias));
    }

    public function testTempo(): void
    {
        $arvore = (new Arvore())->eventos('2026-03-08')->eventos('2026-03-10');
        foreach (['2026-03-08', '2026-03-10'] as $dia) {
            foreach (['mail_stat', 'compact_mail'] as $tipo) {
                touch($arvore->caminho($tipo, $dia), $arvore->hora("$dia 23:59") + 120);
            }
        }
        $relay = $arvore->relay();
        self::assertSame(['aviso', 'farol.lacuna'], self::farol($relay, '2026-03-11 09:00'));
        self::assertSame(['aviso', 'farol.atraso', 'farol.lacuna'], self::farol($relay, '2026-03-12 09:00'));
        self::assertSame(['critico', 'farol.parada'], self::farol($relay, '2026-03-13 09:00'));
        self::assertSame(['critico', 'farol.falha'], self::farol(new Relay('/nada'), '2026-03-13 09:00'));
        $vazia = new Arvore();
        self::assertSame(['critico', 'farol.nada'], self::farol($vazia->relay(), '2026-03-13 09:00'));
    }

    /** What the checks said is not said twice, and nothing that they said too long ago. */
    public function testVerificado(): void
    {
        $arvore = new Arvore();
        $relay = new Relay($arvore->dados, fuso: new \DateTimeZone('UTC'), saude: "$arvore->dados/saude.json");
        $ponto = new Verificacao('ponto', Nivel::Aviso, ['atrasado', 'late']);
        Guardado::grava($relay, new Resultado('r', new \DateTimeImmutable('2026-03-10 10:00 UTC'), [$ponto]));
        self::assertSame(['aviso', 'farol.falha'], self::farol($relay, '2026-03-10 11:00'));
        self::assertSame(['critico', 'farol.nada', 'farol.velha'], self::farol($relay, '2026-03-12 11:00'));
    }

    public function testMovimento(): void
    {
        $arvore = (new Arvore())->eventos('2026-03-10');
        array_map(static fn (string $tipo): bool => touch($arvore->caminho($tipo, '2026-03-10')), ['mail_stat', 'compact_mail']);
        $casos = [
            [[[1000, 10], [1000, 10], [1000, 10], [1000, 10]], ['ok']],
            [[[1000, 10], [1000, 10], [1000, 10], [400, 10]], ['aviso', 'farol.pouco']],
            [[[1000, 10], [1000, 10], [1000, 10], [2100, 10]], ['aviso', 'farol.muito']],
            [[[1000, 10], [1000, 10], [1000, 10], [1000, 40]], ['aviso', 'farol.erros']],
            [[[1000, 1], [1000, 1], [1000, 1], [1000, 4]], ['ok']],
            [[[1000, 10], [1000, 10], [400, 10]], ['ok']],
        ];
        foreach ($casos as [$dias, $razoes]) {
            self::assertSame($razoes, self::farol($arvore->relay(), '2026-03-11 09:00', self::totais(...$dias)));
        }
    }
}
