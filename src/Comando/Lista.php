<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Falha\SemDiaCompleto;
use Vorna\Mrel\Periodo;
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
            $tabela = $this->tabela($pedido, $pedido->periodo());
        } catch (SemDiaCompleto $e) {
            Aplicacao::diz($e->frase($pedido->lingua));
            $tabela = new Tabela($qual, []);
        }
        $saida->escreve($formato->pedacos($tabela));
        return Aplicacao::FEITO;
    }
}
