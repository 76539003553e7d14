<?php
// Measures the consolidation and the reports over generated days, beside other tools.
//
//     php -n bench/bench.php EXTENSION PROGRAMS OUT PEERS [ROUNDS]
//
// PROGRAMS is the directory of gera_logs and mede; OUT keeps the generated logs for the next time.
// PEERS is the directory that DuckDB was installed in, or empty: its rows are not measured then.
// Answers are compared before anything is timed. Every round runs each measured command once, in
// the same order; ratios are taken within a round, and the tables show medians over the rounds. They
// are also written into docs/performance.md and README.md.
declare(strict_types=1);

foreach (['medida', 'dias', 'pares', 'traces', 'nota'] as $parte) {
    require __DIR__ . "/$parte.php";
}
require __DIR__ . '/../demo/tabela.php';

if ($argc < 5) {
    fwrite(STDERR, "bench.php EXTENSION PROGRAMS OUT PEERS [ROUNDS]\n");
    exit(2);
}
define('EXTENSAO', $argv[1]);
define('PROGRAMAS', $argv[2]);
define('SAIDA', $argv[3]);
define('PARES', $argv[4]);
$rodadas = (int) ($argv[5] ?? 5);
$rodadas > 0 || para('a number of rounds is wanted');
ini_set('memory_limit', '-1');
putenv('TZ=UTC');
putenv('LC_ALL=C');

// A row of the table; without a target it only informs.
function linha(string $figura, string $alvo, string $resultado, ?bool $cumpre = null): array
{
    return [$figura, $alvo, $resultado, $cumpre === null ? '' : ($cumpre ? 'ok' : 'MISSED')];
}

// A row that wants our CPU to be so many times less than those of the peers that were measured.
function mais_rapido(string $figura, string $alvo, array $minimos, array $nossa, array ...$deles): array
{
    $vezes = array_map(fn(array $dele) => $dele ? razao($dele['cpu'], $nossa['cpu']) : null, $deles);
    $falhou = array_filter($vezes, fn(?float $v, int $i) => $v !== null && $v < $minimos[$i], ARRAY_FILTER_USE_BOTH);
    return linha($figura, $alvo,
        implode('; ', array_map(fn(?float $v) => $v === null ? 'not measured' : sprintf('%.1f times', $v), $vezes)),
        array_filter($vezes) ? !$falhou : null);
}

// A row that compares our CPU with a peer's over days of different shape: the median of their ratios, and
// of the peer's own seconds, since peers differ between machines more than we do. `wc`, which only
// counts lines, is to be at most so many times quicker; the others at least so many times slower.
function contra(string $par, array $m, array $formas, string $figura, int $vezes): array
{
    $conta = $par === 'wc';
    $alvo = $conta ? "at most $vezes times its CPU" : "at least $vezes times faster";
    $formas = array_filter($formas, fn(string $f) => isset($m["$par $f"]));
    if (!$formas) {
        return linha("$figura (median of three days)", $alvo, 'not measured');
    }
    $deles = array_map(fn(string $f) => $m["$par $f"]['cpu'], $formas);
    $nossas = array_map(fn(string $f) => $m[$f]['cpu'], $formas);
    $r = mediana($conta ? array_map('razao', $nossas, $deles) : array_map('razao', $deles, $nossas));
    return linha("$figura (median of three days)", $alvo,
        sprintf('%.1f times; it takes %.3f s', $r, mediana(array_map('mediana', $deles))),
        $conta ? $r <= $vezes : $r >= $vezes);
}

is_dir(SAIDA) || mkdir(SAIDA, 0777, true);
$pequeno = gera(80, 40);
$menor = gera(100000, 2000);
$dia = gera(200000, 2000);
$maior = gera(1000000, 2000);
// Ten recipients a message, every one a new name; outside senders who hardly ever repeat.
$nomes = gera(100000, 2000, 1, '--destinatarios=10', '--so-entregas');
$externos = ['--nomes-externos=5000', '--dominios-externos=6000'];
$de_fora = gera(1000000, 5000, 1, ...$externos);
// What is compared with other tools is measured over three days of different shape: the usual one; ids
// that all begin alike, fewer messages of more users; senders who hardly ever repeat.
$formas = ['day' => $dia, 'ids' => gera(150000, 5000, 1, '--inicio-dos-ids=69AF5F00'),
    'senders' => gera(200000, 5000, 1, ...$externos)];
array_map('confere_estatistica', [$pequeno, $menor, $maior, $nomes, $de_fora, ...$formas]);

prepara_relatorios($dia);
$compacto = arquivo_do_dia(SAIDA . '/dia', 'compact_mail');
$usuario = usuario_do_meio($compacto);
$dia_de_traces = sorteia_traces(SAIDA . '/dia');
$outro_dia = sorteia_traces(guarda_dia($formas['ids'], 'ids'));
$mawk_horas = mawk('horas.awk', $compacto);
$mawk_usuario = mawk('usuario.awk', $compacto, '-v', "usuario=$usuario");
$relatorios = [
    'hours' => fn() => relatorio('horas', SAIDA . '/dia'),
    'user' => fn() => relatorio('mensagens', SAIDA . '/dia', $usuario),
    'month' => fn() => relatorio('totais', SAIDA . '/mes', '', 30),
    'walk' => fn() => relatorio('passeio', SAIDA . '/dia'),
];
$nossas = array_map(fn(callable $r) => $r(), $relatorios);
confere_traces('traces, rg', $dia_de_traces);
confere_traces('traces on a day of ids with one beginning, rg', $outro_dia);
iguais('hours, mawk', $nossas['hours']['resposta'], executa($mawk_horas));
if (PARES) {
    iguais('hours, DuckDB', $nossas['hours']['resposta'], duckdb('horas.sql', $compacto)['resposta']);
}
iguais('user messages, mawk', $nossas['user']['resposta'], executa($mawk_usuario));
iguais('30 days', $nossas['month']['resposta'],
    str_repeat(relatorio('totais', SAIDA . '/dia')['resposta'], 30));
iguais('walk, plain loop', $nossas['walk']['resposta'], $nossas['walk']['resposta_simples']);

$um = consolida(gera(20000, 2000));
$trinta = consolida(gera(20000, 2000, 30));
count(glob(SAIDA . '/dat/rels_*/mail_stat_*.txt')) === 30 || para('30 days of logs did not make 30 days');

$comparadas = [];
foreach ($formas as $forma => $logs) {
    $comparadas += [
        $forma => fn() => consolida($logs),
        "wc $forma" => fn() => mede(['wc', '-l', $logs['log']]),
        "mawk $forma" => fn() => mede(mawk('estatistica.awk', $logs['log'])),
        "duckdb $forma" => fn() => PARES ? duckdb('estatistica.sql', $logs['log']) : [],
    ];
}
$m = mede_rodadas([
    'small' => fn() => consolida($pequeno),
    '100k' => fn() => consolida($menor),
    '1M' => fn() => consolida($maior),
    'names' => fn() => consolida($nomes),
    'outside' => fn() => consolida($de_fora),
    ...$comparadas,
    ...$relatorios,
    'trace' => fn() => traces($dia_de_traces),
    'rg' => fn() => procuras($dia_de_traces),
    'trace, ids' => fn() => traces($outro_dia),
    'rg, ids' => fn() => procuras($outro_dia),
    'mawk hours' => fn() => mede($mawk_horas),
    'duckdb hours' => fn() => PARES ? duckdb('horas.sql', $compacto) : [],
    'mawk user' => fn() => mede($mawk_usuario),
], $rodadas) + ['duckdb hours' => []];

$m['loop']['cpu'] = $m['walk']['cpu_simples'];
$expoente = mediana(array_map(fn(float $a, float $b) => log($b / $a), $m['100k']['cpu'], $m['1M']['cpu']))
    / log($maior['linhas'] / $menor['linhas']);
$pico = mediana($m['1M']['pico']);
$guardado = fn(string $que) => mediana($m[$que]['pico']) - mediana($m['small']['pico']);
$por_mensagem = $guardado('1M') / $maior['mensagens'];
$pico_nomes = mediana($m['names']['pico']);
$por_nome = $guardado('names') / ($nomes['mensagens'] * 10);
$por_remetente = $guardado('outside') / $de_fora['mensagens'];
$m['trace erro']['cpu'] = $m['trace']['erro'];
$mes = mediana($m['month']['cpu']) * 1e3;
$passeio = razao($m['walk']['cpu'], $m['loop']['cpu']);
$crescimento = $trinta['pico'] / $um['pico'];

$alvos = [
    contra('mawk', $m, array_keys($formas), 'consolidation against mawk computing the same totals', 20),
    contra('duckdb', $m, array_keys($formas), 'against DuckDB, one thread, same totals (npm `@duckdb/node-api`)', 11),
    contra('wc', $m, array_keys($formas), 'against `wc -l` of the same log', 14),
    linha('growth, 100,000 to 1,000,000 messages a day: exponent of time', 'at most 1.05',
        sprintf('%.3f', $expoente), $expoente <= 1.05),
    linha('memory per message held; peak at 1,000,000 messages a day', 'at most 210 bytes; 230 MiB',
        sprintf('%.0f bytes; %.0f MiB', $por_mensagem, $pico / 1048576),
        $por_mensagem <= 210 && $pico <= 230 * 1048576),
    linha('1,000,000 names in a day, ten recipients a message: peak; memory per name', 'at most 250 MiB; 250 bytes',
        sprintf('%.0f MiB; %.0f bytes', $pico_nomes / 1048576, $por_nome),
        $pico_nomes <= 250 * 1048576 && $por_nome <= 250),
    linha('memory per message held when outside senders never repeat, 1,000,000 messages a day',
        'at most 200 bytes', sprintf('%.0f bytes', $por_remetente), $por_remetente <= 200),
    ...linhas_dos_traces([$dia_de_traces, $outro_dia], [$m['trace'], $m['trace, ids']],
        [$m['rg'], $m['rg, ids']]),
    mais_rapido('hours of a day against mawk; against DuckDB', 'at least 18 times; 13 times faster', [18, 13],
        $m['hours'], $m['mawk hours'], $m['duckdb hours']),
    mais_rapido('user messages against mawk', 'at least 10 times faster', [10], $m['user'], $m['mawk user']),
    linha('30 days of totals', 'at most 0.5 ms a call', sprintf('%.2f ms', $mes), $mes <= 0.5),
    linha('walking rows from PHP against a plain PHP loop over an array of objects', 'at most 1.0 times',
        sprintf('%.2f times', $passeio), $passeio <= 1),
    linha('peak memory of 30 days of 20,000 messages in one run against one such day', 'at most 1.1 times',
        sprintf('%.2f times (%.1f MiB)', $crescimento, $trinta['pico'] / 1048576), $crescimento <= 1.1),
    linha("a day of {$pequeno['linhas']} lines, from the start of PHP to its end", '',
        sprintf('%.0f ms', mediana($m['small']['relogio']) * 1e3)),
];
$custos = [];
foreach ([
    'consolidation, 100,000 messages' => '100k',
    'consolidation, 200,000 messages' => 'day',
    'consolidation, 1,000,000 messages' => '1M',
    'consolidation, 150,000 messages whose ids begin alike' => 'ids',
    'consolidation, 200,000 messages of senders who hardly repeat' => 'senders',
    '`wc -l`' => 'wc day',
    'mawk, the statistics file' => 'mawk day',
    'DuckDB, the statistics file' => 'duckdb day',
    'trace of a message' => 'trace',
    'trace of one that met a connection error' => 'trace erro',
    '`rg` for the id' => 'rg',
    'hours of the day' => 'hours',
    'mawk, hours' => 'mawk hours',
    'DuckDB, hours' => 'duckdb hours',
    'messages of a user' => 'user',
    'mawk, messages of a user' => 'mawk user',
    'walking 200,000 rows' => 'walk',
    'the plain PHP loop' => 'loop',
] as $que => $nome) {
    $custos[] = [$que, !empty($m[$nome]) ? sprintf('%.4f', mediana($m[$nome]['cpu'])) : 'not measured'];
}

$titulos = ['Figure', 'Target', 'Result', ''];
echo "\n", tabela('<<><', $titulos, $alvos), "\n", tabela('<>', ['Median of CPU', 'seconds'], $custos);

$cpu = mediana($m['day']['cpu']);
$horas = mediana($m['hours']['cpu']);
$comando = './dev bench' . (PARES ? ' --peers' : '') . " $rodadas";
$nota = __DIR__ . '/../docs/performance.md';
anota($nota, 'results', procedencia($comando) . "\n" . tabela_markdown($titulos, $alvos));
anota($nota, 'seconds', tabela_markdown(['Median of CPU', 'seconds'], $custos));
anota($nota, 'paper', tabela_markdown(['', 'one appliance', '10,000 appliances', 'one large relay'],
    papel($dia, filesize($compacto) + filesize(arquivo_do_dia(SAIDA . '/dia', 'mail_stat')), $cpu,
        $por_mensagem, $horas)));
anota(__DIR__ . '/../README.md', 'results', sprintf(
    "- A day of 200,000 messages (%.2f million lines, %.0f MB of log) is consolidated in **%.2f s** on one\n"
    . "  core: %.1f million lines a second, %.0f times faster than mawk computes the same statistics.\n"
    . "- A day of 1,000,000 messages takes %.1f s and **%.0f MiB** of memory; more days in one run take no more.\n"
    . "- A page gets the hours of that first day in **%.0f ms**, the history of a message in %.0f ms, the\n"
    . "  totals of 30 days in %.2f ms.\n",
    $dia['linhas'] / 1e6, $dia['bytes'] / 1e6, $cpu, $dia['linhas'] / $cpu / 1e6,
    razao($m['mawk day']['cpu'], $m['day']['cpu']), mediana($m['1M']['cpu']), $pico / 1048576, $horas * 1e3,
    mediana($m['trace']['cpu']) * 1e3, $mes));
