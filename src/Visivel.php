<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/**
 * Texts of the log as somebody may look at them: whoever sends mail chooses their bytes, and a terminal
 * obeys control characters.
 */
final class Visivel
{
    /** Control characters as pictures: U+2400 and on, "�" for those from 0x80 to 0x9F. */
    public static function texto(string $utf8): string
    {
        return self::troca('/[\x00-\x1F\x7F]|\xC2[\x80-\x9F]/', $utf8);
    }

    /** The same for whole lines, which keep their ends. */
    public static function linhas(string $utf8): string
    {
        return self::troca('/[\x00-\x09\x0B\x0C\x0E-\x1F\x7F]|\r(?!\n)|\xC2[\x80-\x9F]/', $utf8);
    }

    /** Back from the pictures to what they show: no log can hold a picture. */
    public static function bytes(string $visivel): string
    {
        return preg_replace_callback(
            '/\xE2\x90([\x80-\x9F\xA1])/',
            static fn (array $m): string => $m[1] === "\xA1" ? "\x7F" : chr(ord($m[1]) & 0x1F),
            $visivel
        );
    }

    private static function troca(string $padrao, string $utf8): string
    {
        return preg_replace_callback($padrao, static fn (array $m): string => match (true) {
            $m[0] === "\x7F" => "\u{2421}",
            $m[0] < ' ' => "\xE2\x90" . chr(0x80 | ord($m[0])),
            default => "\u{FFFD}",
        }, $utf8);
    }
}
