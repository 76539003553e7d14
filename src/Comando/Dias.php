<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Periodo;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** Totals per day; days of users. */
final class Dias extends Lista
{
    public const OPCOES = ['usuarios'];
    public const TABELAS = ['dias' => 'Totais / Totals', 'dias_usuario' => 'Com --usuario / With --usuario'];

    protected function configure(): void
    {
        $this->descreve(
            'dias',
            'days',
            'Totais por dia e a soma, ou os dias de usuários',
            'Totals per day and their sum, or the days of users',
            ['vtmrel dias --de mes-passado', 'vtmrel dias --de ultimos-7 --usuario ana@example.com']
        );
    }

    protected function qual(Pedido $pedido): string
    {
        return $pedido->textos('usuario') ? 'dias_usuario' : 'dias';
    }

    protected function tabela(Pedido $pedido, Periodo $periodo): Tabela
    {
        $usuarios = $pedido->textos('usuario');
        return $usuarios
            ? Tabelas::diasDeUsuario($pedido->relatorios()->porUsuario($periodo, $usuarios))
            : Tabelas::dias($pedido->relatorios()->totais($periodo));
    }
}
