<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** Which version this is: the library's, and the one that the extension should have. */
final class Versao
{
    public const PACOTE = '1.0';

    /**
     * The extension's, as its file has it: the engine is told none. "" when it cannot be found there, null when
     * the extension is not loaded.
     */
    public static function doModulo(): ?string
    {
        if (!class_exists('vt_mrel', false)) {
            return null;
        }
        preg_match('~ (/[^\n]*/[^/\n]*vt_mrel[^/\n]*\.so)$~m', (string) @file_get_contents('/proc/self/maps'), $m);
        $modulo = isset($m[1]) ? (string) @file_get_contents($m[1]) : '';
        return preg_match('/vt_mrel versao=([^;\0]+);/', $modulo, $m) ? $m[1] : '';
    }
}
