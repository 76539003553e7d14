<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\EmAberto;
use Vorna\Mrel\Falha\SemDiaCompleto;
use Vorna\Mrel\Formato\Humano;
use Vorna\Mrel\Formato\Quadro;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Tabela;

/** A command that answers a period with a table. */
abstract class Lista extends Comando
{
    /** Which table it is, in Rotulos. */
    abstract protected function qual(Pedido $pedido): string;

    abstract protected function tabela(Pedido $pedido, Periodo $periodo): Tabela;

    final protected function responde(Pedido $pedido, Saida $saida): int
    {
        $formato = $pedido->comoEscrever();
        $qual = $this->qual($pedido);
        try {
            $periodo = $pedido->periodo();
            $abertos = (new EmAberto($pedido->relay))->dias($periodo);
            $tabela = $this->tabela($pedido, $periodo)->comAbertos($abertos);
            $formato instanceof Quadro || $this->avisa($abertos, $pedido->lingua);
        } catch (SemDiaCompleto $e) {
            Aplicacao::diz($e->frase($pedido->lingua));
            $tabela = new Tabela($qual, []);
        }
        $saida->escreve($formato->pedacos($tabela));
        return Aplicacao::FEITO;
    }

    /** Where the table itself is for machines, the days that are not over are told beside it. */
    private function avisa(array $abertos, string $lingua): void
    {
        foreach ($abertos as $dia => $ate) {
            Aplicacao::diz((new Rotulos($lingua))->naoTerminou((new Humano($lingua))->dia($dia), $ate));
        }
    }
}
