<?php

// The answer to "did it arrive?", and the spellings of a user.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Estado;
use Vorna\Mrel\Grafias;
use Vorna\Mrel\Linha\Destinatario;
use Vorna\Mrel\Linha\Rastro;
use Vorna\Mrel\Paginas\Lacunas;
use Vorna\Mrel\Paginas\Narrativa;
use Vorna\Mrel\Periodo;

final class NarrativaTest extends TestCase
{
    /** @param list<string> $destinos "+ana" accepted, "-rui" refused */
    private static function historia(Estado $estado, array $destinos, bool $fim = true, bool $desistiu = false): Narrativa
    {
        $as = static fn (string $hora): \DateTimeImmutable => new \DateTimeImmutable("2026-03-10 $hora");
        return new Narrativa(new Rastro(
            'M1',
            'eu@x.example',
            100,
            $as('08:00'),
            $fim ? $as('09:00') : null,
            $estado,
            $estado === Estado::Virus,
            "\r\n10/03/2026: primeira\r\n\x1Bsegunda\r\n",
            array_map(static fn (string $d): Destinatario => new Destinatario(
                substr($d, 1),
                $as('08:30'),
                $d[0] === '+' ? Estado::Entregue : Estado::Recusado,
                $d[0] === '+' ? '' : '550 nao'
            ), $destinos),
            $desistiu
        ));
    }

    public function testResposta(): void
    {
        $casos = [
            ['sim', Estado::Entregue, ['+a', '+b']],
            ['saiu', Estado::Entregue, []],
            ['parte', Estado::ComErro, ['+a', '-b']],
            ['nao', Estado::ComErro, ['-a']],
            ['nao', Estado::ComErro, []],
            ['nao', Estado::ComErro, [], false, true],
            ['parte', Estado::ComErro, ['+a'], false, true],
            ['erro', Estado::ComErro, ['+a']],
            ['virus', Estado::Virus, []],
            ['curso', Estado::EmCurso, ['+a'], false],
            ['tenta', Estado::EmCurso, ['-a'], false],
            ['tenta', Estado::ComErro, ['+a'], false],
        ];
        foreach ($casos as $caso) {
            [$resposta, $estado, $destinos, $fim, $desistiu] = $caso + [3 => true, 4 => false];
            $n = self::historia($estado, $destinos, $fim, $desistiu);
            self::assertSame($resposta, $n->resposta, "$estado->value " . implode($destinos));
        }
        self::assertSame('550 nao', self::historia(Estado::ComErro, ['+a', '-b'])->motivo);
        self::assertSame("\u{241B}segunda", self::historia(Estado::ComErro, [])->motivo);
        self::assertSame(['10/03/2026: primeira', "\u{241B}segunda"], self::historia(Estado::Entregue, [])->texto());
    }

    /** Recipients of one second and one text are one step; the story goes from submission to end. */
    public function testPassos(): void
    {
        $n = self::historia(Estado::ComErro, ['+a', '+b', '-c', '+d', '+e']);
        self::assertSame(
            ['submetida ', 'entregue a,b,d+1', 'recusado c', 'encerrada '],
            array_map(static fn (array $p): string => "$p[tipo] " . implode(',', $p['nomes'])
                . ($p['mais'] ? "+$p[mais]" : ''), $n->passos)
        );
        $muitos = self::historia(Estado::Entregue, array_map(static fn (int $i): string => "+r$i", range(1, 20)));
        self::assertSame([['r1', 'r2', 'r3'], 17], [$muitos->passos[1]['nomes'], $muitos->passos[1]['mais']]);
    }

    public function testGrafias(): void
    {
        $arvore = (new Arvore())->contas('2026-03-10', [0, 0, 0, 0, 0, 0, 0, 0], [
            8 => ['ana 1 10 2 20 0 0 0 0', 'ana@a.example 3 30 4 40 5 6 7 0', 'ana@b.example 9 9 9 9 9 9 9 0'],
        ]);
        $periodo = Periodo::dia('2026-03-10', new \DateTimeZone($arvore->fuso));
        $casos = [
            [['a.example'], 'ana@a.example', ['ana@a.example', 'ana'], null, [4, 40, 6, 60, 6, 5, 7]],
            [['A.example'], 'ana', ['ana', 'ana@A.example'], null, [1, 10, 2, 20, 0, 0, 0]],
            [['a.example'], 'ana', ['ana', 'ana@a.example'], null, [4, 40, 6, 60, 6, 5, 7]],
            [['a.example'], 'ana@b.example', ['ana@b.example'], null, [9, 9, 9, 9, 9, 9, 9]],
            [['a.example', 'b.example'], 'ana@a.example', ['ana@a.example'], 'ana', [3, 30, 4, 40, 6, 5, 7]],
            [[], 'ana', ['ana'], null, [1, 10, 2, 20, 0, 0, 0]],
        ];
        foreach ($casos as [$locais, $nome, $nomes, $outra, $contas]) {
            $g = new Grafias($arvore->relay(...$locais), $nome);
            self::assertSame([$nomes, $outra], [$g->nomes, $g->outra]);
            $d = $g->dias($periodo)[0];
            self::assertSame($contas, [$d->enviadas, $d->bytesEnviados, $d->recebidas, $d->bytesRecebidos, $d->spam,
                $d->virus, $d->comErro], $nome . implode($locais));
            self::assertSame($contas[0], array_sum(array_column($g->horas($periodo), 'enviadas')));
        }
    }

    public function testLacunas(): void
    {
        $periodo = Periodo::de('2026-02-27', '2026-03-05', new \DateTimeZone('UTC'));
        self::assertSame(
            [['2026-02-27', '2026-02-28'], ['2026-03-02', '2026-03-02'], ['2026-03-05', '2026-03-05']],
            Lacunas::em($periodo, ['2026-03-01', '2026-03-03', '2026-03-04'])
        );
        self::assertSame([], Lacunas::em(Periodo::dia('2026-03-01'), ['2026-03-01']));
    }
}
