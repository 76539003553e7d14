--TEST--
The five questions: answers, rows, walks that begin again, two iterators on one parser
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$raiz = arvore(__FILE__);
dia($raiz, "1 2 1 2 3 4 5 6 7 10\n[60]\nana@aqui 1 2 3 4 5 6 7 8\nrui 1 1 1 1 1 1 1 1\n", [
    '9:00:00 1 1 A INTERNO ana@aqui 2048', '9:40:00 2 9 A eva@fora.test', '10:00:00 2 2 A rui@fora.test',
    '10:02:00 2 10 A 550 não', '10:03:00 2 4 A', '11:00:00 1 1 B POP eva 10', '11:00:00 1 2 B ana@aqui', '11:30:00 1 4 B']);
$m = parser($raiz);
$m->add_domain('aqui');
$fim = DIA + 86399;

// Fetches: the answer and the row, without what is 0 or "".
function anda(vt_mrel_itr $i, int $vezes, string $metodo = 'fetch'): void
{
    while ($vezes-- > 0) {
        $resposta = $i->$metodo();
        $linha = http_build_query(array_filter(get_object_vars($i)), '', ' ', PHP_QUERY_RFC3986);
        $resposta && !$linha || print("  $resposta $linha\n");
    }
}

$a = new vt_mrel_itr();
$b = new vt_mrel_itr();
echo 'totals ', $m->msgs_per_day(DIA, $fim, ' ', $a->getHandle()), "\n";
anda($a, 2);
$nome = 'rui' . str_repeat('i', 300);
echo 'users ', $m->msgs_per_day(DIA, $fim, "ana,ninguem,$nome", $b->getHandle());
for ($n = 0; $n < 4; ++$n) {
    echo ', ', $b->fetch(), ' ', $b->usuario === substr($nome, 0, 199) ? 'cut' : $b->usuario, ' ', $b->fetch_msgs_per_day(), " $b->att_blocked";
}
echo "\nthe other begins again ", $a->fetch(), "\n";
foreach (['ana' => $a, '' => new vt_mrel_itr()] as $quem => $i) {
    echo 'totals, not users ', $m->msgs_per_day(DIA, $fim, $quem, $i->getHandle()), $i->fetch(), $i->usuario, $i->msgs_int, "\n";
}
$i = new vt_mrel_itr();
echo 'trace ', $m->msg_trace('A', DIA, $fim, $i->getHandle()), $m->msg_trace('a', DIA, $fim, $b->getHandle()), "\n";
anda($i, 1);
diz($i->fatal_error, $b->fatal_error);
anda($i, 3, 'fetch_recipient');
foreach ([' ', 'ana'] as $quem) {
    $i = new vt_mrel_itr();
    echo "hours of '$quem' ", $m->msgs_per_hour(DIA, $fim, $quem, $i->getHandle()), "\n";
    anda($i, 24);
}
foreach ([[' ', ' ', ''], ['', 'ana', ' '], ['ana', '', ' A '], ['', '', 'B'], ['', '', ' B '], ['x', 'x', '']] as [$para, $de, $id]) {
    $i = new vt_mrel_itr();
    echo "messages '$para' '$de' '$id' ", parser($raiz)->user_msgs($para, $de, DIA, $fim, $id, 0, 0, $i->getHandle());
    while ($i->fetch()) {
        echo ", $i->msg_id $i->msg_sendername $i->msg_size $i->msg_time $i->enviada $i->interna $i->error";
    }
    echo "\n";
}
$i = new vt_mrel_itr();
echo 'sizes ', $m->user_msgs('', '', DIA, $fim, '', 3, 0, $i->getHandle()), $m->user_msgs('', '', DIA, $fim, '', 2, 2, $i->getHandle()), "\n";
?>
--EXPECT--
totals 1
  1 att_blocked=4 error=3 spam=1 virus=2 msgs_int=5 msgs_ext=7 timestamp=1237075200 bytes_ext=10 bytes_int=6
  0 bytes_ext=10 bytes_int=6
users 1, 1 cut 0 0, 1 ninguem 0 0, 1 ana 1 8, 0  0 0
the other begins again 1
totals, not users 115
totals, not users 115
trace 10
  0 msg_size=2048 msg_time=1237107600 msg_end_time=1237111380 fatal_error=1 interna=1 msg_id=A msg_sendername=ana%40aqui str_error=550%20n%C3%A3o%20
true false
  1 error=1 msg_size=2048 msg_time=1237107600 msg_end_time=1237111380 recipient_time=1237110000 fatal_error=1 interna=1 msg_id=A msg_sendername=ana%40aqui recipient_name=eva%40fora.test recipient_status_msg=Destinat%E1rio%20eva%40fora.test%20inv%E1lido. str_error=550%20n%C3%A3o%20
  1 msg_size=2048 msg_time=1237107600 msg_end_time=1237111380 recipient_time=1237111200 fatal_error=1 interna=1 msg_id=A msg_sendername=ana%40aqui recipient_name=rui%40fora.test recipient_status_msg=Mensagem%20entregue. str_error=550%20n%C3%A3o%20
  0 msg_size=2048 msg_time=1237107600 msg_end_time=1237111380 recipient_time=1237111200 fatal_error=1 interna=1 msg_id=A msg_sendername=ana%40aqui recipient_name=rui%40fora.test recipient_status_msg=Mensagem%20entregue. str_error=550%20n%C3%A3o%20
hours of ' ' 1
  1 timestamp=1237111200
  1 error=1 timestamp=1237114800
  1 msgs_ext=1 bytes_ext=10
hours of 'ana' 1
  1 att_blocked=8 error=6 spam=7 virus=5 msgs_int=3 msgs_ext=1 timestamp=60 bytes_ext=2 bytes_int=4
messages ' ' ' ' '' 1, A ana@aqui 2048 1237107600 1 1 1, B eva 10 1237114800 1 0 0
messages '' 'ana' ' ' 1, A ana@aqui 2048 1237107600 1 1 1
messages 'ana' '' ' A ' 1, B eva 10 1237114800 0 0 0
messages '' '' 'B' 1, B eva 10 1237114800 0 0 0
messages '' '' ' B ' 1, A ana@aqui 2048 1237107600 1 1 1, B eva 10 1237114800 1 0 0
messages 'x' 'x' '' 0
sizes 01
