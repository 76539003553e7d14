<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Linha\Hora;

/**
 * The hours of all users, day by day. One object is asked for each day in turn, since it remembers the messages
 * that it met: one submitted on an earlier day of the period counts on the day of its end, as it does when the
 * period is asked for at once.
 */
final readonly class Horario
{
    public function __construct(private Motor $motor, private Transbordo $transbordo)
    {
    }

    /**
     * @param list<string> $dias that have files, oldest first
     * @return array<string, list<list<int>>> by day, of each of its 24 hours the counters of a Hora
     */
    public function porDia(Periodo $periodo, array $dias): array
    {
        $mrel = $this->motor->objeto();
        $horas = [];
        foreach ($dias as $dia) {
            $um = Periodo::dia($dia, $periodo->fuso);
            $itr = $this->motor->perguntaA($mrel, 'msgs_per_hour', ...[...$um->eventos(), ' ']);
            for ($linhas = []; $itr->fetch();) {
                $linhas[] = [$itr->msgs_int, $itr->bytes_int, $itr->msgs_ext, $itr->bytes_ext, $itr->spam, $itr->virus,
                    $itr->error];
            }
            $horas[$dia] = $linhas;
        }
        return $horas;
    }

    /**
     * @param array<string, list<list<int>>> $dias as porDia answers for that period
     * @return list<Hora> 24
     */
    public function soma(Periodo $periodo, array $dias): array
    {
        $somas = array_fill(0, 24, array_fill(0, 7, 0));
        foreach ($dias as $linhas) {
            foreach ($linhas as $hora => $linha) {
                foreach ($linha as $i => $valor) {
                    $somas[$hora][$i] = $somas[$hora][$i] + $valor & 0xFFFFFFFF;  // as the engine counts
                }
            }
        }
        $incerta = $this->transbordo->dasHoras($periodo, $somas);
        $horas = [];
        foreach ($somas as $hora => $soma) {
            $horas[] = new Hora($hora, ...[...$soma, static fn (): bool => $incerta($hora)]);
        }
        return $horas;
    }
}
