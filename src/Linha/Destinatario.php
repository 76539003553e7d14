<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

use Vorna\Mrel\Estado;

/** One recipient of a traced message. */
final readonly class Destinatario
{
    public function __construct(
        public string $nome,
        public \DateTimeImmutable $quando,
        /** Entregue or Recusado. */
        public Estado $estado,
        public string $texto,
    ) {
    }
}
