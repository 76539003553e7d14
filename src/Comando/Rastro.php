<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Symfony\Component\Console\Input\InputArgument;
use Vorna\Mrel\Falha\SemDiaCompleto;
use Vorna\Mrel\Formato\Ficha;
use Vorna\Mrel\Formato\Json;
use Vorna\Mrel\Tabelas;

/** The history of one message. */
final class Rastro extends Comando
{
    public const TABELAS = ['rastro' => ''];

    protected function configure(): void
    {
        $this->descreve(
            'rastro',
            'trace',
            'A história de uma mensagem, com seus destinatários',
            'The history of a message, with its recipients',
            ['vtmrel rastro 69B2E5AD84A29FEC']
        );
        $this->addArgument('id', InputArgument::REQUIRED, 'o identificador da mensagem / the id of the message');
    }

    protected function responde(Pedido $pedido, Saida $saida): int
    {
        $id = $pedido->argumento('id');
        try {
            $periodo = $pedido->temPeriodo() ? $pedido->periodo() : null;
        } catch (SemDiaCompleto $e) {
            Aplicacao::diz($e->frase($pedido->lingua));
            return Aplicacao::NAO_FEITO;
        }
        $rastro = $pedido->relatorios()->rastro($id, $periodo) ?? throw NaoEncontrada::mensagem($id, $periodo !== null);
        $saida->escreve(match (true) {
            $pedido->marcada('excel') => $pedido->comoEscrever()->pedacos(Tabelas::rastro($rastro)),
            $pedido->formato === 'json' => [Json::texto(Tabelas::arvoreDoRastro($rastro)) . "\n"],
            $pedido->formato === 'tabela' => (new Ficha($pedido->lingua))->pedacos($rastro),
            default => $pedido->comoEscrever()->pedacos(Tabelas::rastro($rastro)),
        });
        return Aplicacao::FEITO;
    }
}
