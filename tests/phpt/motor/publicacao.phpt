--TEST--
Script code that runs in the middle of a publish
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
error_reporting(E_ALL);
$raiz = arvore(__FILE__);
dia($raiz, "1 2 1 2 3 4 5 6 7 8\n", ['9:00:00 1 1 A INTERNO ana 1', '9:00:00 1 1 B INTERNO bia 2']);
$m = parser($raiz);

function novo(): vt_mrel_itr
{
    global $m;
    $i = new vt_mrel_itr();
    $m->user_msgs('', '', DIA, DIA + 86399, '', 0, 0, $i->getHandle());
    return $i;
}

class Ao_fim
{
    public function __construct(private Closure $faz) {}
    public function __destruct()
    {
        ($this->faz)();
    }
}

// The destructor of a value that is replaced calls back. All values of a row are those of one row.
$i = novo();
$i->recv = new Ao_fim(function () use ($i) { echo 'inside: ', $i->fetch(), " $i->msg_id $i->msg_sendername\n"; });
echo 'outside: ', $i->fetch(), " $i->msg_id $i->msg_sendername $i->msg_size\n";

$i = novo();
$i->recv = new Ao_fim(function () use ($i, $m) { $m->msg_trace('A', DIA, DIA + 86399, $i->getHandle()); });
echo 'another report inside: ', $i->fetch(), " $i->msg_id ", $i->fetch(), " $i->msg_id\n";

$i = novo();
$i->recv = new Ao_fim(function () use (&$i) { unset($i); $GLOBALS['i'] = null; gc_collect_cycles(); });
$i->sent = new Ao_fim(function () { echo "sent ended\n"; });
echo 'the last name of the iterator goes: ', $i->fetch(), "\n";
var_dump($i);

$i = novo();
$i->recv = new Ao_fim(function () use ($i) { unset($i->msg_id, $i->str_error); $i->nova = 1; $i->error = [1]; });
echo 'properties go inside: ', $i->fetch(), " $i->msg_id $i->error", "\n";

$i = novo();
$i->recv = new Ao_fim(fn() => throw new LogicException('from a destructor'));
$i->error = ['not written'];
try {
    $i->fetch();
} catch (LogicException $e) {
    echo $e->getMessage(), ' ', var_export($i->recv, true), ' ', is_array($i->error) ? 'kept' : 'written', "\n";
}
echo 'goes on: ', $i->fetch(), " $i->msg_id $i->error\n";

// References: plain ones follow, typed ones refuse what does not fit.
class Tipada
{
    public array $lista = [];
    public int $numero = 0;
    public ?string $texto = null;
}
$t = new Tipada();
$i = novo();
$i->msg_size = &$t->numero;
$i->msg_id = &$t->texto;
$r = &$i->msg_sendername;
echo $i->fetch(), " $t->numero $t->texto $r\n";
$i->msg_size = &$t->lista;
try {
    $i->fetch();
} catch (TypeError $e) {
    echo $e->getMessage(), ' ', count($t->lista), "\n";
}
unset($i->msg_size);
echo $i->fetch(), ' ', $i->fetch(), " $i->msg_size $t->numero $t->texto\n";

// Two names of one variable, and a property that refers to another of the same object.
$i = novo();
$i->recv = &$i->msg_size;
$i->usuario = &$i->msg_id;
echo $i->fetch(), " $i->recv $i->msg_size '$i->usuario' $i->msg_id\n";

// The constructor called again publishes again.
$i->recv = new Ao_fim(function () use ($i) { $i->fetch_recipient(); });
$i->__construct();
echo $i->recv, $i->msg_id, "\n";
$i->__construct();
echo $i->msg_id, ' ', $i->fetch(), $i->msg_id, "\n";
?>
--EXPECT--
outside: inside: 1 B bia
1 A ana 1
another report inside: 1 A 0 A
the last name of the iterator goes: sent ended
1
NULL
properties go inside: 1 A 0
from a destructor 0 kept
goes on: 1 B 0
1 1 A ana
Cannot assign int to reference held by property Tipada::$lista of type array 0
0 1 1 1 A
1 1 1 'A' A
1A
A 1B
