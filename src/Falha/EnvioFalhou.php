<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** A day did not get into the fleet's database. Nothing of it is there that was not before. */
final class EnvioFalhou extends Falha
{
    public static function semConexao(string $porque): self
    {
        $p = self::cita($porque);
        return new self(
            "O banco da frota não atende ($p): confira --para e o servidor, e rode de novo.",
            "The fleet's database does not answer ($p): check --para and the server, and run again."
        );
    }

    public static function doServidor(string $porque): self
    {
        $p = self::cita($porque === '' ? 'sem resposta / no answer' : $porque);
        return new self(
            "O banco da frota não levou o envio ao fim ($p): corrija e rode de novo, os dias prontos ficam.",
            "The fleet's database did not end the sending ($p): mend that and run again, days that are done stay."
        );
    }

    public static function mudou(string $dia): self
    {
        return new self(
            "O dia $dia foi consolidado de novo durante o envio, que foi desfeito: rode de novo.",
            "The day $dia was consolidated again while it was sent, which was undone: run again."
        );
    }
}
