<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Formato\Humano;

/**
 * Messages by day and hour as a table whose cells have a step of colour: 0 for none, then 1 to 8 by what
 * share of the busiest hour it is.
 */
final class MapaDeCalor
{
    private const PASSOS = 8;

    /** @var list<array{dia: string, texto: string, celulas: list<array>, total: string}> a row a day */
    public readonly array $linhas;
    /** @var list<string> the sums of the hours */
    public readonly array $totais;
    public readonly string $total;

    /**
     * @param array<string, list<int>> $mensagens by day, of its 24 hours
     * @param ?\Closure(string, int): string $endereco of the messages of a day and hour; null where none leads to them
     */
    public function __construct(array $mensagens, ?\Closure $endereco, string $lingua)
    {
        $humano = new Humano($lingua);
        $maior = max(1, 1, ...array_map(static fn (array $horas): int => max($horas), array_values($mensagens)));
        $somas = array_fill(0, 24, 0);
        $linhas = [];
        foreach ($mensagens as $dia => $horas) {
            $celulas = [];
            foreach ($horas as $hora => $n) {
                $somas[$hora] += $n;
                $celulas[] = [
                    'n' => $humano->numero($n),
                    'passo' => $n === 0 ? 0 : max(1, (int) ceil($n / $maior * self::PASSOS)),
                    'endereco' => $n === 0 || $endereco === null ? null : $endereco((string) $dia, $hora),
                ];
            }
            $linhas[] = [
                'dia' => (string) $dia,
                'texto' => $humano->diaCurto((string) $dia),
                'celulas' => $celulas,
                'total' => $humano->numero(array_sum($horas)),
            ];
        }
        $this->linhas = $linhas;
        $this->totais = array_map($humano->numero(...), $somas);
        $this->total = $humano->numero(array_sum($somas));
    }
}
