<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\DadosInacessiveis;

/** The recorded point of a relay: the day that the next consolidation begins with. */
final readonly class Ponto
{
    private const MESES = ['Jan', 'Feb', 'Mar', 'Apr', 'May', 'Jun', 'Jul', 'Aug', 'Sep', 'Oct', 'Nov', 'Dec'];

    /**
     * The day of the point, "2026-03-12": those before it are complete. Null when none was recorded, which
     * is a file that is not there or whose first line is none ("1 Thu Mar 12 00:00:00 2026").
     *
     * @throws DadosInacessiveis when the file is there but cannot be read
     */
    public static function dia(?string $arquivo): ?string
    {
        if ($arquivo === null || $arquivo === '') {
            return null;
        }
        error_clear_last();
        if (!@file_exists($arquivo)) {
            if (str_contains(error_get_last()['message'] ?? '', 'open_basedir')) {
                throw DadosInacessiveis::foraDoPermitido($arquivo);
            }
            return null;
        }
        $linha = is_file($arquivo) ? @file_get_contents($arquivo, false, null, 0, 200) : false;
        if ($linha === false) {
            throw DadosInacessiveis::ilegivel($arquivo);
        }
        if (!preg_match('/^1 \w{3} (\w{3}) +(\d{1,2}) \d\d:\d\d:\d\d (\d{4})/', $linha, $p)) {
            return null;
        }
        $mes = array_search($p[1], self::MESES, true);
        $dia = $mes === false ? '' : sprintf('%s-%02d-%02d', $p[3], $mes + 1, $p[2]);
        return Periodo::existe($dia) ? $dia : null;
    }

    /**
     * The last complete day: the one before the point; without a point the newest day before $hoje that
     * is over; null when there is none.
     */
    public static function ultimoDiaCompleto(Relay $relay, string $hoje): ?string
    {
        $ponto = self::dia($relay->ponto);
        if ($ponto !== null) {
            return gmdate('Y-m-d', strtotime("$ponto 12:00 UTC") - 86400);
        }
        $antes = array_filter((new Dias($relay->dados))->todos(), static fn (string $dia) => $dia < $hoje);
        $abertos = new EmAberto($relay);
        while ($antes && $abertos->ate(end($antes)) !== null) {
            array_pop($antes);
        }
        return $antes ? end($antes) : null;
    }
}
