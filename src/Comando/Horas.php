<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Periodo;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** The hours of the day; of a user those of each day. */
final class Horas extends Lista
{
    public const OPCOES = ['usuario'];
    public const TABELAS = ['horas' => 'Todos / Everybody', 'horas_usuario' => 'Com --usuario / With --usuario'];

    protected function configure(): void
    {
        $this->descreve(
            'horas',
            'hours',
            'As 24 horas do dia; de um usuário, as de cada dia',
            'The 24 hours of the day; of a user, those of each day',
            ['vtmrel horas --de ontem', 'vtmrel horas --usuario ana@example.com']
        );
    }

    protected function qual(Pedido $pedido): string
    {
        return $pedido->texto('usuario') === null ? 'horas' : 'horas_usuario';
    }

    protected function tabela(Pedido $pedido, Periodo $periodo): Tabela
    {
        $usuario = $pedido->texto('usuario');
        return $usuario === null
            ? Tabelas::horas($pedido->relatorios()->horas($periodo))
            : Tabelas::horasDeUsuario($pedido->relatorios()->horasDe($periodo, $usuario));
    }
}
