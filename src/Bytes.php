<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** A count of bytes in a table. Formats for machines print the engine's figure; a table for people marks it. */
final readonly class Bytes implements \JsonSerializable, \Stringable
{
    /** @param \Closure(): bool $incertos whether the count may have begun again at 0; may have to read events */
    public function __construct(public int $n, private \Closure $incertos)
    {
    }

    public function incertos(): bool
    {
        return ($this->incertos)();
    }

    public function __toString(): string
    {
        return (string) $this->n;
    }

    public function jsonSerialize(): int
    {
        return $this->n;
    }
}
