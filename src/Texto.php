<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\EntradaInvalida;

/** Texts between the day files, which are ISO-8859-1, and everybody else, who reads UTF-8. */
final class Texto
{
    /** Every byte from 0x01 to 0xFF has its character, so this cannot fail. */
    public static function utf8(string $latin1): string
    {
        return preg_match('/[\x80-\xFF]/', $latin1) ? iconv('ISO-8859-1', 'UTF-8', $latin1) : $latin1;
    }

    /**
     * The bytes that the day files would hold for a text in UTF-8; null when they cannot hold it.
     *
     * @throws EntradaInvalida when it is not UTF-8
     */
    public static function latin1(string $utf8): ?string
    {
        if (!preg_match('/[\x80-\xFF]/', $utf8)) {
            return $utf8;
        }
        if (!preg_match('//u', $utf8)) {
            throw EntradaInvalida::texto($utf8);
        }
        $latin1 = @iconv('UTF-8', 'ISO-8859-1', $utf8);
        return $latin1 === false ? null : $latin1;
    }
}
