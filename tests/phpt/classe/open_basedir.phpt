--TEST--
open_basedir holds for every path that a script gives
--INI--
open_basedir=/usr
--FILE--
<?php
$m = new vt_mrel();
var_dump($m->setDataDir('/tmp/vt_fora'), $m->setLogDir('/var/log'), $m->setLogDir('/usr/share'));
var_dump($m->consolidate('/tmp/vt_fora_ultima'));
?>
--EXPECTF--
Warning: vt_mrel::setDataDir(): open_basedir restriction in effect. File(/tmp/vt_fora) is not within the allowed path(s): (/usr) in %s on line %d

Warning: vt_mrel::setLogDir(): open_basedir restriction in effect. File(/var/log) is not within the allowed path(s): (/usr) in %s on line %d
bool(false)
bool(false)
bool(true)

Warning: vt_mrel::consolidate(): open_basedir restriction in effect. File(/tmp/vt_fora_ultima) is not within the allowed path(s): (/usr) in %s on line %d
bool(false)
