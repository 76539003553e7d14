<?php

// What the views must answer, as the library answers it: all days of the generated month, cell by cell.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use Vorna\Mrel\Contador;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Relatorios;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Tabelas;

final class Espelho
{
    /** What comes before the columns of the report, by view. */
    private const ANTES = ['dias' => [], 'horas' => ['dia'], 'topo' => ['dia', 'por'], 'topo_dominios' => ['dia', 'por']];

    /** @return array<string, string> a query by view; all of them in the order of the library */
    public static function consultas(string $relay): array
    {
        $consultas = [];
        foreach (self::ANTES as $vista => $antes) {
            $colunas = [...$antes, ...Rotulos::colunas($vista)];
            $ordem = implode(', ', array_slice($colunas, 0, count($antes) + 1));
            $consultas[$vista] = 'SELECT ' . implode(', ', $colunas) . " FROM $vista WHERE relay = '$relay' ORDER BY $ordem";
        }
        return $consultas;
    }

    /** @return array<string, list<list<string>>> cells by view */
    public static function esperado(Relay $relay, Periodo $periodo): array
    {
        $r = new Relatorios($relay);
        $linhas = ['dias' => iterator_to_array(Tabelas::dias($r->totais($periodo))->linhas, false)];
        $contadores = array_column(Contador::cases(), null, 'value');
        ksort($contadores);
        foreach ($periodo->cadaDia() as $dia) {
            $d = $dia->primeiro;
            foreach (Tabelas::horas($r->horas($dia))->linhas as $linha) {
                $linhas['horas'][] = [$d, ...$linha];
            }
            foreach ($contadores as $por => $contador) {
                foreach (['topo' => false, 'topo_dominios' => true] as $vista => $dominios) {
                    foreach (Tabelas::topo($r->topo($dia, $contador, 9999, $dominios), $contador, $dominios)->linhas as $linha) {
                        $linhas[$vista][] = [$d, $por, ...$linha];
                    }
                }
            }
        }
        return array_map(self::celulas(...), $linhas);
    }

    /** Rows as texts, "" for null. */
    public static function celulas(iterable $linhas): array
    {
        $celulas = [];
        foreach ($linhas as $linha) {
            $celulas[] = array_map('strval', array_values($linha));
        }
        return $celulas;
    }
}
