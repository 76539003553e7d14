<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Periodo;

/** The days of a period that have no data. */
final class Lacunas
{
    /**
     * @param list<string> $dias those that have, "2026-03-10"
     * @return list<array{string, string}> the first and last day of each gap
     */
    public static function em(Periodo $periodo, array $dias): array
    {
        $ha = array_flip($dias);
        $lacunas = [];
        $anterior = null;
        foreach ($periodo->cadaDia() as $um) {
            $dia = $um->primeiro;
            if (isset($ha[$dia])) {
                $anterior = null;
            } elseif ($anterior === null) {
                $anterior = count($lacunas);
                $lacunas[] = [$dia, $dia];
            } else {
                $lacunas[$anterior][1] = $dia;
            }
        }
        return $lacunas;
    }
}
