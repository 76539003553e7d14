--TEST--
Cycles, fork, a memory limit in mid-walk, and a system without memory
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$raiz = arvore(__FILE__);
dia($raiz, "1 2 1 2 3 4 5 6 7 8\n", array_map(fn($n) => "9:00:00 1 1 M$n INTERNO " . str_repeat('a', 300) . "$n 1", range(1, 2000)));
$m = parser($raiz);
$fim = DIA + 86399;

// Iterators that hold each other through their own properties are collected, and their handles die.
for ($n = 0; $n < 100; ++$n) {
    $a = new vt_mrel_itr();
    $b = new vt_mrel_itr();
    $a->recv = $b;
    $b->usuario = [$a, $m];
    $b->minha = $a;
    $m->msgs_per_hour(DIA, $fim, ' ', $a->getHandle());
    $handles[] = $a->getHandle();
    unset($a, $b);
}
echo 'collected: ', gc_collect_cycles() >= 200 ? 'all' : 'too few', "\n";
$vivas = array_filter($handles, fn($h) => @$m->msg_trace('X', 1, 2, $h));
$ultimo = error_get_last();
echo count($vivas), ' ', strpos($ultimo['message'], 'is not the handle') !== false ? 'dead' : 'alive', "\n";

// A child goes on with what its parent left, and so does the parent.
$i = new vt_mrel_itr();
$m->user_msgs('', '', DIA, $fim, '', 0, 0, $i->getHandle());
$i->fetch();
$filho = pcntl_fork();
if ($filho === 0) {
    $ok = $i->fetch() === 1 && $i->msg_id === 'M2' && $m->msgs_per_day(DIA, $fim, ' ', $i->getHandle()) === 1;
    exit($ok ? 7 : 8);
}
pcntl_waitpid($filho, $estado);
echo 'fork: ', pcntl_wexitstatus($estado), ' ', $i->fetch(), $i->msg_id, "\n";

// Limits reached in a walk end the script in order: its shutdown function still walks. What the
// loop keeps are texts that a publish made, so that the memory ends in the middle of one.
foreach (['memory_limit' => ['$x[$n++] = $i->msg_sendername;', 30], 'max_execution_time' => ['', 1]] as $limite => [$passo, $segundos]) {
    $codigo = 'ini_set("display_errors", "0"); register_shutdown_function(function () {
            ini_set("memory_limit", -1);
            echo substr(error_get_last()["message"], 0, 19), " ", $GLOBALS["i"]->fetch(), $GLOBALS["i"]->fetch(), "\n";
        });
        $raiz = ' . var_export($raiz, true) . '; $m = parser($raiz); $i = new vt_mrel_itr();
        $m->user_msgs("", "", DIA, DIA + 86399, "", 0, 0, $i->getHandle());
        $x = array_fill(0, 100000, $n = 0);
        ini_set("memory_limit", memory_get_usage(true) + (1 << 21)); set_time_limit(' . $segundos . ');
        for (;;) { $i->fetch(); ' . $passo . ' }';
    $p = outro_php($codigo, $canos);
    echo "$limite: ", stream_get_contents($canos[1]);
    echo proc_close($p), "\n";
}

// Memory that the system refuses is an error of the script. The rows of one report after another take it;
// the bound is for a report that hides it.
$p = outro_php('$raiz = ' . var_export($raiz, true) . '; $m = parser($raiz); $i = new vt_mrel_itr();
    preg_match("/VmSize:\s+(\d+)/", file_get_contents("/proc/self/status"), $kb);
    exec("prlimit --as=" . ($kb[1] * 1024 + (8 << 20)) . " --pid " . getmypid());
    try {
        for ($n = 0; $n < 100; ++$n) $m->user_msgs("", "", DIA, DIA + 86399, "", 0, 0, $i->getHandle());
    } catch (Error $e) {
        echo $e->getMessage();
    }', $canos);
echo 'system: ', stream_get_contents($canos[1]), ' ', proc_close($p), "\n";
?>
--EXPECT--
collected: all
0 dead
fork: 7 1M2
memory_limit: Allowed memory size 11
255
max_execution_time: Maximum execution t 11
255
system: vt_mrel: out of memory 0
