<?php
// Every kind of work a thousand times in one PHP process, over the logs in FOLDER/logs: resident
// memory and descriptors stay as they are.
//
//     php -n -d extension=PATH faults/soak.php FOLDER
//
// 0 when all was well. While it runs, it holds the machine's lock of consolidations.
declare(strict_types=1);

const AQUECIMENTO = 200;     // cycles after which a process has what it needs
const CICLOS = 1000;         // cycles watched behind them
const FOLGA = 64 * 1024;     // bytes by which it may still grow

const DE = 1773100800;       // 10 to 12 March 2026, UTC
const ATE = 1773359999;
const USUARIO = 'nfe@metalurgica.example';

$raiz = $argv[1];
putenv('TZ=UTC');

// Bytes; statm would lag behind by some pages.
function residente(): int
{
    preg_match('/^Rss: *(\d+) kB/m', file_get_contents('/proc/self/smaps_rollup'), $rss);
    return 1024 * (int) $rss[1];
}

function descritores(): int
{
    return count(scandir('/proc/self/fd'));
}

function parser(): vt_mrel
{
    global $raiz;
    $m = new vt_mrel();
    if (!$m->setLogDir("$raiz/logs") || !$m->setDataDir("$raiz/dat") || !$m->add_domain('metalurgica.example')) {
        throw new Exception('refused');
    }
    return $m;
}

function consolida(): string
{
    global $raiz;
    @unlink("$raiz/last");
    parser()->consolidate("$raiz/last");
    if (!is_file("$raiz/last")) {
        throw new Exception('nothing was consolidated: is another process at it?');
    }
    return md5_file("$raiz/last") . implode(' ', array_map('md5_file', glob("$raiz/dat/*/*")));
}

// The report into a new iterator, and all its rows as text.
function relata(vt_mrel $m, callable $pede): string
{
    $itr = new vt_mrel_itr();
    $texto = $pede($m, $itr->getHandle()) . "\n";
    while ($itr->fetch()) {
        $texto .= implode('|', get_object_vars($itr)) . "\n";
        while ($itr->fetch_msgs_per_day()) {
            $texto .= '- ' . implode('|', get_object_vars($itr)) . "\n";
        }
    }
    while ($itr->fetch_recipient()) {
        $texto .= '> ' . implode('|', get_object_vars($itr)) . "\n";
    }
    return $texto;
}

// Does the work over and over; false when something grew. Each time it must answer the same, and
// not nothing.
function observa(string $nome, callable $trabalho): bool
{
    $certo = $trabalho();
    if (strlen($certo) < 100) {
        throw new Exception("$nome: no rows");
    }
    for ($i = -AQUECIMENTO; $i < CICLOS; ++$i) {
        if ($i === -1) {
            residente();  // the first look itself takes memory
        }
        if ($i === 0) {
            $antes = [residente(), memory_get_usage(), descritores()];
        }
        if ($trabalho() !== $certo) {
            throw new Exception("$nome: an answer changed");
        }
    }
    $bytes = residente() - $antes[0];
    $do_motor = memory_get_usage() - $antes[1];
    $abertos = descritores() - $antes[2];
    printf("soak, PHP, %s: %d cycles, %d bytes resident, %d of the engine, %d descriptors more\n",
        $nome, CICLOS, $bytes, $do_motor, $abertos);
    return $bytes <= FOLGA && $do_motor <= 1024 && $abertos === 0;
}

$bom = observa('consolidation', consolida(...));

preg_match('/ MAILQ SUBMIT Msg (\w+)/', file_get_contents(glob("$raiz/logs/*")[0]), $submissao);
$relatos = [
    'messages per day' => fn($m, $h) => $m->msgs_per_day(DE, ATE, ' ', $h),
    'messages per day of users' => fn($m, $h) => $m->msgs_per_day(DE, ATE, USUARIO . ',vendas', $h),
    'messages per hour' => fn($m, $h) => $m->msgs_per_hour(DE, ATE, ' ', $h),
    'messages per hour of a user' => fn($m, $h) => $m->msgs_per_hour(DE, ATE, USUARIO, $h),
    'messages of users' => fn($m, $h) => $m->user_msgs(USUARIO, USUARIO, DE, ATE, '', 0, 0, $h),
    'trace' => fn($m, $h) => $m->msg_trace($submissao[1], DE, ATE, $h),
];
// A parser a page; then one of a worker that answers page after page.
foreach ($relatos as $nome => $pede) {
    $bom = observa($nome, fn() => relata(parser(), $pede)) && $bom;
}
$m = parser();
foreach ($relatos as $nome => $pede) {
    relata($m, $pede);
    $bom = observa("$nome, one parser", fn() => relata($m, $pede)) && $bom;
}
$bom = observa('registry', fn() => str_pad(parser()->getPontaraPath(), 100)) && $bom;
exit($bom ? 0 : 1);
