--TEST--
A handle that names no live result set: a warning and 0, whatever happens meanwhile
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$m = new vt_mrel();
$i = new vt_mrel_itr();
$morto = (new vt_mrel_itr())->getHandle();
$passado = $i->getHandle();
$passa = $i;
unset($i, $passa);
$i = new vt_mrel_itr();
$vivo = $i->getHandle();
set_error_handler(function ($n, $texto) use (&$avisos) {
    $avisos[] = preg_replace('/-?\d+/', 'N', $texto);
    return true;
});
$falsos = [0, -1, 1, $vivo + 1, $vivo - 8, $vivo ^ 0x1000, PHP_INT_MAX, PHP_INT_MIN, spl_object_id($m)];
$respostas = 0;
foreach ($falsos as $h) {
    $respostas += 0 === $m->msgs_per_day(1, 2, ' ', $h);
    $respostas += 0 === $m->msgs_per_day(0, 0, ' ', $h);
    $respostas += 0 === $m->msgs_per_hour(1, 2, ' ', $h);
    $respostas += 0 === $m->user_msgs('', '', 1, 2, '', 0, 0, $h);
    $respostas += 0 === $m->msg_trace('0', 1, 2, $h);
}
diz($respostas === 5 * count($falsos), count($avisos), array_count_values($avisos));
diz($morto === $vivo || $m->msg_trace('X', 1, 2, $morto) === 0, $m->msgs_per_hour(1, 2, ' ', $vivo));

// A handler that throws: the exception comes out, nothing was touched.
set_error_handler(fn($n, $texto) => throw new LogicException('from the handler'));
try {
    $m->msgs_per_hour(1, 2, ' ', 3);
} catch (LogicException $e) {
    echo $e->getMessage(), ' ', $i->fetch(), "\n";
}
restore_error_handler();
restore_error_handler();

// Arguments are converted before the handle is looked up.
class Texto
{
    public function __construct(private Closure $ao_converter) {}
    public function __toString(): string
    {
        ($this->ao_converter)();
        return ' ';
    }
}
foreach (['ends it' => function () use (&$i) { $i = null; },
    'uses it' => function () use (&$i, $m) { $m->msgs_per_hour(1, 2, ' ', $i->getHandle()); $i->fetch(); },
    'throws' => fn() => throw new LogicException('from __toString')] as $nome => $faz) {
    $i = new vt_mrel_itr();
    try {
        echo $nome, ': ', $m->msgs_per_hour(1, 2, new Texto($faz), $i->getHandle());
        echo ' ', isset($i) ? $i->fetch() : 'gone', "\n";
    } catch (LogicException $e) {
        echo get_class($e), ' ', $e->getMessage(), ' ', $i->fetch(), "\n";
    }
}

// The parser goes while its own report converts its arguments; the iterator lives on.
$i = new vt_mrel_itr();
echo $m->user_msgs(new Texto(function () use (&$m) { $m = null; }), ' ', 1, 2, '', 0, 0, $i->getHandle()), $i->fetch(), "\n";
?>
--EXPECTF--
true 45 array (  'vt_mrel::msgs_per_day(): N is not the handle of a live vt_mrel_itr' => 18,  'vt_mrel::msgs_per_hour(): N is not the handle of a live vt_mrel_itr' => 9,  'vt_mrel::user_msgs(): N is not the handle of a live vt_mrel_itr' => 9,  'vt_mrel::msg_trace(): N is not the handle of a live vt_mrel_itr' => 9,)
true 1
from the handler 1
ends it: 
Warning: vt_mrel::msgs_per_hour(): %i is not the handle of a live vt_mrel_itr in %s on line %d
0 gone
uses it: 1 1
throws: LogicException from __toString 0
00
