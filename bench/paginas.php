<?php
// Measures the pages over the month of bench/comando.php: each in a worker of its own that starts, answers
// and ends, so that nothing is kept from one to the next, the engine's cache of code included.
//
//     php -n bench/paginas.php EXTENSION PROGRAMS OUT [ROUNDS]
//
// As bench.php, whose directories these are; the table goes into docs/performance.md.
declare(strict_types=1);

foreach (['medida', 'dias', 'nota'] as $parte) {
    require __DIR__ . "/$parte.php";
}
require __DIR__ . '/../demo/tabela.php';

if ($argc < 4) {
    fwrite(STDERR, "paginas.php EXTENSION PROGRAMS OUT [ROUNDS]\n");
    exit(2);
}
define('EXTENSAO', $argv[1]);
define('PROGRAMAS', $argv[2]);
define('SAIDA', $argv[3]);
define('PARES', '');
$rodadas = (int) ($argv[4] ?? 5);
$rodadas > 0 || para('a number of rounds is wanted');
putenv('TZ=UTC');
putenv('LC_ALL=C');

const DIAS = 31;
consolida(gera(32300, 400, DIAS));
$ini = SAIDA . '/paginas.ini';
file_put_contents($ini, sprintf("[bench]\ndados = %s\nlogs = %1\$s\nfuso = UTC\n", SAIDA . '/dat'));
$mes = 'de=' . gmdate('Y-m-d', DIA) . '&ate=' . gmdate('Y-m-d', DIA + (DIAS - 1) * 86400);
$pagina = fn(string $endereco) => [PHP_BINARY, '-d', 'extension=' . EXTENSAO, __DIR__ . '/pagina.php', $ini, $endereco];
preg_match('/^1,([^,]+),/m', executa($pagina("/maiores?$mes&formato=csv")), $maior);
preg_match('/^([0-9A-F]{16}),/m', executa($pagina("/mensagens?$mes&remetente=$maior[1]&hora=3&formato=csv")), $id);

// A page, its address, the most that it may cost in milliseconds and MiB.
$paginas = [
    'overview' => ['/', 400, 64],
    'totals per day' => ["/dias?$mes", 400, 64],
    'hours, with those of each day' => ["/horas?$mes", 700, INF],
    'days and hours of the busiest user' => ["/usuario?$mes&usuario=$maior[1]", 400, 64],
    'largest users' => ["/maiores?$mes", 400, 64],
    '200 messages of the busiest user' => ["/mensagens?$mes&usuario=$maior[1]", 400, 64],
    'the same, above 1 GB: none' => ["/mensagens?$mes&usuario=$maior[1]&min_kb=1000000", 400, 64],
    'messages of nobody' => ["/mensagens?$mes&usuario=ninguem@metalurgica.example", 400, 64],
    'messages of everybody in an hour of the day' => ["/mensagens?$mes&hora=4", 400, 64],
    'messages by an id' => ["/mensagens?$mes&id=$id[1]", 400, 64],
    'trace of a message' => ["/rastro?id=$id[1]", 400, 64],
    'state' => ['/estado', 400, 64],
    'definitions' => ['/definicoes', 400, 64],
];
$medidas = ['php' => fn() => mede([PHP_BINARY, '-r', '1;'])];
foreach ($paginas as $nome => [$endereco]) {
    $medidas[$nome] = fn() => mede($pagina($endereco));
}
$m = mede_rodadas($medidas, $rodadas);

$tabela = [];
foreach ($paginas as $nome => [, $ms, $mib]) {
    $cpu = (mediana($m[$nome]['cpu']) - mediana($m['php']['cpu'])) * 1e3;
    $acima = (mediana($m[$nome]['pico']) - mediana($m['php']['pico'])) / 1048576;
    $tabela[] = [$nome, "at most $ms ms" . ($mib === INF ? '' : "; $mib MiB"), sprintf('%.0f ms; %.1f MiB', $cpu, $acima),
        $cpu <= $ms && $acima <= $mib ? 'ok' : 'MISSED'];
}
$titulos = ['The page', 'Target', 'CPU; memory above PHP\'s own', ''];
echo "\n", tabela('<<><', $titulos, $tabela);
anota(__DIR__ . '/../docs/performance.md', 'pages', tabela_markdown($titulos, $tabela));
