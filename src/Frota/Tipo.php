<?php

declare(strict_types=1);

namespace Vorna\Mrel\Frota;

/** What a column of the schema holds. */
enum Tipo
{
    case Texto;
    /** A text with few values. */
    case Palavra;
    case Dia;
    /** 0 to 23; may be missing. */
    case Hora;
    case Instante;
    case Conta;
    case ContaOuNada;
}
