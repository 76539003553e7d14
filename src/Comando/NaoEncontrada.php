<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Falha;

/** A message of which no day file knows. */
final class NaoEncontrada extends Falha
{
    public static function mensagem(string $id, bool $comPeriodo): self
    {
        $i = self::cita($id);
        return $comPeriodo
            ? new self(
                "A mensagem $i não foi encontrada nesse período: tente sem --de e --ate.",
                "The message $i was not found in that period: try without --de and --ate."
            )
            : new self(
                "A mensagem $i não foi encontrada: confira o identificador, maiúsculas e minúsculas contam.",
                "The message $i was not found: check the id, letter case counts."
            );
    }
}
