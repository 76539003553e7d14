<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** A database that days cannot be sent to, however often it is tried. */
final class FrotaInvalida extends Falha
{
    public static function comSenha(): self
    {
        return new self(
            'Em --para não se escreve a senha, que todos veriam: ponha-a no arquivo de PGPASSFILE ou em ~/.pgpass.',
            'A password is not written in --para, where all would see it: put it into the file of PGPASSFILE or ~/.pgpass.'
        );
    }

    public static function esquema(?string $tem, int $versao): self
    {
        return $tem === null
            ? new self(
                'O banco não tem o esquema da frota: crie-o com vtmrel esquema pgsql | psql.',
                'The database lacks the schema of the fleet: make it with vtmrel esquema pgsql | psql.'
            )
            : new self(
                "O esquema do banco é de outra versão que $versao: use o mesmo vtmrel nos relays e no banco.",
                "The schema of the database is of another version than $versao: use one vtmrel at relays and database."
            );
    }
}
