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

// Replaces what stands between <!-- bench --> and <!-- /bench --> in a document.
function anota(string $documento, string $texto): void
{
    $novo = preg_replace_callback('~(<!-- bench -->\n).*?(<!-- /bench -->)~s',
        fn(array $m) => "$m[1]$texto$m[2]", file_get_contents($documento), -1, $vezes);
    $vezes === 1 || para("$documento has no place for the results");
    file_put_contents($documento, $novo);
}
