<?php
// The results on paper: tables in Markdown, put between two markers of a document.
declare(strict_types=1);

// Where it was measured, with what, and how to do it again.
function procedencia(string $comando): string
{
    $procura = fn(string $padrao, string $texto) => preg_match($padrao, $texto, $m) ? trim($m[1]) : '?';
    $versao = fn(array $c) => $procura('/(\d+\.\d+[\w.-]*( 20\d{6})?)/', executa($c));
    $memoria = $procura('/MemTotal: *(\d+)/', file_get_contents('/proc/meminfo')) / 1048576;
    $duckdb = PARES
        ? json_decode(file_get_contents(PARES . '/node_modules/@duckdb/node-api/package.json'))->version
            . ', node ' . $versao(['node', '--version'])
        : 'not measured';
    return "Measured on " . gmdate('Y-m-d') . " by `$comando`.\n\n"
        . '- Machine: ' . $procura('/model name\s*:(.*)/', file_get_contents('/proc/cpuinfo')) . ', '
        . trim(executa(['nproc'])) . ' cores, ' . sprintf('%.0f GiB', $memoria) . ', Linux '
        . $procura('/^(\d+\.\d+)/', php_uname('r')) . "\n"
        . '- Versions: PHP ' . PHP_VERSION . ', mawk ' . $versao(['sh', '-c', 'mawk -W version 2>&1']) . ', ripgrep '
        . $versao(['rg', '--version']) . ', coreutils ' . $versao(['wc', '--version'])
        . ", DuckDB (`@duckdb/node-api`) $duckdb\n";
}

// Rows under their titles; all columns but the first to the right.
function tabela_markdown(array $titulos, array $linhas): string
{
    $regua = ['---', ...array_fill(0, count($titulos) - 1, '---:')];
    return implode('', array_map(fn(array $l) => '| ' . implode(' | ', $l) . " |\n", [$titulos, $regua, ...$linhas]));
}

// The measured day of `$dia`, ten thousand of it, and one relay of 100 million messages a day: linear in
// the messages, as the exponent of time allows. `$arquivos` are the bytes of its day files; `$bytes` those
// of memory that a message holds; seconds of CPU of the consolidation, and of the report of hours.
function papel(array $dia, int $arquivos, float $cpu, float $bytes, float $horas): array
{
    $tempo = fn(float $s) => $s < 1 ? sprintf('%.0f ms', $s * 1e3)
        : ($s < 300 ? sprintf('%.1f s', $s) : sprintf('%.0f min', $s / 60));
    $giga = fn(float $b) => $b < 1e9 ? sprintf('%.0f MB', $b / 1e6) : sprintf('%s GB', number_format($b / 1e9, 1));
    $disco = $dia['bytes'] + $arquivos;
    $linhas = [
        'messages a day' => fn(float $n) => number_format($dia['mensagens'] * $n),
        'lines of log a day' => fn(float $n) => number_format($dia['linhas'] * $n),
        'log of a day, read once' => fn(float $n) => $giga($dia['bytes'] * $n),
        'its two day files, written once' => fn(float $n) => $giga($arquivos * $n),
        'consolidation, on one core' => fn(float $n) => $tempo($cpu * $n),
        'disk that keeps the core busy' => fn(float $n) => sprintf('%.0f MB/s', $disco / $cpu / 1e6),
        'consolidation, on a disk of 200 MB/s' => fn(float $n) => $tempo(max($cpu, $disco / 200e6) * $n),
        'memory for the messages of a day' => fn(float $n) => $giga($bytes * $dia['mensagens'] * $n),
        'the hours of a day, for a page' => fn(float $n) => $tempo($horas * $n),
    ];
    $todos = 1e4;
    $grande = 1e8 / $dia['mensagens'];
    $so_uma = ['memory for the messages of a day', 'the hours of a day, for a page'];
    return array_map(fn(string $que, callable $f) => [$que, $f(1),
        in_array($que, $so_uma, true) ? 'as one' : $f($todos), $f($grande)], array_keys($linhas), $linhas);
}

// Replaces what stands between <!-- WHO: NAME --> and <!-- /WHO --> in a document; WHO is who measured.
function anota(string $documento, string $nome, string $texto): void
{
    $novo = preg_replace_callback("~(<!-- (\w+): $nome -->\n).*?(<!-- /\\2 -->)~s",
        fn(array $m) => "$m[1]$texto$m[3]", file_get_contents($documento), -1, $vezes);
    $vezes === 1 || para("$documento has no place for: $nome");
    file_put_contents($documento, $novo);
}
