<?php
// The day files of a data directory, and what a statistics file says.
declare(strict_types=1);

// Paths of the statistics files under `$dados`, by date ("2026-03-10"), oldest first. The date is in
// the names: rels_MM-YY/mail_stat_DD.txt.
function dias(string $dados): array
{
    $dias = [];
    foreach (glob("$dados/rels_*/mail_stat_*.txt") as $path) {
        if (preg_match('~rels_(\d\d)-(\d\d)/mail_stat_(\d\d)\.txt$~', $path, $m)) {
            $dias["20$m[2]-$m[1]-$m[3]"] = $path;
        }
    }
    ksort($dias);
    return $dias;
}

// The ten figures of the first line.
function le_totais(string $path): array
{
    $primeira = fgets(fopen($path, 'rb'));
    $nomes = ['inicio', 'fim', 'spam', 'virus', 'erro', 'anexos', 'internas', 'bytes_internas',
        'externas', 'bytes_externas'];
    return array_combine($nomes, array_map('intval', explode(' ', rtrim((string) $primeira))));
}

// Adds the day's counters of every user to `$usuarios`, by name (UTF-8). A user has a line in each
// period of the day in which he was active: the name, then eight counters.
function soma_usuarios(string $path, array &$usuarios): void
{
    $nomes = ['enviadas', 'bytes_enviados', 'recebidas', 'bytes_recebidos', 'virus', 'spam', 'erro',
        'anexos'];
    foreach (array_slice(file($path, FILE_IGNORE_NEW_LINES), 1) as $linha) {
        $palavras = explode(' ', $linha);
        if (count($palavras) < 9) {
            continue;  // the start of a period: "[1773100800]"
        }
        $usuario = utf8(implode(' ', array_slice($palavras, 0, -8)));
        foreach (array_combine($nomes, array_slice($palavras, -8)) as $nome => $valor) {
            $usuarios[$usuario][$nome] = ($usuarios[$usuario][$nome] ?? 0) + (int) $valor;
        }
    }
}
