<?php

// What formats do with cells that reports seldom have.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Anonimo;
use Vorna\Mrel\Bytes;
use Vorna\Mrel\Formato;
use Vorna\Mrel\Formato\Csv;
use Vorna\Mrel\Formato\Humano;
use Vorna\Mrel\Formato\Json;
use Vorna\Mrel\Formato\Quadro;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Tabela;

final class FormatosTest extends TestCase
{
    private static function escreve(Formato $formato, Tabela $tabela): string
    {
        return implode('', iterator_to_array($formato->pedacos($tabela), false));
    }

    /** What a spreadsheet would take for a formula is text, and a number stays one. */
    public function testPlanilha(): void
    {
        foreach (['=1+1' => "'=1+1", '+55' => "'+55", '-x' => "'-x", '@soma' => "'@soma", "\tx" => '␉x', "\r=1" => '␍=1'] as $texto => $fica) {
            $csv = self::escreve(new Csv(planilha: true), new Tabela('topo', [[1, $texto, -5]]));
            self::assertSame($fica, Vtmrel::csv(substr($csv, 3), ';', "\r\n")[1][1]);
            self::assertStringEndsWith(";-5\r\n", $csv);
        }
        $csv = self::escreve(new Csv(planilha: true), new Tabela('topo', [[1, 'a;b,c', 1.5]]));
        self::assertStringEndsWith("1;\"a;b,c\";1,5\r\n", $csv);
    }

    /** Bytes that may have wrapped: the engine's figure for machines, a mark for people, in the sum too. */
    public function testIncertos(): void
    {
        $linha = static fn (string $dia, bool $incerto): array => [$dia, 1, new Bytes(2048, static fn (): bool => $incerto),
            1, new Bytes(1, static fn (): bool => false), 0, 0, 0];
        $tabela = static fn (bool $incerto): Tabela => new Tabela(
            'dias',
            [$linha('2026-03-10', false), $linha('2026-03-11', $incerto)],
            true
        );
        self::assertStringEndsWith("2026-03-11,1,2048,1,1,0,0,0\n", self::escreve(new Csv(), $tabela(true)));
        self::assertStringContainsString('"bytes_internas":2048', self::escreve(new Json(), $tabela(true)));
        $quadro = explode("\n", self::escreve(new Quadro(), $tabela(true)));
        self::assertStringNotContainsString('*', $quadro[2]);
        self::assertStringContainsString('2,0 KB *', $quadro[3]);
        self::assertStringContainsString('4,0 KB *', $quadro[5]);
        self::assertSame('* ' . (new Rotulos())->incerto(), $quadro[6]);
        self::assertStringNotContainsString('*', self::escreve(new Quadro(), $tabela(false)));
    }

    /** A long table begins before its end is known, and every piece is a part of the whole. */
    public function testAosPedacos(): void
    {
        $tirados = 0;
        $linhas = (static function () use (&$tirados): \Generator {
            for ($i = 0; $i < 20000; ++$i) {
                ++$tirados;
                yield [$i, "nome$i", $i];
            }
        })();
        foreach ((new Quadro())->pedacos(new Tabela('topo', $linhas)) as $pedaco) {
            break;
        }
        self::assertSame(1000, $tirados);
        foreach ([new Csv(), new Json(porLinha: true)] as $formato) {
            $tabela = new Tabela('topo', array_map(static fn (int $i): array => [$i, "n$i", $i], range(1, 20000)));
            $pedacos = iterator_to_array($formato->pedacos($tabela), false);
            self::assertGreaterThan(2, count($pedacos));
            self::assertLessThan(2 * Formato::PEDACO, max(array_map('strlen', $pedacos)));
        }
        self::assertSame('"\u009b\u007f\u001bé"', Json::texto("\u{9B}\x7F\x1Bé"));
        self::assertSame("[]\n", self::escreve(new Json(), new Tabela('topo', [])));
    }

    public function testTamanhos(): void
    {
        $h = new Humano('pt');
        self::assertSame(
            ['1.023 B', '1,0 KB', '1,0 MB', '1,0 GB'],
            array_map($h->tamanho(...), [1023, 1024, 1048575, 1024 ** 3 - 1])
        );
        self::assertSame(
            ['31/12/2026 23:59:59', '2026-12-31 23:59:59'],
            [$h->instante('2026-12-31T23:59:59-03:00'), (new Humano('en'))->instante('2026-12-31T23:59:59-03:00')]
        );
    }

    /** Only what names somebody is hidden, and of that every part before the domain. */
    public function testAnonimo(): void
    {
        $a = Anonimo::destaVez();
        self::assertSame($a->nome('Ana@x.example'), $a->nome('ANA@x.example'));
        self::assertNotSame($a->nome('ana'), $a->nome('anna'));
        self::assertSame($a->nome('ana') . '@x', $a->nome('ana@x'));
        self::assertSame(['', 'mx.example', '@x'], [$a->nome(''), $a->nome('mx.example', usuario: false), $a->nome('@x')]);
        self::assertStringNotContainsString('ana', $a->nome('"ana@casa"@x'));
    }
}
