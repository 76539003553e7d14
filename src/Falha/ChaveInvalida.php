<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** The key of an anonymous export cannot be read, made or used. */
final class ChaveInvalida extends Falha
{
    public static function ilegivel(string $arquivo): self
    {
        $a = self::cita($arquivo);
        return new self(
            "A chave $a não pode ser lida: confira dono e permissões.",
            "The key $a cannot be read: check owner and permissions."
        );
    }

    public static function curta(string $arquivo): self
    {
        $a = self::cita($arquivo);
        return new self(
            "A chave $a tem menos de 16 bytes: dê outro arquivo, ou apague este para que um novo seja feito.",
            "The key $a has less than 16 bytes: give another file, or remove this one and a new one is made."
        );
    }

    public static function naoFeita(string $arquivo): self
    {
        $a = self::cita($arquivo);
        return new self(
            "A chave $a não existe e não pode ser feita: dê um caminho em que este usuário possa escrever.",
            "The key $a is not there and cannot be made: give a path that this user can write to."
        );
    }
}
