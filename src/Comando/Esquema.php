<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Symfony\Component\Console\Completion\CompletionInput;
use Symfony\Component\Console\Completion\CompletionSuggestions;
use Symfony\Component\Console\Input\InputArgument;
use Vorna\Mrel\Frota\Esquema as Definicao;

/** Prints the schema of a fleet's database. */
final class Esquema extends Comando
{
    protected const DE_UM_RELAY = false;

    protected function configure(): void
    {
        $this->descreve(
            'esquema',
            'schema',
            'O esquema do banco de muitos relays: tabelas, índices e os relatórios em SQL',
            'The schema of the database of many relays: tables, indexes and the reports in SQL',
            ['vtmrel esquema pgsql | psql -v ON_ERROR_STOP=1 -d frota', 'vtmrel esquema duckdb > frota.sql']
        );
        $this->addArgument('banco', InputArgument::REQUIRED, implode(', ', self::bancos()));
    }

    protected function responde(Pedido $pedido, Saida $saida): int
    {
        $banco = $pedido->argumento('banco');
        $esquema = Definicao::todos()[$banco] ?? throw UsoErrado::banco($banco, self::bancos());
        $saida->escreve([$esquema->sql()]);
        return Aplicacao::FEITO;
    }

    public function complete(CompletionInput $input, CompletionSuggestions $suggestions): void
    {
        if ($input->mustSuggestArgumentValuesFor('banco')) {
            $suggestions->suggestValues(self::bancos());
        } else {
            parent::complete($input, $suggestions);
        }
    }

    /** @return list<string> */
    private static function bancos(): array
    {
        return array_keys(Definicao::todos());
    }
}
