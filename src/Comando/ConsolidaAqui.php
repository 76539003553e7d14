<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\AteAgora;
use Vorna\Mrel\Consolidacao;
use Vorna\Mrel\Falha\NaoConsolidado;

/** The run itself, for Consolida, which watches it from outside. */
final class ConsolidaAqui extends Comando
{
    public const NOME = '_consolida';
    public const OPCOES = ['forcar', 'ate-agora'];

    protected function configure(): void
    {
        $this->descreve(self::NOME, self::NOME . '_', 'a própria execução de consolida', 'the run of consolida itself', [])
            ->setAliases([])->setHidden(true);
    }

    protected function responde(Pedido $pedido, Saida $saida): int
    {
        if (!$pedido->marcada('ate-agora')) {
            Consolidacao::executa($pedido->relay, $pedido->marcada('forcar'));
            return Aplicacao::FEITO;
        }
        try {
            AteAgora::executa($pedido->relay);
        } catch (NaoConsolidado $e) {
            $e->nadaAFazer || throw $e;
            Aplicacao::diz($e->frase($pedido->lingua));
        }
        return Aplicacao::FEITO;
    }
}
