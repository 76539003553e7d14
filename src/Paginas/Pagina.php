<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Tabela;

/** One page: what it needs of a request, and what it finds. Its template has its name. */
abstract class Pagina
{
    /** Its address, its template, the beginning of its texts. */
    public const NOME = '';
    /** Days that it shows when none were asked for. */
    public const DIAS = 7;
    /** Days that it answers for at most, so that no request takes long. */
    public const MAXIMO = 366;
    /** Its own parameters, besides the period; those named in its form. */
    public const CAMPOS = [];
    /** Whether it has something to say where there are no data to be read. */
    public const SEM_DADOS = false;

    /** Its data. What is wrong with parameters is remembered by them, and shown beside their fields. */
    abstract public function responde(Pedido $pedido): Conteudo;

    /** Its main table, all rows of it, for a download; null when it has none, or nothing was asked for. */
    public function tabela(Pedido $pedido): ?Tabela
    {
        return null;
    }
}
