<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

/** What one user sent and received in one of the 24 periods of 3600 seconds that a day is counted in. */
final readonly class HoraDeUsuario
{
    /** @param \Closure(): bool $incertos */
    public function __construct(
        public string $usuario,
        /** "2026-03-10" */
        public string $dia,
        /** When the period begins, as the day file says. */
        public \DateTimeImmutable $inicio,
        /** The hour that the clock showed then. */
        public int $hora,
        public int $enviadas,
        public int $bytesEnviados,
        public int $recebidas,
        public int $bytesRecebidos,
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
