<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** Which version this is: the library's, and the one that the extension should have. */
final class Versao
{
    public const PACOTE = '1.0';

    /** The extension's; "" when it names none, null when it is not loaded. */
    public static function doModulo(): ?string
    {
        return class_exists('vt_mrel', false)
            ? (string) (new \ReflectionClass('vt_mrel'))->getExtension()?->getVersion() : null;
    }
}
