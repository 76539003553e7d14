--TEST--
Directories, periods, force mode and domains; wrong arguments
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$raiz = arvore(__FILE__);
limpa($raiz);
mkdir($raiz);
$m = new vt_mrel();
var_dump($m->getDataDir(), $m->getLogDir(), $m->getPeriods());
var_dump($m->setDataDir("$raiz/dat"), is_dir("$raiz/dat"), $m->getDataDir() === "$raiz/dat");
var_dump($m->setDataDir("$raiz/a/b"), $m->setDataDir(str_repeat('d', 129)), $m->setDataDir("$raiz/x\0y"));
var_dump($m->setLogDir(str_repeat('l', 128)), $m->setLogDir(str_repeat('l', 129)), $m->setLogDir("a\0b"));
var_dump($m->getDataDir() === "$raiz/dat", strlen($m->getLogDir()), file_exists("$raiz/x"));
var_dump($m->setPeriods(7), $m->getPeriods(), $m->setPeriods('8'), $m->getPeriods());
var_dump($m->setPeriods(PHP_INT_SIZE === 8 ? (1 << 32) + 9 : 9), $m->getPeriods());
// Ignored, but by a debug engine, which takes a method that does so for a mistake.
$a_mais = PHP_DEBUG ? [] : ['extra'];
var_dump($m->setForceMode(...$a_mais), $m->getPeriods(...$a_mais));
$dominios = 'alfa.test;beta.test';
var_dump($m->add_domain($dominios), $m->add_domain(''), $m->add_domain("a\0b"), $dominios);
foreach ([['setDataDir', []], ['setDataDir', [[]]], ['setLogDir', ['a', 'b']], ['setPeriods', ['x']],
    ['add_domain', [new stdClass()]], ['consolidate', []]] as [$metodo, $args]) {
    try {
        var_dump($m->$metodo(...$args));
    } catch (Error $e) {
        echo get_class($e), ': ', $e->getMessage(), "\n";
    }
}
?>
--CLEAN--
<?php
require __DIR__ . '/../inc/arvore.inc';
limpa(arvore(__FILE__));
?>
--EXPECT--
string(3) "DAT"
string(4) "LOGS"
int(0)
bool(true)
bool(true)
bool(true)
bool(false)
bool(false)
bool(false)
bool(true)
bool(false)
bool(false)
bool(true)
int(128)
bool(false)
bool(true)
int(7)
bool(true)
int(8)
bool(true)
int(9)
bool(true)
int(9)
bool(true)
bool(true)
bool(true)
string(19) "alfa.test;beta.test"
ArgumentCountError: vt_mrel::setDataDir() expects exactly 1 argument, 0 given
TypeError: vt_mrel::setDataDir(): Argument #1 ($dirpath) must be of type string, array given
ArgumentCountError: vt_mrel::setLogDir() expects exactly 1 argument, 2 given
TypeError: vt_mrel::setPeriods(): Argument #1 ($periods) must be of type int, string given
TypeError: vt_mrel::add_domain(): Argument #1 ($domain) must be of type string, stdClass given
ArgumentCountError: vt_mrel::consolidate() expects exactly 1 argument, 0 given
