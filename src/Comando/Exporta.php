<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Symfony\Component\Console\Completion\CompletionInput;
use Symfony\Component\Console\Completion\CompletionSuggestions;
use Symfony\Component\Console\Input\InputArgument;
use Vorna\Mrel\Exportacao;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** Rows in bulk, for databases and spreadsheets. */
final class Exporta extends Lista
{
    public const OPCOES = ['anonimo', 'chave'];
    public const TABELAS = ['totais' => 'totais', 'usuarios' => 'usuarios', 'eventos' => 'eventos'];

    private const QUE = ['totais', 'usuarios', 'eventos'];
    private const QUE_INGLES = ['totals' => 'totais', 'users' => 'usuarios', 'events' => 'eventos'];

    protected function configure(): void
    {
        $this->descreve(
            'exporta',
            'export',
            'Linhas em massa: totais, usuarios ou eventos',
            'Rows in bulk: totais (totals), usuarios (users) or eventos (events)',
            ['vtmrel exporta usuarios --de mes-passado > usuarios.csv', 'vtmrel exporta eventos --anonimo --chave chave.txt']
        );
        $this->addArgument('que', InputArgument::REQUIRED, 'totais, usuarios ou eventos / totals, users or events');
    }

    protected function qual(Pedido $pedido): string
    {
        $que = $pedido->argumento('que');
        $que = self::QUE_INGLES[$que] ?? $que;
        return in_array($que, self::QUE, true) ? $que : throw UsoErrado::exportacao($que, self::QUE);
    }

    protected function tabela(Pedido $pedido, Periodo $periodo): Tabela
    {
        $relay = $pedido->relay;
        $exportacao = new Exportacao($relay);
        $anonimo = $pedido->anonimo();
        return match ($this->qual($pedido)) {
            'totais' => Tabelas::totais($relay->nome, $pedido->relatorios()->totais($periodo)),
            'usuarios' => Tabelas::usuarios($relay->nome, $exportacao->usuarios($periodo), $anonimo),
            'eventos' => Tabelas::eventos($relay->nome, $exportacao->eventos($periodo), $relay->fuso, $anonimo),
        };
    }

    public function complete(CompletionInput $input, CompletionSuggestions $suggestions): void
    {
        if ($input->mustSuggestArgumentValuesFor('que')) {
            $suggestions->suggestValues(self::QUE);
        } else {
            parent::complete($input, $suggestions);
        }
    }
}
