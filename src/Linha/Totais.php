<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

/** The mail of one day, all users together. Local senders are "internas", all others "externas". */
final readonly class Totais
{
    /** @param \Closure(): bool $incertos */
    public function __construct(
        /** "2026-03-10" */
        public string $dia,
        public int $internas,
        public int $bytesInternas,
        public int $externas,
        public int $bytesExternas,
        public int $spam,
        public int $virus,
        public int $comErro,
        private \Closure $incertos,
    ) {
    }

    /** Whether the bytes may have begun again at 0: the counters are of 32 bits. Reads the day's events. */
    public function bytesIncertos(): bool
    {
        return ($this->incertos)();
    }
}
