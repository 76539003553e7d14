<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** A way to write a table down. */
interface Formato
{
    /** About so many bytes make a piece. */
    public const PEDACO = 65536;

    /** @return \Generator<int, string> pieces of text, to be written one behind the other */
    public function pedacos(Tabela $tabela): \Generator;
}
