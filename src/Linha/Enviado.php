<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

/** A day that was put into the fleet's database. */
final readonly class Enviado
{
    public function __construct(
        public string $relay,
        /** "2026-03-10" */
        public string $dia,
        /** Rows of the table usuarios. */
        public int $usuarios,
        /** Rows of the table eventos. */
        public int $eventos,
    ) {
    }
}
