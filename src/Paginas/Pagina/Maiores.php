<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Contador;
use Vorna\Mrel\Paginas\Conteudo;
use Vorna\Mrel\Paginas\Pagina;
use Vorna\Mrel\Paginas\Pedido;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** The largest users or domains by a counter. */
final class Maiores extends Pagina
{
    public const NOME = 'maiores';
    public const CAMPOS = ['por', 'dominios'];

    /** So many on the page; a download has all. */
    private const QUANTOS = 50;

    public function responde(Pedido $pedido): Conteudo
    {
        $tabela = $this->as($pedido, self::QUANTOS);
        $dados = ['contadores' => array_column(Contador::cases(), 'value'), 'por' => $this->por($pedido)->value];
        if ($tabela === null) {
            return new Conteudo($dados);
        }
        $enderecos = $pedido->enderecos;
        return new Conteudo($dados + [
            'quantos' => self::QUANTOS,
            'tabela' => $pedido->html($tabela, [
                'usuario' => static fn (array $l): string => $enderecos->de('usuario', ['usuario' => $l[1]]),
            ]),
        ]);
    }

    public function tabela(Pedido $pedido): ?Tabela
    {
        return $this->as($pedido, PHP_INT_MAX);
    }

    private function as(Pedido $pedido, int $n): ?Tabela
    {
        $por = $this->por($pedido);
        $dominios = $pedido->parametros->marcado('dominios');
        $periodo = $pedido->periodo();
        if ($periodo === null || !$pedido->entendido()) {
            return null;
        }
        $so = $pedido->permissao->tudo() ? null : $pedido->permissao->ve(...);
        return Tabelas::topo($pedido->relatorios->topo($periodo, $por, $n, $dominios, $so), $por, $dominios);
    }

    private function por(Pedido $pedido): Contador
    {
        $contadores = array_column(Contador::cases(), 'value');
        return Contador::from($pedido->parametros->escolha('por', $contadores) ?? Contador::Enviadas->value);
    }
}
