<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Relay;

/**
 * Who the present administrator is, and whose mail he may see. An appliance implements it over its own
 * sessions; the pages ask it once a request, and never look past what it answers.
 */
interface Acesso
{
    /** His name, for the audit line. */
    public function quem(): string;

    /**
     * The mail domains that he may see of that relay.
     *
     * @return ?list<string> null for all, an empty list for none
     */
    public function dominios(Relay $relay): ?array;
}
