<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Correio\Carta;
use Vorna\Mrel\Correio\Redacao;
use Vorna\Mrel\Correio\RelatorioDiario;
use Vorna\Mrel\Periodo;

/** The report of a day as a message, to somebody or to be looked at. */
final class Relatorio extends Comando
{
    public const OPCOES = ['para-quem', 'como', 'stdout'];

    protected function configure(): void
    {
        $this->descreve(
            'relatorio',
            'report',
            'Envia por correio o relatório do último dia completo',
            'Mails the report of the last complete day',
            ['vtmrel relatorio --para postmaster@example.com', 'vtmrel relatorio --stdout --lingua en']
        );
    }

    protected function responde(Pedido $pedido, Saida $saida): int
    {
        $para = $pedido->textos('para');
        $para || $pedido->marcada('stdout') || throw UsoErrado::falta(
            'para',
            'diga a quem enviar, ou olhe a mensagem com --stdout.',
            'say whom to send it to, or look at the message with --stdout.'
        );
        // Wrong addresses are told before anything is read.
        $carta = static fn (string ...$partes): Carta => new Carta($para, $pedido->texto('como'), ...[...$partes, $pedido->lingua]);
        $carta('', '', '');
        $redacao = new Redacao(
            new RelatorioDiario($pedido->relay, Periodo::dia($pedido->periodo()->ultimo, $pedido->relay->fuso)),
            $pedido->lingua
        );
        $carta = $carta($redacao->assunto(), $redacao->texto(), $redacao->html());
        if ($pedido->marcada('stdout')) {
            $saida->escreve([(string) $carta]);
        } else {
            $carta->envia();
        }
        return Aplicacao::FEITO;
    }
}
