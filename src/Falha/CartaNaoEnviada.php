<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** A message that the system's sendmail did not take. */
final class CartaNaoEnviada extends Falha
{
    public static function semPrograma(string $programa): self
    {
        $p = self::cita($programa);
        return new self(
            "Não há $p para enviar a mensagem: instale um servidor de correio, ou olhe-a com --stdout.",
            "There is no $p to send the message: install a mail server, or look at it with --stdout."
        );
    }

    public static function recusada(int $codigo, string $erros): self
    {
        $e = $erros === '' ? '' : ': ' . self::cita($erros);
        return new self(
            "O sendmail não aceitou a mensagem (código $codigo$e): confira o endereço e o servidor de correio.",
            "The sendmail did not take the message (code $codigo$e): check the address and the mail server."
        );
    }
}
