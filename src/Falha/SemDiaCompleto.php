<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** A period named by a word that holds no complete day yet. */
final class SemDiaCompleto extends Falha
{
    public static function em(string $palavra): self
    {
        $p = self::cita($palavra);
        return new self(
            "\"$p\" ainda não tem nenhum dia completo: peça um período anterior.",
            "\"$p\" has no complete day yet: ask for an earlier period."
        );
    }
}
