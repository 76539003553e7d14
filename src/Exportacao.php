<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Linha\ContasDeUsuario;
use Vorna\Mrel\Linha\Evento;

/** The lines of the day files in bulk, a day after the other, in a few MiB however long the period. */
final readonly class Exportacao
{
    public function __construct(private Relay $relay)
    {
    }

    /** @return \Generator<int, ContasDeUsuario> in the order of the statistics files */
    public function usuarios(Periodo $periodo): \Generator
    {
    }

    /** @return \Generator<int, Evento> in the order of the compact files */
    public function eventos(Periodo $periodo): \Generator
    {
    }
}
