<?php
// Texts and tables for a UTF-8 terminal, without any extension of the engine.
declare(strict_types=1);

// Columns that a UTF-8 text takes: its characters, as long as none is a wide or a combining one.
function largura(string $texto): int
{
    return strlen(preg_replace('/[\x80-\xBF]/', '', $texto));
}

// "1.234.567,8"
function numero(int|float $n, int $casas = 0): string
{
    return number_format($n, $casas, ',', '.');
}

// "640 bytes", "12,3 KB", "1,2 MB"
function tamanho(int|float $bytes): string
{
    if (abs($bytes) < 1024) {
        return numero($bytes) . ' bytes';
    }
    $unidades = ['KB', 'MB', 'GB', 'TB'];
    for ($i = 0, $bytes /= 1024; abs($bytes) >= 1024 && $i < 3; ++$i) {
        $bytes /= 1024;
    }
    return numero($bytes, 1) . ' ' . $unidades[$i];
}

// A bar of up to `$colunas` columns for `$n` of `$maior`, in steps of half a column.
function barra(int $n, int $maior, int $colunas): string
{
    $metades = (int) round($n * $colunas * 2 / $maior);
    return str_repeat('━', intdiv($metades, 2)) . ($metades % 2 ? '╸' : '');
}

// The rows under their titles. `$alinhamento` has one character a column: "<" left, ">" right. A
// null in place of a row draws a line, as before a row of totals.
function tabela(string $alinhamento, array $titulos, array $linhas): string
{
    $larguras = array_map('largura', $titulos);
    foreach (array_filter($linhas) as $linha) {
        foreach ($linha as $i => $celula) {
            $larguras[$i] = max($larguras[$i], largura($celula));
        }
    }
    $risco = '  ' . implode('──', array_map(fn(int $n) => str_repeat('─', $n), $larguras)) . "\n";
    $formata = function (array $linha) use ($alinhamento, $larguras): string {
        $texto = '';
        foreach ($linha as $i => $celula) {
            $vazio = str_repeat(' ', $larguras[$i] - largura($celula));
            $texto .= '  ' . ($alinhamento[$i] === '>' ? $vazio . $celula : $celula . $vazio);
        }
        return rtrim($texto) . "\n";
    };
    $texto = $formata($titulos) . $risco;
    foreach ($linhas as $linha) {
        $texto .= $linha === null ? $risco : $formata($linha);
    }
    return $texto;
}
