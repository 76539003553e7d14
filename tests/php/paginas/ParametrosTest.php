<?php

// Whatever an address may hold: what is taken, what is refused and beside which field.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Calendario;
use Vorna\Mrel\Paginas\Enderecos;
use Vorna\Mrel\Paginas\Parametros;
use Vorna\Mrel\Paginas\Requisicao;

final class ParametrosTest extends TestCase
{
    public function testOQueNaoPodeSer(): void
    {
        $casos = [
            ['usuario', ['a'], 'nome', 'lista'],
            ['usuario', "ana\0", 'nome', '"ana?"'],
            ['usuario', "an\xE1", 'nome', '"aná"'],
            ['usuario', 'ana,rui', 'nome', '"ana,rui"'],
            ['usuario', 'ana rui', 'nome', '"ana rui"'],
            ['usuario', str_repeat('a', 3000), 'nome', 'longo demais'],
            ['id', 'A B', 'id', 'espaços'],
            ['min_kb', '1e3', 'numero', '"1e3"'],
            ['min_kb', '-1', 'numero', '"-1"'],
            ['min_kb', '9999999999', 'numero', '"9999999999"'],
            ['dominios', 'sim', 'marcado', '"sim"'],
        ];
        foreach ($casos as [$campo, $valor, $como, $frase]) {
            $p = new Parametros([$campo => $valor]);
            self::assertContains($p->$como($campo), [null, false]);
            self::assertSame([$campo], array_keys($p->erros()), $frase);
            self::assertStringContainsString($frase, $p->erros()[$campo]->frase('pt'));
        }
    }

    public function testPeriodo(): void
    {
        $arvore = (new Arvore())->eventos('2026-03-10')->eventos('2026-03-11');
        $agora = new \DateTimeImmutable('2026-03-12 09:00', new \DateTimeZone($arvore->fuso));
        touch($arvore->caminho('mail_stat', '2026-03-11'), $agora->getTimestamp());
        touch($arvore->caminho('compact_mail', '2026-03-11'), $agora->getTimestamp());
        $casos = [
            [[], '2026-03-05 2026-03-11', []],
            [['de' => '', 'ate' => ''], '2026-03-05 2026-03-11', []],
            [['de' => '2026-03-01'], '2026-03-01 2026-03-01', []],
            [['ate' => '2026-03-01'], '2026-03-01 2026-03-01', []],
            [['de' => '2026-03-01', 'ate' => 'ontem'], '2026-03-01 2026-03-11', []],
            [['de' => '2026-02-29'], null, ['de' => '2026-02-29']],
            [['ate' => '9999-12-31'], null, ['ate' => '9999-12-31']],
            [['de' => ['x'], 'ate' => '31/12/2026'], null, ['de' => 'lista', 'ate' => '31/12/2026']],
            [['de' => '2026-03-11', 'ate' => '2026-03-10'], null, ['ate' => '2026-03-11']],
            [['de' => '2026-03-01', 'ate' => '2026-03-31'], '2026-03-01 2026-03-31', []],
            [['de' => '2026-03-01', 'ate' => '2026-04-01'], null, ['ate' => '32 dias']],
        ];
        foreach ($casos as [$dados, $periodo, $erros]) {
            $p = new Parametros($dados);
            $dado = $p->periodo(new Calendario($arvore->relay(), $agora), 7, 31);
            self::assertSame($periodo, $dado === null ? null : "$dado->primeiro $dado->ultimo", json_encode($dados));
            self::assertSame(array_keys($erros), array_keys($p->erros()), json_encode($dados));
            foreach ($erros as $campo => $cita) {
                self::assertStringContainsString($cita, $p->erros()[$campo]->frase('pt'));
            }
        }
    }

    /** Links are relative, keep what was chosen, and hold any byte of an id. */
    public function testEnderecos(): void
    {
        $e = new Enderecos('', ['de' => '2026-03-10', 'lingua' => 'en']);
        self::assertSame('./?de=2026-03-10&lingua=en', $e->de(''));
        self::assertSame('dias?de=2026-03-11&lingua=en', $e->de('dias', ['de' => '2026-03-11']));
        self::assertSame('dias?lingua=en', $e->de('dias', ['de' => null]));
        self::assertSame('rastro?id=A%26%22%C3%A1%1B&de=2026-03-10&lingua=en', $e->de('rastro', ['id' => "A&\"á\x1B"]));
        self::assertSame('mensagens?hora=0', (new Enderecos('', []))->de('mensagens', ['hora' => 0]));
        self::assertSame(['lingua' => 'en'], $e->ocultos(['de', 'ate']));
        self::assertSame('../../dias', (new Enderecos((new Requisicao('GET', '/a/b/c'))->acima(), []))->de('dias'));
    }
}
