<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Linha\DiaDeUsuario;
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
        $dia = array_search('dia', $tabela->colunas, true);
        $html = $pedido->html($tabela, [
            'dia' => static fn (array $l): string =>
                $pedido->enderecos->de('horas', ['de' => $l[$dia], 'ate' => $l[$dia]]),
        ], ['usuario']);
        return new Conteudo([
            'tabela' => $html,
            'faltam' => Lacunas::em($pedido->periodo(), $html->valores('dia')),
        ]);
    }

    public function tabela(Pedido $pedido): ?Tabela
    {
        $periodo = $pedido->periodo();
        return match (true) {
            $periodo === null => null,
            $pedido->permissao->tudo() => Tabelas::dias($pedido->relatorios->totais($periodo)),
            default => Tabelas::diasDeUsuario(DiaDeUsuario::somados($pedido->horasDosDominios($periodo))),
        };
    }
}
