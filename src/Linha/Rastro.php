<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

use Vorna\Mrel\Estado;

/** The history of one message. What the files do not show is null. */
final readonly class Rastro
{
    /** @param list<Destinatario> $destinatarios */
    public function __construct(
        public string $id,
        /** Null when the submission is not known, "" when there was no sender (a bounce). */
        public ?string $remetente,
        public ?int $bytes,
        public ?\DateTimeImmutable $submetida,
        public ?\DateTimeImmutable $encerrada,
        /** Virus, else ComErro, else EmCurso (it has no end), else Entregue. */
        public Estado $estado,
        public bool $virus,
        /** The story as the engine tells it, dated lines included; may be "". */
        public string $texto,
        public array $destinatarios,
        /** Whether the relay gave up: there is no further attempt, though no end was noted. */
        public bool $desistiu = false,
    ) {
    }
}
