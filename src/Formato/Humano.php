<?php

declare(strict_types=1);

namespace Vorna\Mrel\Formato;

/** Numbers, sizes, days and times as people of one language write them. */
final readonly class Humano
{
    private bool $ingles;

    public function __construct(string $lingua)
    {
        $this->ingles = $lingua === 'en';
    }

    /** "1.234.567" */
    public function numero(int|float $n, int $casas = 0): string
    {
        return $this->ingles ? number_format($n, $casas) : number_format($n, $casas, ',', '.');
    }

    /** "640 B", "12,3 KB", "1,2 MB" */
    public function tamanho(int|float $bytes): string
    {
        if ($bytes < 1024) {
            return $this->numero($bytes) . ' B';
        }
        $unidades = ['KB', 'MB', 'GB', 'TB', 'PB'];
        // Not "1.024,0 KB": what would be rounded up to the next unit is told in it.
        for ($i = 0, $bytes /= 1024; $bytes >= 1023.95 && $i < 4; ++$i) {
            $bytes /= 1024;
        }
        return $this->numero($bytes, 1) . " $unidades[$i]";
    }

    /** "2026-03-10" as "10/03/2026"; English keeps it. */
    public function dia(string $dia): string
    {
        return $this->ingles || $dia === '' ? $dia : implode('/', array_reverse(explode('-', $dia)));
    }

    /** "2026-03-10" as "ter 10/03", in English "Tue 03-10": for lists whose year is told elsewhere. */
    public function diaCurto(string $dia): string
    {
        $semana = $this->ingles
            ? ['Sun', 'Mon', 'Tue', 'Wed', 'Thu', 'Fri', 'Sat'] : ['dom', 'seg', 'ter', 'qua', 'qui', 'sex', 'sáb'];
        [$ano, $mes, $n] = array_map('intval', explode('-', $dia));
        return $semana[(int) gmdate('w', gmmktime(12, 0, 0, $mes, $n, $ano))] . ' '
            . ($this->ingles ? substr($dia, 5) : sprintf('%02d/%02d', $n, $mes));
    }

    /** "2026-03-10T08:15:00-03:00" as "10/03/2026 08:15:00". */
    public function instante(string $iso): string
    {
        return $iso === '' ? '' : $this->dia(substr($iso, 0, 10)) . ' ' . substr($iso, 11, 8);
    }
}
