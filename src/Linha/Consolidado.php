<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

use Vorna\Mrel\Falha\NaoConsolidado;

/** What a consolidation has done. */
final readonly class Consolidado
{
    /** @param list<string> $dias whose files it wrote, "2026-03-10" */
    public function __construct(
        public array $dias,
        /** Lines of those days in the logs. */
        public int $linhas,
        /** The point after it; null when there is none. */
        public ?\DateTimeImmutable $ponto,
        /** Why it did nothing, or not all that was to be done. */
        public ?NaoConsolidado $motivo,
    ) {
    }

    public function feito(): bool
    {
        return $this->motivo === null || $this->motivo->nadaAFazer;
    }
}
