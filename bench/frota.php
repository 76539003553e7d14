<?php
// Measures a fleet's database over a generated month of a million messages, on a PostgreSQL of its own.
//
//     php bench/frota.php EXTENSION PROGRAMS OUT
//
// As bench.php, whose directories these are; the table goes into docs/fleet.md. Nothing is timed whose answer is
// not compared first: every view with the command, cell by cell.
declare(strict_types=1);

use Vorna\Mrel\{Periodo, Relay};
use Vorna\Mrel\Testes\{Cluster, Espelho};

foreach (['medida', 'dias', 'nota'] as $parte) {
    require __DIR__ . "/$parte.php";
}
require __DIR__ . '/../demo/tabela.php';
require __DIR__ . '/../tests/php/carrega.php';
require __DIR__ . '/../tests/frota/Cluster.php';
require __DIR__ . '/../tests/frota/Espelho.php';

if ($argc < 4) {
    fwrite(STDERR, "frota.php EXTENSION PROGRAMS OUT\n");
    exit(2);
}
define('EXTENSAO', $argv[1]);
define('PROGRAMAS', $argv[2]);
define('SAIDA', $argv[3]);
define('PARES', '');
putenv('TZ=UTC');
putenv('LC_ALL=C');

const DIAS = 31;
const RELAYS = 100;

// Seconds of CPU of a server and its children, dead or alive.
function servidor(Cluster $cluster): float
{
    $pai = (int) file("$cluster->dir/d/postmaster.pid")[0];
    $filhos = array_map('intval', explode(' ', trim((string) file_get_contents("/proc/$pai/task/$pai/children"))));
    $soma = 0;
    foreach ([$pai, ...$filhos] as $pid) {
        $c = explode(' ', preg_replace('/^.*\) /', '', (string) @file_get_contents("/proc/$pid/stat"))) + array_fill(0, 20, 0);
        $soma += $c[11] + $c[12] + ($pid === $pai ? $c[13] + $c[14] : 0);
    }
    return $soma / 100;
}

// The best of three runs of a query, in seconds, and how many rows it answers.
function consulta(Cluster $cluster, string $sql): array
{
    $conexao = $cluster->conecta();
    $tempos = [];
    for ($i = 0; $i < 3; ++$i) {
        $inicio = hrtime(true);
        $linhas = pg_num_rows(pg_query($conexao, $sql));
        $tempos[] = (hrtime(true) - $inicio) / 1e9;
    }
    return [min($tempos), $linhas];
}

$logs = gera(32300, 400, DIAS);
consolida($logs);
[$de, $ate] = [gmdate('Y-m-d', DIA), gmdate('Y-m-d', DIA + (DIAS - 1) * 86400)];
$relay = new Relay(SAIDA . '/dat', 'matriz', fuso: new DateTimeZone('UTC'));
$cluster = (new Cluster())->com('pgsql');
$envia = fn(string ...$dias) => [__DIR__ . '/../bin/vtmrel', 'envia', '--para=' . $cluster->dsn(), '--relay=matriz',
    '--dados=' . SAIDA . '/dat', '--fuso=UTC', ...$dias];
$php = mede([PHP_BINARY, '-n', '-r', '1;'])['pico'];
$tabela = [];
$anota = function (string $que, string $pede, string $foi, bool $cumpre) use (&$tabela): void {
    $tabela[] = [$que, $pede, $foi, $cumpre ? 'ok' : 'MISSED'];
};
foreach ([['the month', 35, "--de=$de", "--ate=$ate"], ['a day again', 2, "--de=$de", null]] as [$que, $alvo, $um, $outro]) {
    $antes = servidor($cluster);
    $m = mede($envia(...array_filter([$um, $outro])));
    $acima = ($m['pico'] - $php) / 1048576;
    $foi = sprintf('%.1f s; %.1f MiB; CPU %.1f s and the server\'s %.1f s', $m['relogio'], $acima, $m['cpu'], servidor($cluster) - $antes);
    $anota("`envia`, $que", "$alvo s; 32 MiB above PHP's own", $foi, $m['relogio'] <= $alvo && $acima <= 32);
}
[[$eventos, $tamanho]] = $cluster->sql("SELECT count(*), (SELECT sum(pg_total_relation_size(inhrelid)) FROM pg_inherits
    JOIN pg_class c ON c.oid = inhrelid WHERE relkind = 'r') FROM eventos");
$periodo = Periodo::de($de, $ate, new DateTimeZone('UTC'));
$celulas = $diferentes = 0;
foreach ($periodo->cadaDia() as $dia) {
    $esperado = Espelho::esperado($relay, $dia);
    foreach (Espelho::consultas('matriz') as $vista => $consulta) {
        $consulta = str_replace('ORDER BY', "AND dia = '$dia->primeiro' ORDER BY", $consulta);
        $achado = Espelho::celulas($cluster->sql($consulta));
        $celulas += array_sum(array_map('count', $esperado[$vista]));
        $diferentes += $achado === $esperado[$vista] ? 0 : 1;
    }
}
$anota('views and command, day by day', 'equal', number_format($celulas) . ' cells, ' . "$diferentes answers differ", $diferentes === 0);
// A hundred relays of 2,000 messages a day: the rows of a sixteenth of the users, under other names.
$cluster->sql('INSERT INTO totais SELECT format(\'r%s\', i), dia, internas / 16, bytes_internas / 16, externas / 16,
    bytes_externas / 16, spam, virus, com_erro FROM totais, generate_series(2, ' . RELAYS . ') i;
    INSERT INTO usuarios SELECT format(\'r%s\', i), dia, hora, usuario, enviadas, recebidas, bytes_enviados, bytes_recebidos,
    virus, spam, erros, bloqueados FROM usuarios, generate_series(2, ' . RELAYS . ') i WHERE abs(hashtext(usuario)) % 16 = i % 16');
$cluster->sql('ANALYZE totais, usuarios');
[[$usuarios]] = $cluster->sql('SELECT count(*) FROM usuarios');
[$geral] = consulta($cluster, 'SELECT relay, count(*), sum(internas), sum(bytes_internas), sum(externas), sum(bytes_externas),
    sum(spam), sum(virus), sum(com_erro) FROM dias GROUP BY ROLLUP (relay)');
$anota('overview of ' . RELAYS . ' relays, ' . DIAS . ' days', '0.5 s', sprintf('%.3f s', $geral), $geral <= 0.5);
[$maiores] = consulta($cluster, "SELECT usuario, sum(enviadas) FROM usuarios GROUP BY 1 ORDER BY 2 DESC LIMIT 20");
$tabela[] = ['the 20 largest of ' . number_format((float) $usuarios) . ' rows of `usuarios`', '', sprintf('%.2f s', $maiores), ''];
[$horas] = consulta($cluster, "SELECT * FROM horas WHERE relay = 'matriz' AND dia = '$de'");
$tabela[] = ['`horas` of a day of 32,300 messages', '', sprintf('%.2f s', $horas), ''];
[[$id]] = $cluster->sql("SELECT mensagem FROM eventos WHERE dia = '$ate' AND n = 1000");
[$rastro] = consulta($cluster, "SELECT * FROM rastro WHERE id = '$id'");
$tabela[] = ['`rastro` of an id in ' . number_format((float) $eventos) . ' events, ' . round($tamanho / 1e6) . ' MB', '',
    sprintf('%.4f s', $rastro), ''];
$titulos = ['What', 'Target', 'Measured', ''];
echo "\n", tabela('<<<<', $titulos, $tabela);
[[$versao]] = $cluster->sql('SHOW server_version');
anota(__DIR__ . '/../docs/fleet.md', 'fleet', 'Measured on ' . gmdate('Y-m-d') . " with PHP " . PHP_VERSION . " and PostgreSQL $versao, load "
    . sys_getloadavg()[0] . ' on ' . trim(executa(['nproc'])) . " cores, by the clock where nothing else is said.\n\n" . tabela_markdown($titulos, $tabela));
