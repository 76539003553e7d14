<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

/** The busiest hours of local senders, from the statistics files: only local senders have sent anything there. */
final class Remetentes
{
    /** Names in one pattern. */
    private const JUNTOS = 200;

    /**
     * Who sent more than $n messages in an hour of that day.
     *
     * @return array<string, int> the most in an hour by name, as in the file; none when it is not there
     */
    public static function acimaDe(int $n, string $arquivo): array
    {
        $algarismos = strlen((string) $n);
        // A line of few digits cannot be meant.
        return self::horas("/^([^ \\n]+) (\\d{{$algarismos},}) /m", [$arquivo], $n);
    }

    /**
     * @param list<int|string> $nomes
     * @param list<string> $arquivos
     * @return array<string, int> the most in an hour by name; who sent nothing is missing
     */
    public static function maioresHoras(array $nomes, array $arquivos): array
    {
        $horas = [];
        foreach (array_chunk($nomes, self::JUNTOS) as $uns) {
            $alternativas = implode('|', array_map(static fn (int|string $n): string => preg_quote((string) $n, '/'), $uns));
            $horas += self::horas("/^($alternativas) ([1-9]\\d*) /m", $arquivos, 0);
        }
        return $horas;
    }

    private static function horas(string $padrao, array $arquivos, int $acimaDe): array
    {
        $horas = [];
        foreach ($arquivos as $arquivo) {
            $texto = (string) @file_get_contents($arquivo);
            preg_match_all($padrao, $texto, $m, PREG_PATTERN_ORDER, (int) strpos($texto, "\n"));  // behind the day's totals
            foreach ($m[1] as $i => $nome) {
                $n = (int) $m[2][$i];
                $n > $acimaDe && $n > ($horas[$nome] ?? 0) && $horas[$nome] = $n;
            }
        }
        return $horas;
    }
}
