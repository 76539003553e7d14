<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\EntradaInvalida;

/**
 * Texts between the day files, which are ISO-8859-1, and everybody else, who reads UTF-8. Done by hand:
 * iconv and mbstring are modules that an engine may lack.
 */
final class Texto
{
    /** Every byte from 0x01 to 0xFF has its character, so this cannot fail. */
    public static function utf8(string $latin1): string
    {
        return preg_replace_callback(
            '/[\x80-\xFF]/',
            static fn (array $m): string => chr(0xC0 | ord($m[0]) >> 6) . chr(0x80 | ord($m[0]) & 0x3F),
            $latin1
        );
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
        if (preg_match('/[\xC4-\xFF]/', $utf8)) {
            return null;
        }
        return preg_replace_callback(
            '/[\xC2\xC3][\x80-\xBF]/',
            static fn (array $m): string => chr((ord($m[0][0]) & 3) << 6 | ord($m[0][1]) & 0x3F),
            $utf8
        );
    }
}
