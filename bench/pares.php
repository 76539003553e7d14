<?php
// The tools that we are measured against, and how their answers are compared with ours.
declare(strict_types=1);

// Command line of one of the awk programs here.
function mawk(string $programa, string $arquivo, string ...$opcoes): array
{
    return ['mawk', ...$opcoes, '-f', __DIR__ . "/$programa", $arquivo];
}

// Runs one of the SQL programs here over a file, in DuckDB with one thread: seconds of CPU, without
// the start of its process, and the answer.
function duckdb(string $programa, string $arquivo): array
{
    [$cpu, $resposta] = explode("\n",
        executa(['node', __DIR__ . '/duckdb.mjs', PARES, __DIR__ . "/$programa", $arquivo]), 2);
    return ['cpu' => (float) $cpu, 'resposta' => $resposta];
}

// The lines of a statistics file, those of the users of an hour sorted: their order is of no account.
function estatistica(string $texto): array
{
    $horas = [];
    foreach (explode("\n", trim($texto)) as $linha) {
        if (preg_match('/^\[\d+\]$/', $linha) || !$horas) {
            $horas[] = [];
        }
        $horas[array_key_last($horas)][] = $linha;
    }
    array_walk($horas, fn(array &$linhas) => sort($linhas, SORT_STRING));
    return array_merge(...$horas);
}

// Stops the bench unless both answers are the same; else says so.
function iguais(string $que, mixed $nossa, mixed $dele): void
{
    if ($nossa !== $dele) {
        [$a, $b] = is_array($nossa) ? [array_diff($nossa, $dele), array_diff($dele, $nossa)] : [$nossa, $dele];
        para("different answers: $que\n  ours:  " . substr(print_r($a, true), 0, 500)
            . "\n  peer:  " . substr(print_r($b, true), 0, 500));
    }
    echo "$que: answers agree\n";
}

// The whole statistics file of a day, by the consolidation and by the peers.
function confere_estatistica(array $logs): void
{
    consolida($logs);
    $nossa = estatistica(file_get_contents(arquivo_do_dia(SAIDA . '/dat', 'mail_stat')));
    $que = "{$logs['mensagens']} messages, {$logs['linhas']} lines, " . count($nossa) . ' of statistics';
    mede(mawk('estatistica.awk', $logs['log']));
    iguais("$que, mawk", $nossa, estatistica(file_get_contents(SAIDA . '/saida.txt')));
    if (PARES) {
        iguais("$que, DuckDB", $nossa, estatistica(duckdb('estatistica.sql', $logs['log'])['resposta']));
    }
}
