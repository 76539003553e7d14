--TEST--
The module and the class as scripts and tools see them
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
diz(in_array('Vorna PHP admin reports functions', get_loaded_extensions(), true));
$modulo = new ReflectionExtension('Vorna PHP admin reports functions');
diz($modulo->getVersion(), count($modulo->getFunctions()));
$classe = new ReflectionClass('vt_mrel');
diz($classe->isFinal(), $classe->isCloneable(), $classe->getExtensionName());
foreach ($classe->getMethods() as $m) {
    echo $m->name, '(', implode(', ', array_map(fn($p) => $p->name, $m->getParameters())), ') ';
}
echo "\n";
$m = new vt_mrel();
$m->minha = 1;
foreach (['clone' => fn() => clone $m, 'serialize' => fn() => serialize($m),
    'unserialize' => fn() => unserialize('O:7:"vt_mrel":0:{}')] as $nome => $faz) {
    try {
        $faz();
        echo "$nome passed\n";
    } catch (Throwable $e) {
        echo get_class($e), ': ', $e->getMessage(), "\n";
    }
}
eval('class filha extends vt_mrel {}');
?>
--EXPECTF--
true
NULL 0
true false 'Vorna PHP admin reports functions'
__construct() getPontaraPath() setForceMode() getDataDir() setDataDir(dirpath) getLogDir() setLogDir(dirpath) getPeriods() setPeriods(periods) add_domain(domain) consolidate(lastConsolidFile) msgs_per_day(start, end, users, handle) user_msgs(destinatarios, remetentes, start, end, msg_id, min_kb, max_kb, handle) msgs_per_hour(start, end, user, handle) msg_trace(msg_id, start, end, handle) 
Error: Trying to clone an uncloneable object of class vt_mrel
Exception: Serialization of 'vt_mrel' is not allowed
Exception: Unserialization of 'vt_mrel' is not allowed

Fatal error: Class filha cannot extend final class vt_mrel in %s
