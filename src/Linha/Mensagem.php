<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

use Vorna\Mrel\Estado;
use Vorna\Mrel\Sentido;

/** One message of a search. What the files do not show is null. */
final readonly class Mensagem
{
    public function __construct(
        public string $id,
        public Sentido $sentido,
        /** Of one sent its submission, of one received its last acceptance within the period. */
        public ?\DateTimeImmutable $quando,
        /** Null when the submission is not known, "" when there was no sender (a bounce). */
        public ?string $remetente,
        public ?int $bytes,
        /** SemErro, ComErro or Virus. */
        public Estado $estado,
    ) {
    }
}
