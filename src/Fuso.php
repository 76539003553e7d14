<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\ConfiguracaoInvalida;

/** The zone whose days the day files are: that of the C library. PHP's own setting is never asked. */
final class Fuso
{
    private const SEM_MUDANCAS = ['UTC', 'GMT', 'UCT', 'EST', 'MST', 'HST'];

    /** A zone by its name, as a configuration gives it. Offsets and POSIX rules ("BRT3") are refused. */
    public static function de(string $nome): \DateTimeZone
    {
        // Names only: an offset would miss the changes of clocks, and the C library reads it the other way.
        if (preg_match('~^[A-Za-z][\w+-]*(/[\w+-]+)*$~D', $nome)) {
            try {
                $fuso = new \DateTimeZone($nome);
                // Some names PHP takes for a fixed offset: right where the clock never changes, else not.
                if ($fuso->getLocation() !== false || in_array($nome, self::SEM_MUDANCAS, true)) {
                    return $fuso;
                }
            } catch (\Exception) {
            }
        }
        throw ConfiguracaoInvalida::fuso($nome);
    }

    /** The C library's: what TZ names, else what /etc/localtime points to. */
    public static function daMaquina(string $localtime = '/etc/localtime'): \DateTimeZone
    {
        // What a web server passes on as a variable of the request is not what the C library sees.
        $tz = getenv('TZ', true);
        if ($tz === '') {
            return new \DateTimeZone('UTC');
        }
        if ($tz !== false) {
            return self::de(self::nome(ltrim($tz, ':')));
        }
        if (($alvo = @readlink($localtime)) !== false) {
            return self::de(self::nome($alvo));
        }
        if (!@is_file($localtime)) {
            return new \DateTimeZone('UTC');
        }
        // A copy in place of a link: Debian keeps the name beside it.
        return self::de(trim((string) @file_get_contents(dirname($localtime) . '/timezone')) ?: $localtime);
    }

    private static function nome(string $caminho): string
    {
        return preg_replace('~^.*/zoneinfo/(?:posix/|right/)?~', '', $caminho);
    }
}
