<?php

// The stored result: read back as it was, and never a part of it.

declare(strict_types=1);

namespace Vorna\Mrel\Testes\Saude;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Falha\DadosInacessiveis;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Saude\{Guardado, Inteiro, Nivel, Resultado, Verificacao};
use Vorna\Mrel\Testes\Arvore;

final class GuardadoTest extends TestCase
{
    public function testVaiEVolta(): void
    {
        $arvore = new Arvore('Asia/Dili');
        $relay = new Relay($arvore->dados, 'm', fuso: new \DateTimeZone('Asia/Dili'), saude: "$arvore->dados/saude");
        self::assertNull(Guardado::le($relay));
        self::assertNull(Guardado::le(new Relay($arvore->dados, 'm', fuso: $relay->fuso)));
        $quando = new \DateTimeImmutable('2026-03-12 08:15:00 UTC');
        $feito = new Resultado('m', $quando, [
            Verificacao::ok('ponto', 'Está em dia.', 'It is up to date.'),
            new Verificacao('dias', Nivel::Critico, ['Falta ção.', 'Missing.'], ['Consolide.', 'Consolidate.']),
        ]);
        self::assertTrue(Guardado::grava($relay, $feito));
        $lido = Guardado::le($relay);
        self::assertEquals([$feito->arvore('en')['verificacoes'], Nivel::Critico], [$lido->arvore('en')['verificacoes'], $lido->nivel()]);
        self::assertSame('2026-03-12T17:15:00+09:00', $lido->quando->format(DATE_ATOM));
        self::assertSame(['dias'], array_map(fn ($v) => $v->nome, $lido->problemas()));
        foreach (['', '{"quando":"2026-03-12T17:15:00+09:00"}', substr(file_get_contents($relay->saude), 0, 90)] as $ruim) {
            file_put_contents($relay->saude, $ruim);
            self::assertInstanceOf(DadosInacessiveis::class, Arvore::falha(fn () => Guardado::le($relay)));
        }
    }

    public function testInteiroOuNada(): void
    {
        $arvore = new Arvore();
        $arquivo = "$arvore->dados/a.prom";
        self::assertTrue(Inteiro::escreve($arquivo, 'um'));
        chmod($arquivo, 0604);
        symlink($arquivo, "$arvore->dados/atalho");
        self::assertTrue(Inteiro::escreve("$arvore->dados/atalho", 'dois'));
        clearstatcache();
        self::assertSame(['dois', 0604], [file_get_contents($arquivo), fileperms($arquivo) & 0777]);
        self::assertFalse(Inteiro::escreve($arvore->dados, 'um'), 'a folder');
        self::assertFalse(Inteiro::escreve('/dev/full', 'um'), 'a device is no file to replace');
        self::assertFalse(Inteiro::escreve("$arvore->dados/nao/a", 'um'));
        self::assertSame(['.', '..', 'a.prom', 'atalho'], scandir($arvore->dados), 'nothing stays behind');
    }

    public function testPiorNivel(): void
    {
        [$o, $a, $c, $d] = [Nivel::Ok, Nivel::Aviso, Nivel::Critico, Nivel::Desconhecido];
        self::assertSame([$o, $a, $d, $c, $c], [Nivel::pior(), Nivel::pior($o, $a), Nivel::pior($d, $a), Nivel::pior($a, $d, $c), Nivel::pior($c, $o)]);
    }
}
