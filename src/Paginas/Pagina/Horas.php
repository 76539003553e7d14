<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Paginas\Conteudo;
use Vorna\Mrel\Paginas\Lacunas;
use Vorna\Mrel\Paginas\MapaDeCalor;
use Vorna\Mrel\Paginas\Pagina;
use Vorna\Mrel\Paginas\Pedido;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** The 24 hours, and how they were on each day. */
final class Horas extends Pagina
{
    public const NOME = 'horas';
    /** The engine needs memory by the message. */
    public const MAXIMO = 31;

    public function responde(Pedido $pedido): Conteudo
    {
        $pedido->exigeTudo();
        $periodo = $pedido->periodo();
        if ($periodo === null) {
            return new Conteudo();
        }
        $dias = $pedido->relatorios->horasPorDia($periodo);
        return new Conteudo([
            'tabela' => $pedido->html(Tabelas::horas($pedido->relatorios->somaDasHoras($periodo, $dias))),
            'mapa' => new MapaDeCalor($dias, $pedido->enderecos, $pedido->lingua),
            'faltam' => Lacunas::em($periodo, array_map('strval', array_keys($dias))),
        ]);
    }

    public function tabela(Pedido $pedido): ?Tabela
    {
        $pedido->exigeTudo();
        $periodo = $pedido->periodo();
        return $periodo === null ? null : Tabelas::horas($pedido->relatorios->horas($periodo));
    }
}
