<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** The data directory is there, but holds no day files: nothing was consolidated yet. */
final class NenhumDia extends Falha
{
    public static function em(string $diretorio): self
    {
        $d = self::cita($diretorio);
        return new self(
            "Nenhum dia consolidado em $d: rode a consolidação primeiro.",
            "No day consolidated in $d: run the consolidation first."
        );
    }
}
