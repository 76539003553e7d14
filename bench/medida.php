<?php
// Measuring: what a command costs, and what several rounds of it say.
declare(strict_types=1);

function para(string $motivo): never
{
    fwrite(STDERR, "bench: $motivo\n");
    exit(1);
}

// Runs a command and answers its output; a failure ends the bench.
function executa(array $comando): string
{
    $processo = proc_open($comando, [1 => ['pipe', 'w']], $canos);
    $texto = stream_get_contents($canos[1]);
    if (proc_close($processo) !== 0) {
        para('failed: ' . implode(' ', $comando));
    }
    return $texto;
}

// Cost of a command, as a whole process: seconds of CPU, seconds on the clock, and peak memory in
// bytes. What it printed is in OUT/saida.txt.
function mede(array $comando): array
{
    $medida = json_decode(executa([PROGRAMAS . '/mede', SAIDA . '/saida.txt', ...$comando]), true);
    if ($medida['status'] !== 0) {
        para('failed: ' . implode(' ', $comando));
    }
    return ['cpu' => $medida['user'] + $medida['sys'], 'relogio' => $medida['wall'],
        'pico' => $medida['maxrss'] * 1024];
}

// One report measured inside a long-lived process; what it answered comes along. The days end with
// that of the bench.
function relatorio(string $que, string $dados, string $extra = '', int $dias = 1): array
{
    $inicio = DIA - ($dias - 1) * 86400;
    return unserialize(executa([PHP_BINARY, '-n', '-d', 'memory_limit=-1', '-d', 'extension=' . EXTENSAO,
        __DIR__ . '/mede_relatorio.php', $que, $dados, (string) $inicio, (string) (DIA + 86399), $extra]));
}

// Runs each of the measurements once a round, in the same order, and answers the figures of every
// round: [name][figure][round].
function mede_rodadas(array $medidas, int $rodadas): array
{
    $series = [];
    for ($i = 1; $i <= $rodadas; ++$i) {
        echo "round $i of $rodadas\n";
        foreach ($medidas as $nome => $medida) {
            foreach ($medida() as $que => $valor) {
                if (is_int($valor) || is_float($valor)) {
                    $series[$nome][$que][] = (float) $valor;
                }
            }
        }
    }
    return $series;
}

function mediana(array $valores): float
{
    sort($valores);
    $n = count($valores);
    return ($valores[intdiv($n - 1, 2)] + $valores[intdiv($n, 2)]) / 2;
}

// Median over the rounds of `$a` divided by `$b`.
function razao(array $a, array $b): float
{
    return mediana(array_map(fn(float $x, float $y) => $x / $y, $a, $b));
}
