<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Linha\Rastro as Historia;
use Vorna\Mrel\Paginas\Conteudo;
use Vorna\Mrel\Paginas\Narrativa;
use Vorna\Mrel\Paginas\Pagina;
use Vorna\Mrel\Paginas\Pedido;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** "Did it arrive?": the history of one message. */
final class Rastro extends Pagina
{
    public const NOME = 'rastro';
    public const CAMPOS = ['id'];
    public const MAXIMO = 36525;

    public function responde(Pedido $pedido): Conteudo
    {
        $id = $this->id($pedido);
        if ($id === null) {
            return new Conteudo(['id' => null]);
        }
        $rastro = $this->rastro($pedido, $id);
        return new Conteudo([
            'id' => $id,
            'historia' => $rastro === null ? null : new Narrativa($rastro),
        ], $rastro === null ? 404 : 200);
    }

    public function tabela(Pedido $pedido): ?Tabela
    {
        $id = $this->id($pedido);
        $rastro = $id === null ? null : $this->rastro($pedido, $id);
        return $rastro === null ? null : Tabelas::rastro($rastro);
    }

    private function id(Pedido $pedido): ?string
    {
        $id = $pedido->parametros->id('id');
        return $pedido->entendido() ? $id : null;
    }

    private function rastro(Pedido $pedido, string $id): ?Historia
    {
        return $pedido->permissao->rastro($pedido->relatorios->rastro($id));
    }
}
