<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Consolidacao;

/** The run itself, for Consolida, which watches it from outside. */
final class ConsolidaAqui extends Comando
{
    public const NOME = '_consolida';
    public const OPCOES = ['forcar'];

    protected function configure(): void
    {
        $this->descreve(self::NOME, self::NOME . '_', 'a própria execução de consolida', 'the run of consolida itself', [])
            ->setAliases([])->setHidden(true);
    }

    protected function responde(Pedido $pedido, Saida $saida): int
    {
        Consolidacao::executa($pedido->relay, $pedido->marcada('forcar'));
        return Aplicacao::FEITO;
    }
}
