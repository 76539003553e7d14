<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** One day of the period cannot be read; figures without it would be wrong. */
final class DiaIlegivel extends Falha
{
    public static function arquivo(string $dia, string $arquivo): self
    {
        $a = self::cita($arquivo);
        return new self(
            "O dia $dia não pode ser lido: $a existe, mas este usuário não consegue abri-lo. Confira dono e "
                . "permissões.",
            "The day $dia cannot be read: $a is there, but this user cannot open it. Check owner and permissions."
        );
    }

    public static function falta(string $dia, string $arquivo): self
    {
        $a = self::cita($arquivo);
        return new self(
            "O dia $dia está incompleto: falta $a. Consolide esse dia de novo ou peça um período sem ele.",
            "The day $dia is not whole: $a is missing. Consolidate that day again, or ask for a period without it."
        );
    }
}
