<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Falha;
use Vorna\Mrel\Texto;

/** Mail that is not as usual: a day with too little or too much, a user who suddenly sends to everybody. */
final class Trafego
{
    /** Messages an hour that are nothing unusual for anybody. */
    public const POUCAS = 50;
    /** So many times his own busiest hour is too much. */
    private const VEZES = 10;
    /** Days that must be there before one who is new among them is suspected. */
    private const CONHECIDOS = 7;

    /**
     * @param string $dia the last complete day
     * @param int $mensagens of that day
     * @param list<int> $iguais of the same weekday in the four weeks before, as far as they are there
     */
    public static function volume(string $dia, int $mensagens, array $iguais): Verificacao
    {
        $mediana = self::mediana($iguais);
        // A day on which nobody ever writes is not news.
        $vazio = $mensagens === 0 && !($mediana === 0.0 && count($iguais) > 1);
        if (!$vazio && ($mediana === null || ($mensagens * 2 >= $mediana && $mensagens <= 2 * $mediana))) {
            return Verificacao::ok('volume', "$mensagens mensagens em $dia.", "$mensagens messages on $dia.");
        }
        $m = $mediana === null ? '' : (string) round($mediana);
        return new Verificacao('volume', Nivel::Aviso, $vazio
            ? ["O dia $dia está vazio.", "The day $dia is empty."]
            : [
                "$mensagens mensagens em $dia; no mesmo dia das últimas semanas eram $m.",
                "$mensagens messages on $dia; on the same weekday of the last weeks they were $m.",
            ], $mensagens * 2 < $mediana || $vazio ? [
                'Se houve correio, o log desse dia não foi lido: veja logs, e em operations.md como repetir o dia.',
                'If there was mail, the log of that day was not read: see logs, and operations.md on repeating a day.',
            ] : [
                "Veja quem enviou: vtmrel topo --de $dia.", "See who sent it: vtmrel top --from $dia.",
            ]);
    }

    /**
     * @param array<string, int> $agora busiest hour of each user of the days looked at, by name as in the files
     * @param array<string, int> $antes his busiest hour of the 28 days before; who sent nothing is missing
     * @param int $dias how many of those 28 days are there
     * @param int $limite messages an hour
     */
    public static function abuso(array $agora, array $antes, int $dias, int $limite): Verificacao
    {
        arsort($agora);
        $suspeitos = [];
        foreach ($agora as $nome => $hora) {
            $maior = $antes[$nome] ?? 0;
            $conhecido = $maior > 0 || $dias >= self::CONHECIDOS;
            if ($hora > $limite || ($hora > self::POUCAS && $conhecido && $hora > self::VEZES * $maior)) {
                $quem = Falha::cita(Texto::utf8((string) $nome));
                $suspeitos[0][] = "$quem, $hora numa hora (antes até $maior)";
                $suspeitos[1][] = "$quem, $hora in an hour (before up to $maior)";
            }
        }
        if (!$suspeitos) {
            return Verificacao::ok('abuso', 'Ninguém envia mais que de costume.', 'Nobody sends more than usual.');
        }
        $mais = count($suspeitos[0]) - 3;
        [$pt, $en] = array_map(static fn (array $s): string => implode('; ', array_slice($s, 0, 3)), $suspeitos);
        return new Verificacao('abuso', Nivel::Aviso, $mais > 0
            ? ["Enviam demais: $pt e mais $mais.", "Send too much: $en and $mais more."]
            : ["Enviam demais: $pt.", "Send too much: $en."], [
                'Uma senha roubada? Veja vtmrel mensagens --usuario; um remetente de boletins pede outro --por-hora.',
                'A stolen password? See vtmrel messages --user; a sender of newsletters asks for another --per-hour.',
            ]);
    }

    /** @param list<int> $valores */
    private static function mediana(array $valores): ?float
    {
        sort($valores);
        $n = count($valores);
        return $n === 0 ? null : ($valores[intdiv($n - 1, 2)] + $valores[intdiv($n, 2)]) / 2;
    }
}
