<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Falha;

/** Standard output could not be written to. */
final class SaidaPerdida extends Falha
{
    private const EPIPE = 32;

    public function __construct(private readonly int $errno, string $motivo)
    {
        parent::__construct(
            "A saída não pôde ser escrita ($motivo): confira o espaço em disco e o destino.",
            "The output could not be written ($motivo): check the disk space and where it goes."
        );
    }

    /** Whether the reader has gone, as "head" does once it has enough. */
    public function leitorSaiu(): bool
    {
        return $this->errno === self::EPIPE;
    }
}
