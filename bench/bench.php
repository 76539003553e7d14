<?php
// Measures whole processes over generated days: the consolidation beside `wc -l` and mawk.
//
//     php -n bench/bench.php EXTENSION PROGRAMS OUT [ROUNDS]
//
// PROGRAMS is the directory of gera_logs and mede; OUT keeps the generated logs for the next time.
// Answers are compared before anything is timed. Every round runs each measured command once, in
// the same order; ratios are taken within a round, and the table shows medians over the rounds.
declare(strict_types=1);

require __DIR__ . '/../demo/tabela.php';

if ($argc < 4) {
    fwrite(STDERR, "bench.php EXTENSION PROGRAMS OUT [ROUNDS]\n");
    exit(2);
}
[, $extensao, $programas, $saida] = $argv;
$rodadas = (int) ($argv[4] ?? 5);
putenv('TZ=UTC');
putenv('LC_ALL=C');

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

// Cost of a command: seconds of CPU and peak memory in bytes. What it printed is in OUT/saida.txt.
function mede(array $comando): array
{
    global $programas, $saida;
    $medida = json_decode(executa(["$programas/mede", "$saida/saida.txt", ...$comando]), true);
    if ($medida['status'] !== 0) {
        para('failed: ' . implode(' ', $comando));
    }
    return ['cpu' => $medida['user'] + $medida['sys'], 'pico' => $medida['maxrss'] * 1024];
}

// A day of so many messages: its directory, its log, its lines. Generated once, and anew when the
// command changes.
function dia(int $mensagens, int $usuarios): array
{
    global $programas, $saida;
    $dir = "$saida/logs-$mensagens";
    $comando = ["$programas/gera_logs", $dir, '2026-03-10', "--mensagens=$mensagens",
        "--usuarios=$usuarios", '--crlf=0.001', '--estranhas=0.001'];
    $registro = implode(' ', $comando) . "\n";
    $guardado = @file_get_contents("$dir/gerado.txt");
    if ($guardado === false || !str_starts_with($guardado, $registro)) {
        array_map('unlink', glob("$dir/*"));
        $guardado = $registro . executa($comando);
        file_put_contents("$dir/gerado.txt", $guardado);
    }
    preg_match('/(\d+) linhas/', substr($guardado, strlen($registro)), $m);
    return ['dir' => $dir, 'log' => "$dir/MAIL_DISPATCHER.LOG", 'linhas' => (int) $m[1],
        'mensagens' => $mensagens];
}

// Cost of consolidating a day as on a new machine.
function consolida(array $dia): array
{
    global $extensao, $saida;
    array_map('unlink', [...glob("$saida/dat/rels_*/*"), ...glob("$saida/ultima")]);
    return mede([PHP_BINARY, '-n', '-d', "extension=$extensao", __DIR__ . '/consolida.php',
        $dia['dir'], "$saida/dat", "$saida/ultima"]);
}

function mawk(array $dia): array
{
    return mede(['mawk', '-f', __DIR__ . '/totais.awk', $dia['log']]);
}

// The day's totals by the consolidation and by mawk must be the same.
function confere(array $dia): void
{
    global $saida;
    consolida($dia);
    $nosso = @file("$saida/dat/rels_03-26/mail_stat_10.txt")[0] ?? para('no statistics file');
    $nosso = implode(' ', array_slice(explode(' ', trim($nosso)), 2));
    mawk($dia);
    $dele = trim(file_get_contents("$saida/saida.txt"));
    if ($nosso !== $dele) {
        para("different totals for {$dia['mensagens']} messages\n  ours: $nosso\n  mawk: $dele");
    }
    echo "{$dia['mensagens']} messages, {$dia['linhas']} lines: totals agree ($nosso)\n";
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

// One report measured inside a process of its own; what it answered comes along.
function relatorio(string $que, string $dados, string $extra = '', int $dias = 1): array
{
    global $extensao;
    $inicio = 1773100800 - ($dias - 1) * 86400;  // 2026-03-10, UTC
    return unserialize(executa([PHP_BINARY, '-n', '-d', 'memory_limit=-1', '-d', "extension=$extensao",
        __DIR__ . '/mede_relatorio.php', $que, $dados, (string) $inicio, '1773187199', $extra]));
}

function iguais(string $que, mixed $nossa, mixed $dele): void
{
    $nossa === $dele || para("different answers: $que\n  ours:  " . substr(print_r($nossa, true), 0, 500)
        . "\n  peer:  " . substr(print_r($dele, true), 0, 500));
    echo "$que: answers agree\n";
}

// The reference day, consolidated, and 30 days of its statistics; answers its compact file.
function dia_consolidado(array $dia): string
{
    global $saida;
    consolida($dia);
    executa(['rm', '-rf', "$saida/dia", "$saida/mes"]);
    executa(['cp', '-r', "$saida/dat", "$saida/dia"]);
    foreach (range(0, 29) as $i) {
        $pasta = "$saida/mes/" . gmdate('\r\e\l\s_m-y', 1773100800 - $i * 86400);
        @mkdir($pasta, 0777, true);
        copy("$saida/dia/rels_03-26/mail_stat_10.txt",
            "$pasta/mail_stat_" . gmdate('d', 1773100800 - $i * 86400) . '.txt');
    }
    return "$saida/dia/rels_03-26/compact_mail_10.txt";
}

// What a search for the id shows of a message: who accepted it and when.
function aceites(string $linhas): array
{
    preg_match_all('/^([0-9a-f]+) [12] 2 \S+ (\S+)$/m', $linhas, $m, PREG_SET_ORDER);
    return array_map(fn($l) => "$l[2] " . hexdec($l[1]), $m);
}

// A row of the table; without a limit it only informs.
function linha(string $que, float $valor, string $formato, ?float $maximo = null): array
{
    return [$que, $maximo === null ? '' : sprintf("at most $formato", $maximo),
        sprintf($formato, $valor), $maximo === null ? '' : ($valor <= $maximo ? 'ok' : 'MISSED')];
}

@mkdir($saida, 0777, true);
$minimo = dia(75, 40);
$menor = dia(100000, 2000);
$maior = dia(1000000, 2000);
array_map('confere', [$minimo, $menor, $maior]);

$referencia = dia(200000, 2000);
$compacto = dia_consolidado($referencia);
$linhas = new SplFileObject($compacto);
$linhas->seek(650000);
do {
    [, , $status, $id, $tipo, $usuario] = explode(' ', trim($linhas->fgets())) + array_fill(0, 6, '');
} while ($status !== '1' || $tipo !== 'INTERNO');
$peritos = [
    'rg' => ['rg', '-N', $id, $compacto],
    'mawk_horas' => ['mawk', '-f', __DIR__ . '/horas.awk', $compacto],
    'mawk_usuario' => ['mawk', '-v', "usuario=$usuario", '-f', __DIR__ . '/usuario.awk', $compacto],
];
$relatorios = [
    'historia' => fn() => relatorio('historia', "$saida/dia", $id),
    'horas' => fn() => relatorio('horas', "$saida/dia"),
    'mensagens' => fn() => relatorio('mensagens', "$saida/dia", $usuario),
    'totais' => fn() => relatorio('totais', "$saida/mes", '', 30),
    'passeio' => fn() => relatorio('passeio', "$saida/dia"),
];
$historia = explode("\n", trim($relatorios['historia']()['resposta']));
iguais('trace', array_slice($historia, 1), aceites(executa($peritos['rg'])));
iguais('hours', $relatorios['horas']()['resposta'], executa($peritos['mawk_horas']));
iguais('user messages', $relatorios['mensagens']()['resposta'], executa($peritos['mawk_usuario']));
$um_dia = relatorio('totais', "$saida/dia")['resposta'];
iguais('30 days', $relatorios['totais']()['resposta'], str_repeat($um_dia, 30));
$passeio = $relatorios['passeio']();
iguais('walk', $passeio['resposta'], $passeio['simples']['resposta']);

$medidas = [
    'minimo' => fn() => consolida($minimo),
    'menor' => fn() => consolida($menor),
    'maior' => fn() => consolida($maior),
    'wc' => fn() => mede(['wc', '-l', $maior['log']]),
    'mawk' => fn() => mawk($maior),
    ...array_map(fn(array $comando) => fn() => mede($comando), $peritos),
];
$cpu = $pico = [];
for ($i = 1; $i <= $rodadas; ++$i) {
    echo "round $i of $rodadas\n";
    foreach ($medidas as $nome => $medida) {
        ['cpu' => $cpu[$nome][], 'pico' => $pico[$nome][]] = $medida();
    }
    foreach ($relatorios as $nome => $medida) {
        $medido = $medida();
        $cpu[$nome][] = $medido['cpu'];
        $cpu["$nome, simples"][] = $medido['simples']['cpu'] ?? 0;
    }
}

$por_linha = fn(string $nome, array $dia) => array_map(fn(float $s) => $s / $dia['linhas'], $cpu[$nome]);
$retido = (mediana($pico['maior']) - mediana($pico['minimo'])) / $maior['mensagens'];
$tabela = [
    linha('consolidation, 100,000 messages: CPU s', mediana($cpu['menor']), '%.3f'),
    linha('consolidation, 1,000,000 messages: CPU s', mediana($cpu['maior']), '%.3f'),
    linha('  million lines per second', $maior['linhas'] / mediana($cpu['maior']) / 1e6, '%.2f'),
    linha('  peak memory, MiB', mediana($pico['maior']) / 1048576, '%.1f'),
    linha('  bytes per message held', $retido, '%.0f', 300),
    linha('  time per line, times that at 100,000',
        razao($por_linha('maior', $maior), $por_linha('menor', $menor)), '%.2f', 1.15),
    linha('  CPU, times that of wc -l', razao($cpu['maior'], $cpu['wc']), '%.1f', 25),
    linha('wc -l, 1,000,000 messages: CPU s', mediana($cpu['wc']), '%.3f'),
    linha('mawk, day totals, 1,000,000 messages: CPU s', mediana($cpu['mawk']), '%.2f'),
    linha('  times the CPU of the consolidation', razao($cpu['mawk'], $cpu['maior']), '%.1f'),
    linha('trace in a day of 200,000 messages: CPU ms', mediana($cpu['historia']) * 1e3, '%.1f'),
    linha('  times the CPU of rg for the id', razao($cpu['historia'], $cpu['rg']), '%.2f', 2),
    linha('hours of that day: CPU ms', mediana($cpu['horas']) * 1e3, '%.0f'),
    linha('  part of the CPU of mawk', razao($cpu['horas'], $cpu['mawk_horas']), '%.3f', 0.1),
    linha('user messages of that day: CPU ms', mediana($cpu['mensagens']) * 1e3, '%.0f'),
    linha('  part of the CPU of mawk', razao($cpu['mensagens'], $cpu['mawk_usuario']), '%.3f', 0.1),
    linha('30 days of totals: CPU ms', mediana($cpu['totais']) * 1e3, '%.2f', 0.5),
    linha('walking 100,000 rows: CPU ms', mediana($cpu['passeio']) * 1e3, '%.1f'),
    linha('  times a plain PHP loop', razao($cpu['passeio'], $cpu['passeio, simples']), '%.2f', 1.5),
];
echo "\n", tabela('<<>>', ['Figure', 'Target', 'Result', ''], $tabela);
