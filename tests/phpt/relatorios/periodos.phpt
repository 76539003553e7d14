--TEST--
Periods of no day or of all of time, and wrong arguments
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$raiz = arvore(__FILE__);
dia($raiz, "1 2 1 2 3 4 5 6 7 10\n", ['9:00:00 1 1 A INTERNO ana@aqui 2048']);
$m = parser($raiz);
foreach ([[0, 5], [5, 0], [6, 5], [-1, -1], [PHP_INT_MIN, PHP_INT_MAX]] as [$de, $ate]) {
    $i = new vt_mrel_itr();
    echo '  ', var_export($m->msgs_per_day($de, $ate, ' ', $i->getHandle()), true), $i->last_error, $i->fetch(), ' ', rawurlencode($i->last_error);
    echo ' ', $m->msgs_per_hour($de, $ate, ' ', $i->getHandle()), $i->fetch(), $i->last_error, $m->msg_trace('Z', $de, $ate, $i->getHandle());
    echo $m->user_msgs('', '', $de, $ate, 'Z', 0, 0, $i->getHandle()), "\n";
}
// The answer tells whether there are rows, those of an earlier report included.
diz($m->msgs_per_day((string) DIA, DIA + 86399.0, ' ', $i->getHandle()), $m->msgs_per_day(5, 5, ' ', $i->getHandle()));
foreach ([['msgs_per_day', [1, 2, ' ']], ['msgs_per_day', [1, 2, [], 3]], ['msgs_per_hour', ['x', 2, ' ', 3]],
    ['user_msgs', ['', '', 1, 2, '', 0, 0, 'x']], ['msg_trace', ['A', 1, 2, 3, 4]]] as [$metodo, $args]) {
    try {
        diz($m->$metodo(...$args));
    } catch (Error $e) {
        echo get_class($e), ': ', $e->getMessage(), "\n";
    }
}
?>
--EXPECT--
  NULL0 Per%EDodo%20incorreto. 1100
  NULL0 Per%EDodo%20incorreto. 0000
  NULL0 Per%EDodo%20incorreto. 0000
  NULL0 Per%EDodo%20incorreto. 1100
  NULL0 Per%EDodo%20incorreto. 1100
1 1
ArgumentCountError: vt_mrel::msgs_per_day() expects exactly 4 arguments, 3 given
TypeError: vt_mrel::msgs_per_day(): Argument #3 ($users) must be of type string, array given
TypeError: vt_mrel::msgs_per_hour(): Argument #1 ($start) must be of type int, string given
TypeError: vt_mrel::user_msgs(): Argument #8 ($handle) must be of type int, string given
ArgumentCountError: vt_mrel::msg_trace() expects exactly 4 arguments, 5 given
