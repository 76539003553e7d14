<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

/** One of the largest users or domains. */
final readonly class Posicao
{
    /** @param \Closure(): bool $incertos */
    public function __construct(
        public int $posicao,
        public string $nome,
        public int $valor,
        private \Closure $incertos,
    ) {
    }

    /** Of byte counts: whether one that went into the sum may have begun again at 0. Reads the days' events. */
    public function bytesIncertos(): bool
    {
        return ($this->incertos)();
    }
}
