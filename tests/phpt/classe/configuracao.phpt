--TEST--
Directories, periods, force mode and domains; wrong arguments
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$raiz = arvore(__FILE__);
mkdir($raiz);
$m = new vt_mrel();
diz($m->getDataDir(), $m->getLogDir(), $m->getPeriods());
diz($m->setDataDir("$raiz/dat"), is_dir("$raiz/dat"), $m->getDataDir() === "$raiz/dat");
diz($m->setDataDir("$raiz/a/b"), $m->setDataDir(str_repeat('d', 129)), $m->setDataDir("$raiz/x\0y"));
diz($m->setLogDir(str_repeat('l', 128)), $m->setLogDir(str_repeat('l', 129)), $m->setLogDir("a\0b"));
diz($m->getDataDir() === "$raiz/dat", strlen($m->getLogDir()), file_exists("$raiz/x"));
diz($m->setPeriods(7), $m->getPeriods(), $m->setPeriods('8'), $m->getPeriods());
diz($m->setPeriods(PHP_INT_SIZE === 8 ? (1 << 32) + 9 : 9), $m->getPeriods());
// Ignored, but by a debug engine, which takes a method that does so for a mistake.
$a_mais = PHP_DEBUG ? [] : ['extra'];
diz($m->setForceMode(...$a_mais), $m->getPeriods(...$a_mais));
$dominios = 'alfa.test;beta.test';
diz($m->add_domain($dominios), $m->add_domain(''), $m->add_domain("a\0b"), $dominios);
foreach ([['setDataDir', []], ['setDataDir', [[]]], ['setLogDir', ['a', 'b']], ['setPeriods', ['x']],
    ['add_domain', [new stdClass()]], ['consolidate', []]] as [$metodo, $args]) {
    try {
        diz($m->$metodo(...$args));
    } catch (Error $e) {
        echo get_class($e), ': ', $e->getMessage(), "\n";
    }
}
?>
--EXPECT--
'DAT' 'LOGS' 0
true true true
false false false
true false false
true 128 false
true 7 true 8
true 9
true 9
true true true 'alfa.test;beta.test'
ArgumentCountError: vt_mrel::setDataDir() expects exactly 1 argument, 0 given
TypeError: vt_mrel::setDataDir(): Argument #1 ($dirpath) must be of type string, array given
ArgumentCountError: vt_mrel::setLogDir() expects exactly 1 argument, 2 given
TypeError: vt_mrel::setPeriods(): Argument #1 ($periods) must be of type int, string given
TypeError: vt_mrel::add_domain(): Argument #1 ($domain) must be of type string, stdClass given
ArgumentCountError: vt_mrel::consolidate() expects exactly 1 argument, 0 given
