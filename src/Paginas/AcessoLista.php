<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Relay;

/** The same domains of every relay, given at hand; without a list all of them, as on an appliance of one's own. */
final readonly class AcessoLista implements Acesso
{
    /** @param ?list<string> $dominios null for all, an empty list for none */
    public function __construct(private string $quem, private ?array $dominios = null)
    {
    }

    /** All domains, for whoever the web server says has signed in. */
    public static function doServidor(): self
    {
        return new self((string) ($_SERVER['REMOTE_USER'] ?? $_SERVER['REMOTE_ADDR'] ?? ''));
    }

    public function quem(): string
    {
        return $this->quem;
    }

    public function dominios(Relay $relay): ?array
    {
        return $this->dominios;
    }
}
