--TEST--
The iterator's methods and its 27 properties, also after scripts changed them
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
error_reporting(E_ALL);
$c = new ReflectionClass('vt_mrel_itr');
foreach ($c->getMethods() as $m) {
    echo $m->name, '(', count($m->getParameters()), ') ';
}
diz($c->isFinal(), $c->isCloneable());
// Arguments are not read; an engine built for debugging ends the script when there are any.
$a_mais = PHP_DEBUG ? [] : ['not', 'read'];
$i = new vt_mrel_itr(...$a_mais);
echo count(get_object_vars($i)), ':';
foreach ($i as $nome => $valor) {
    echo ' ', $nome, '=', var_export($valor, true);
}
echo "\n";
diz(get_object_vars($i) === $c->getDefaultProperties(), is_int($i->getHandle(...$a_mais)), $i->fetch(...$a_mais));

// Scripts may add properties, and change and remove those that are published.
$antes = get_object_vars($i);
$i->minha = 'minha';
$i->recv = 'texto';
$i->error = null;
$i->usuario = 5;
unset($i->sent, $i->str_error, $i->fatal_error);
$referencia = &$i->virus;
$referencia = 'referida';
diz($i->fetch(), $i->minha, $referencia);
unset($i->minha);
ksort($antes);
$depois = get_object_vars($i);
ksort($depois);
diz($depois === $antes);

// What a script makes of it is a copy of the row, not a way into it.
$copia = (array) $i;
$copia['recv'] = 7;
diz($i->recv, json_encode($i) === json_encode($antes), strlen(var_export($i, true)) > 600);
foreach ($i as $nome => &$valor) {
    $i->fetch();
    $valor = [$nome];
}
unset($valor);
$i->fetch();
diz(array_filter(get_object_vars($i), 'is_array'));
foreach ([fn() => clone $i, fn() => serialize($i), fn() => unserialize('O:11:"vt_mrel_itr":0:{}'),
    fn() => unserialize('C:11:"vt_mrel_itr":0:{}')] as $faz) {
    try {
        diz($faz());
    } catch (Throwable $e) {
        echo get_class($e), ': ', $e->getMessage(), "\n";
    }
}
eval('class filha extends vt_mrel_itr {}');
?>
--EXPECTF--
__construct(0) getHandle(0) fetch(0) fetch_recipient(0) fetch_msgs_per_day(0) true false
27: recv=0 recv_bytes=0 sent=0 sent_bytes=0 att_blocked=0 error=0 spam=0 virus=0 msgs_int=0 msgs_ext=0 timestamp=0 msg_size=0 msg_time=0 msg_end_time=0 enviada=0 recipient_time=0 bytes_ext=0 bytes_int=0 fatal_error=false interna=0 usuario='' last_error='' msg_id='' msg_sendername='' recipient_name='' recipient_status_msg='' str_error=''
true true 0
0 'minha' 0
true
0 false true
array ()
Error: Trying to clone an uncloneable object of class vt_mrel_itr
Exception: Serialization of 'vt_mrel_itr' is not allowed
Exception: Unserialization of 'vt_mrel_itr' is not allowed
Exception: Unserialization of 'vt_mrel_itr' is not allowed

Fatal error: Class filha cannot extend final class vt_mrel_itr in %s
