<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Anonimo;
use Vorna\Mrel\Calendario;
use Vorna\Mrel\Dias;
use Vorna\Mrel\Falha;
use Vorna\Mrel\Falha\NenhumDia;
use Vorna\Mrel\Falha\SemDiaCompleto;
use Vorna\Mrel\Frota\Banco;
use Vorna\Mrel\Frota\Envio;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Tabelas;

/** Sends days to the fleet's database and tells which. */
final class Envia extends Comando
{
    public const OPCOES = ['para', 'desde-o-ultimo', 'anonimo', 'chave'];
    public const TABELAS = ['envios' => ''];

    protected function configure(): void
    {
        $this->descreve(
            'envia',
            'send',
            'Põe dias deste relay no banco da frota; um dia já enviado é substituído',
            'Puts days of this relay into the fleet\'s database; a day sent before is replaced',
            ['vtmrel envia --para service=frota --desde-o-ultimo', 'vtmrel envia --para "host=bd dbname=frota" --de 2026-03-01 --ate 2026-03-31']
        );
    }

    protected function responde(Pedido $pedido, Saida $saida): int
    {
        $dsn = $pedido->texto('para') ?? throw UsoErrado::falta(
            'para',
            'diga a que banco enviar.',
            'say which database to send to.'
        );
        $formato = $pedido->comoEscrever();
        $anonimo = $this->anonimo($pedido);
        try {
            $periodo = $this->periodo($pedido);
        } catch (SemDiaCompleto $e) {
            Aplicacao::diz($e->frase($pedido->lingua));
            return Aplicacao::FEITO;
        }
        $envio = new Envio($pedido->relay, Banco::abre($dsn), $anonimo);
        $dias = $envio->todos($periodo);
        if ($pedido->marcada('desde-o-ultimo')) {
            $dias = $envio->pendentes($dias);
        }
        $falha = null;
        $saida->escreve($formato->pedacos(Tabelas::envios(self::envia($envio, $dias, $falha))));
        return $falha === null ? Aplicacao::FEITO : throw $falha;
    }

    /** The days that got there; what stopped it comes out as $falha, so that they are told all the same. */
    private static function envia(Envio $envio, array $dias, ?Falha &$falha): \Generator
    {
        foreach ($dias as $dia) {
            try {
                yield $envio->dia($dia);
            } catch (Falha $falha) {
                return;
            }
        }
    }

    /** With --desde-o-ultimo and nothing else all days up to the last complete one. */
    private function periodo(Pedido $pedido): Periodo
    {
        if (!$pedido->marcada('desde-o-ultimo') || $pedido->temPeriodo()) {
            return $pedido->periodo();
        }
        $relay = $pedido->relay;
        $ultimo = (new Calendario($relay))->ultimoDiaCompleto();
        $primeiro = (new Dias($relay->dados))->todos()[0] ?? throw NenhumDia::em($relay->dados);
        return Periodo::de(min($primeiro, $ultimo), $ultimo, $relay->fuso);
    }

    /** Tokens of one run alone would make another person of everybody each day. */
    private function anonimo(Pedido $pedido): ?Anonimo
    {
        if ($pedido->marcada('anonimo') && $pedido->texto('chave') === null) {
            throw UsoErrado::falta(
                'chave',
                'sem ela a mesma pessoa teria outro símbolo a cada envio.',
                'without it the same person would have another token each time.'
            );
        }
        return $pedido->anonimo();
    }
}
