<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Paginas\Conteudo;
use Vorna\Mrel\Paginas\Pagina;
use Vorna\Mrel\Paginas\Pedido;
use Vorna\Mrel\Rotulos;

/** What every column means, and what counts twice. */
final class Definicoes extends Pagina
{
    public const NOME = 'definicoes';
    public const SEM_DADOS = true;

    /** The tables of the pages. */
    private const TABELAS = ['dias', 'horas', 'dias_usuario', 'horas_usuario', 'topo', 'topo_dominios', 'mensagens',
        'rastro'];

    public function responde(Pedido $pedido): Conteudo
    {
        $rotulos = new Rotulos($pedido->lingua);
        $tabelas = [];
        foreach (self::TABELAS as $tabela) {
            foreach (Rotulos::colunas($tabela) as $coluna) {
                $tabelas[$tabela][] = [
                    'nome' => $coluna,
                    'rotulo' => $rotulos->coluna($tabela, $coluna),
                    'definicao' => $rotulos->definicao($tabela, $coluna),
                ];
            }
        }
        return new Conteudo(['tabelas' => $tabelas]);
    }
}
