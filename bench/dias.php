<?php
// The days that are measured: their logs, and what our consolidation makes of them.
declare(strict_types=1);

// Midnight of 2026-03-10, UTC: the first day that is generated, the last one that reports ask for.
const DIA = 1773100800;

// Logs of so many messages a day: their directory, the live log, its lines and bytes. Generated once,
// and anew when the command changes. Days of another shape have a name, and options of the generator.
function gera(int $mensagens, int $usuarios, int $dias = 1, string $nome = '', string ...$opcoes): array
{
    $dir = SAIDA . "/logs-$mensagens" . ($dias > 1 ? "x$dias" : '') . $nome;
    $comando = [PROGRAMAS . '/gera_logs', $dir, gmdate('Y-m-d', DIA), "--mensagens=$mensagens",
        "--usuarios=$usuarios", '--crlf=0.001', '--estranhas=0.001',
        ...($dias > 1 ? ["--dias=$dias"] : []), ...$opcoes];
    $registro = implode(' ', $comando) . "\n";
    $guardado = @file_get_contents("$dir/gerado.txt");
    if ($guardado === false || !str_starts_with($guardado, $registro)) {
        array_map('unlink', glob("$dir/*"));
        $guardado = $registro . executa($comando);
        file_put_contents("$dir/gerado.txt", $guardado);
    }
    preg_match('/(\d+) linhas, (\d+) bytes/', substr($guardado, strlen($registro)), $m);
    return ['dir' => $dir, 'log' => "$dir/MAIL_DISPATCHER.LOG", 'linhas' => (int) $m[1],
        'bytes' => (int) $m[2], 'mensagens' => $mensagens];
}

// Cost of consolidating logs as on a new machine, into OUT/dat.
function consolida(array $logs): array
{
    array_map('unlink', [...glob(SAIDA . '/dat/rels_*/*'), ...glob(SAIDA . '/ultima')]);
    $custo = mede([PHP_BINARY, '-n', '-d', 'extension=' . EXTENSAO, __DIR__ . '/consolida.php',
        $logs['dir'], SAIDA . '/dat', SAIDA . '/ultima']);
    is_file(SAIDA . '/ultima') || para('nothing was consolidated: does another process hold the lock?');
    return $custo;
}

// The day file of a kind, "compact_mail" or "mail_stat", of the first day in a data directory.
function arquivo_do_dia(string $dados, string $tipo): string
{
    return $dados . '/' . gmdate('\r\e\l\s_m-y', DIA) . "/{$tipo}_" . gmdate('d', DIA) . '.txt';
}

// Consolidates a day into OUT/dia, and makes 30 days of its statistics in OUT/mes.
function prepara_relatorios(array $logs): void
{
    consolida($logs);
    executa(['rm', '-rf', SAIDA . '/dia', SAIDA . '/mes']);
    executa(['cp', '-r', SAIDA . '/dat', SAIDA . '/dia']);
    foreach (range(0, 29) as $i) {
        $pasta = SAIDA . '/mes/' . gmdate('\r\e\l\s_m-y', DIA - $i * 86400);
        is_dir($pasta) || mkdir($pasta, 0777, true);
        copy(arquivo_do_dia(SAIDA . '/dia', 'mail_stat'),
            "$pasta/mail_stat_" . gmdate('d', DIA - $i * 86400) . '.txt');
    }
}

// The id of a message of a local sender in the middle of a compact file, and that sender.
function mensagem_do_meio(string $compacto): array
{
    $linhas = new SplFileObject($compacto);
    $linhas->fseek(intdiv(filesize($compacto), 2));
    $linhas->fgets();
    do {
        [, , $status, $id, $tipo, $usuario] = explode(' ', trim($linhas->fgets())) + array_fill(0, 6, '');
    } while ($status !== '1' || $tipo !== 'INTERNO');
    return [$id, $usuario];
}
