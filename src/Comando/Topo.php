<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Contador;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** The largest users or domains. */
final class Topo extends Lista
{
    public const OPCOES = ['por', 'n', 'dominios'];
    public const TABELAS = ['topo' => 'Usuários / Users', 'topo_dominios' => 'Com --dominios / With --dominios'];

    private const QUANTOS = 20;

    protected function configure(): void
    {
        $this->descreve(
            'topo',
            'top',
            'Os maiores usuários ou domínios',
            'The largest users or domains',
            ['vtmrel topo --de ultimos-7 --n 10', 'vtmrel topo --por bytes_recebidos --dominios --de este-mes']
        );
    }

    protected function qual(Pedido $pedido): string
    {
        return $pedido->marcada('dominios') ? 'topo_dominios' : 'topo';
    }

    protected function tabela(Pedido $pedido, Periodo $periodo): Tabela
    {
        $contadores = array_column(Contador::cases(), 'value');
        $por = Contador::from($pedido->escolha('por', $contadores) ?? Contador::Enviadas->value);
        $dominios = $pedido->marcada('dominios');
        $maiores = $pedido->relatorios()->topo($periodo, $por, $pedido->numero('n') ?? self::QUANTOS, $dominios);
        return Tabelas::topo($maiores, $por, $dominios);
    }
}
