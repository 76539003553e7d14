<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Symfony\Component\Console\Command\Command;
use Symfony\Component\Console\Completion\CompletionInput;
use Symfony\Component\Console\Completion\CompletionSuggestions;
use Symfony\Component\Console\Input\InputInterface;
use Symfony\Component\Console\Output\OutputInterface;
use Vorna\Mrel\Falha;

/** What all commands share: options, completion of their values, the way from a command line to an answer. */
abstract class Comando extends Command
{
    /** Names in Opcoes, besides those that all commands have. */
    public const OPCOES = [];
    /** Whether it is about a relay, which must then be known. */
    protected const DE_UM_RELAY = true;
    /** The tables that it answers with, as in Rotulos; and when, if there are several. */
    public const TABELAS = [];
    /** Whether it answers for all relays of a configuration at once. */
    public const VARIOS = false;

    /** @var list<string> */
    private array $exemplos = [];

    abstract protected function responde(Pedido $pedido, Saida $saida): int;

    /** @param list<string> $exemplos */
    protected function descreve(string $nome, string $ingles, string $texto, string $text, array $exemplos): static
    {
        $this->exemplos = $exemplos;
        return $this->setName($nome)->setAliases([$ingles])->setDescription("$texto / $text")
            ->setDefinition(Opcoes::definicoes([...static::OPCOES, ...Opcoes::COMUNS]))
            ->setHelp("<comment>Exemplos / Examples:</comment>\n  " . implode("\n  ", $exemplos));
    }

    /** @return list<string> */
    final public function exemplos(): array
    {
        return $this->exemplos;
    }

    final protected function execute(InputInterface $input, OutputInterface $output): int
    {
        \assert($output instanceof Saida);
        return $this->responde(new Pedido($input, $output->eTerminal(), static::VARIOS, static::DE_UM_RELAY), $output);
    }

    public function complete(CompletionInput $input, CompletionSuggestions $suggestions): void
    {
        if ($input->getCompletionType() !== CompletionInput::TYPE_OPTION_VALUE) {
            return;
        }
        $opcao = (string) $input->getCompletionName();
        $valores = Opcoes::sugestoes($opcao);
        if ($opcao === 'relay') {
            try {
                $valores = Pedido::relays($input->getOption('config'));
            } catch (Falha) {
                // No configuration, no names.
            }
        }
        $suggestions->suggestValues($valores);
    }
}
