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

foreach (['medida', 'dias', 'pares', 'nota'] as $parte) {
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

is_dir(SAIDA) || mkdir(SAIDA, 0777, true);
$pequeno = gera(80, 40);
$menor = gera(100000, 2000);
$dia = gera(200000, 2000);
$maior = gera(1000000, 2000);
// Ten recipients a message, every one a new name; outside senders who hardly ever repeat.
$nomes = gera(100000, 2000, 1, '-names', '--destinatarios=10', '--so-entregas');
$de_fora = gera(1000000, 5000, 1, '-senders', '--nomes-externos=5000', '--dominios-externos=6000');
array_map('confere_estatistica', [$pequeno, $menor, $dia, $maior, $nomes, $de_fora]);

prepara_relatorios($dia);
$compacto = arquivo_do_dia(SAIDA . '/dia', 'compact_mail');
[$id, $usuario] = mensagem_do_meio($compacto);
$rg = ['rg', '-N', $id, $compacto];
$mawk_horas = mawk('horas.awk', $compacto);
$mawk_usuario = mawk('usuario.awk', $compacto, '-v', "usuario=$usuario");
$relatorios = [
    'trace' => fn() => relatorio('historia', SAIDA . '/dia', $id),
    'hours' => fn() => relatorio('horas', SAIDA . '/dia'),
    'user' => fn() => relatorio('mensagens', SAIDA . '/dia', $usuario),
    'month' => fn() => relatorio('totais', SAIDA . '/mes', '', 30),
    'walk' => fn() => relatorio('passeio', SAIDA . '/dia'),
];
$nossas = array_map(fn(callable $r) => $r(), $relatorios);
iguais('trace, rg', array_slice(explode("\n", trim($nossas['trace']['resposta'])), 1), aceites(executa($rg)));
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

$m = mede_rodadas([
    'small' => fn() => consolida($pequeno),
    '100k' => fn() => consolida($menor),
    '1M' => fn() => consolida($maior),
    'day' => fn() => consolida($dia),
    'names' => fn() => consolida($nomes),
    'senders' => fn() => consolida($de_fora),
    'wc' => fn() => mede(['wc', '-l', $dia['log']]),
    'mawk' => fn() => mede(mawk('estatistica.awk', $dia['log'])),
    'duckdb' => fn() => PARES ? duckdb('estatistica.sql', $dia['log']) : [],
    ...$relatorios,
    'rg' => fn() => mede($rg),
    'mawk hours' => fn() => mede($mawk_horas),
    'duckdb hours' => fn() => PARES ? duckdb('horas.sql', $compacto) : [],
    'mawk user' => fn() => mede($mawk_usuario),
], $rodadas) + ['duckdb' => [], 'duckdb hours' => []];

$m['loop']['cpu'] = $m['walk']['cpu_simples'];
$expoente = mediana(array_map(fn(float $a, float $b) => log($b / $a), $m['100k']['cpu'], $m['1M']['cpu']))
    / log($maior['linhas'] / $menor['linhas']);
$pico = mediana($m['1M']['pico']);
$guardado = fn(string $que) => mediana($m[$que]['pico']) - mediana($m['small']['pico']);
$por_mensagem = $guardado('1M') / $maior['mensagens'];
$pico_nomes = mediana($m['names']['pico']);
$por_nome = $guardado('names') / ($nomes['mensagens'] * 10);
$por_remetente = $guardado('senders') / $de_fora['mensagens'];
$wc = razao($m['day']['cpu'], $m['wc']['cpu']);
$rg = razao($m['trace']['cpu'], $m['rg']['cpu']);
$mes = mediana($m['month']['cpu']) * 1e3;
$passeio = razao($m['walk']['cpu'], $m['loop']['cpu']);
$crescimento = $trinta['pico'] / $um['pico'];

$alvos = [
    mais_rapido('consolidation against mawk computing the same totals', 'at least 25 times faster', [25],
        $m['day'], $m['mawk']),
    mais_rapido('against DuckDB, one thread, same totals (npm `@duckdb/node-api`)', 'at least 13 times',
        [13], $m['day'], $m['duckdb']),
    linha('against `wc -l` of the same log', 'at most 14 times its CPU', sprintf('%.1f times', $wc), $wc <= 14),
    linha('growth, 100,000 to 1,000,000 messages a day: exponent of time', 'at most 1.05',
        sprintf('%.3f', $expoente), $expoente <= 1.05),
    linha('memory per message held; peak at 1,000,000 messages a day', 'at most 210 bytes; 230 MiB',
        sprintf('%.0f bytes; %.0f MiB', $por_mensagem, $pico / 1048576),
        $por_mensagem <= 210 && $pico <= 230 * 1048576),
    linha('1,000,000 names in a day, ten recipients a message: peak; memory per name', 'at most 250 MiB; 250 bytes',
        sprintf('%.0f MiB; %.0f bytes', $pico_nomes / 1048576, $por_nome),
        $pico_nomes <= 250 * 1048576 && $por_nome <= 250),
    linha('memory per message held when outside senders never repeat, 1,000,000 messages a day',
        'at most 200 bytes', sprintf('%.1f bytes', $por_remetente), $por_remetente <= 200),
    linha(sprintf('trace of one id over a %.0f MB compact file against `rg` for the id', filesize($compacto) / 1e6),
        'at most 1.0 times its CPU', sprintf('%.2f times', $rg), $rg <= 1),
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
    '`wc -l`' => 'wc',
    'mawk, the statistics file' => 'mawk',
    'DuckDB, the statistics file' => 'duckdb',
    'trace of one id' => 'trace',
    '`rg` for the id' => 'rg',
    'hours of the day' => 'hours',
    'mawk, hours' => 'mawk hours',
    'DuckDB, hours' => 'duckdb hours',
    'messages of a user' => 'user',
    'mawk, messages of a user' => 'mawk user',
    'walking 200,000 rows' => 'walk',
    'the plain PHP loop' => 'loop',
] as $que => $nome) {
    $custos[] = [$que, $m[$nome] ? sprintf('%.4f', mediana($m[$nome]['cpu'])) : 'not measured'];
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
    razao($m['mawk']['cpu'], $m['day']['cpu']), mediana($m['1M']['cpu']), $pico / 1048576, $horas * 1e3,
    mediana($m['trace']['cpu']) * 1e3, $mes));
