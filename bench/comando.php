<?php
// Measures the command vtmrel over a generated month of a million messages, from its start to its end.
//
//     php -n bench/comando.php EXTENSION PROGRAMS OUT [ROUNDS]
//
// As bench.php, whose directories these are; the table goes into docs/performance.md.
declare(strict_types=1);

foreach (['medida', 'dias', 'nota'] as $parte) {
    require __DIR__ . "/$parte.php";
}
require __DIR__ . '/../demo/tabela.php';

if ($argc < 4) {
    fwrite(STDERR, "comando.php EXTENSION PROGRAMS OUT [ROUNDS]\n");
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
$logs = gera(32300, 400, DIAS);
consolida($logs);
$onde = ['--dados=' . SAIDA . '/dat', '--fuso=UTC', '--de=' . gmdate('Y-m-d', DIA),
    '--ate=' . gmdate('Y-m-d', DIA + (DIAS - 1) * 86400)];
$vtmrel = fn(string ...$argumentos) => [__DIR__ . '/../bin/vtmrel', ...$argumentos];
$linhas = fn(string ...$argumentos) => (int) executa(['sh', '-c', '"$@" | wc -l', 'sh',
    ...$vtmrel(...$argumentos), ...$onde]) - 1;

// Nothing is timed that does not answer for the whole month.
$linhas('dias') === DIAS || para('not ' . DIAS . ' days');
$linhas('topo') === 20 || para('not 20 users');
$usuarios = $linhas('exporta', 'usuarios');
$eventos = $linhas('exporta', 'eventos');
$nos_arquivos = array_sum(array_map(fn(string $f) => (int) executa(['sh', '-c', "wc -l <$f"]),
    glob(SAIDA . '/dat/rels_*/compact_mail_*.txt')));
$eventos === $nos_arquivos || para("$eventos events exported, $nos_arquivos in the files");

$m = mede_rodadas([
    'php' => fn() => mede([PHP_BINARY, '-n', '-r', '1;']),
    'inicio' => fn() => mede($vtmrel('--version')),
    'dias' => fn() => mede($vtmrel('dias', ...$onde)),
    'topo' => fn() => mede($vtmrel('topo', ...$onde)),
    'usuarios' => fn() => mede($vtmrel('exporta', 'usuarios', ...$onde)),
    'eventos' => fn() => mede($vtmrel('exporta', 'eventos', ...$onde)),
], $rodadas);

$tabela = [];
foreach ([
    'start' => ['inicio', 0.040],
    '`dias` of the month' => ['dias', 0.060],
    '`topo` of the month' => ['topo', 0.300],
    '`exporta usuarios`, ' . number_format($usuarios) . ' rows' => ['usuarios', 1.5, 32],
    '`exporta eventos`, ' . number_format($eventos) . ' rows' => ['eventos', 15, 32],
] as $que => $alvo) {
    $segundos = mediana($m[$alvo[0]]['cpu']);
    $relogio = mediana($m[$alvo[0]]['relogio']);
    $acima = (mediana($m[$alvo[0]]['pico']) - mediana($m['php']['pico'])) / 1048576;
    $pede = sprintf('at most %g ms', $alvo[1] * 1e3) . (isset($alvo[2]) ? "; $alvo[2] MiB" : '');
    $cumpre = $segundos <= $alvo[1] && $acima <= ($alvo[2] ?? INF);
    $tabela[] = [$que, $pede, sprintf('%.0f ms; %.1f MiB', $segundos * 1e3, $acima),
        sprintf('%.0f ms', $relogio * 1e3), $cumpre ? 'ok' : 'MISSED'];
}
$titulos = ['The command', 'Target', 'CPU; memory above PHP\'s own', 'by the clock', ''];
echo "\n", tabela('<<>><', $titulos, $tabela);
anota(__DIR__ . '/../docs/performance.md', 'command', tabela_markdown($titulos, $tabela));
