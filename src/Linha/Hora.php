<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

/** One hour of the day, 0 to 23 by the clock, the same hour of all days of the period together. */
final readonly class Hora
{
    /** @param \Closure(): bool $incertos */
    public function __construct(
        public int $hora,
        public int $internas,
        public int $bytesInternas,
        public int $externas,
        public int $bytesExternas,
        /** Counted at the verdict, and again when the message ends without an error. */
        public int $spamOcorrencias,
        /** Counted like spam. */
        public int $virusOcorrencias,
        public int $comErro,
        private \Closure $incertos,
    ) {
    }

    /** Whether the bytes may have begun again at 0: the counters are of 32 bits. Reads the days' events. */
    public function bytesIncertos(): bool
    {
        return ($this->incertos)();
    }
}
