<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Paginas\Conteudo;
use Vorna\Mrel\Paginas\Lacunas;
use Vorna\Mrel\Paginas\Pagina;
use Vorna\Mrel\Paginas\Pedido;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** Totals per day. */
final class Dias extends Pagina
{
    public const NOME = 'dias';
    public const MAXIMO = 1100;

    public function responde(Pedido $pedido): Conteudo
    {
        $tabela = $this->tabela($pedido);
        if ($tabela === null) {
            return new Conteudo();
        }
        $html = $pedido->html($tabela, [
            'dia' => static fn (array $l): string => $pedido->enderecos->de('horas', ['de' => $l[0], 'ate' => $l[0]]),
        ]);
        return new Conteudo([
            'tabela' => $html,
            'faltam' => Lacunas::em($pedido->periodo(), $html->valores('dia')),
        ]);
    }

    public function tabela(Pedido $pedido): ?Tabela
    {
        $pedido->exigeTudo();
        $periodo = $pedido->periodo();
        return $periodo === null ? null : Tabelas::dias($pedido->relatorios->totais($periodo));
    }
}
