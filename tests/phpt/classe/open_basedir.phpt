--TEST--
open_basedir holds for every path at each use: those that a script gives, the defaults, and a limit tightened later
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$raiz = arvore(__FILE__);
dia($raiz, "1 2 1 2 3 4 5 6 7 8\n[1]\nana 1 1 1 1 1 1 1 1\n", ['9:00:00 1 1 A INTERNO ana 100']);
mkdir("$raiz/logs");
ini_set('open_basedir', "/usr:$raiz");
// Prints each report's answer; the warning is shortened to the method and the directory.
set_error_handler(function (int $tipo, string $texto) use ($raiz) {
    preg_match('~^vt_mrel::(\S+): open_basedir.*File\((.*)\) is~', $texto, $m);
    echo $m ? $m[1] . ' ' . str_replace($raiz, '@', $m[2]) : $texto, ', ';
    return true;
});
function pergunta(vt_mrel $m): void
{
    $i = new vt_mrel_itr();
    $h = $i->getHandle();
    $fim = DIA + 86399;
    diz($m->msgs_per_day(DIA, $fim, ' ', $h) . $m->msgs_per_hour(DIA, $fim, ' ', $h) . $m->msgs_per_hour(DIA, $fim, 'ana', $h)
        . $m->user_msgs('', 'ana', DIA, $fim, '', 0, 0, $h) . $m->msg_trace('A', DIA, $fim, $h) . (int) $i->fetch());
    diz($m->consolidate($GLOBALS['raiz'] . '/ultima'));
}
echo "given\n";
$m = new vt_mrel();
diz($m->setDataDir('/var/vt_fora'), $m->setLogDir('/var/log'), $m->setLogDir('/usr/share'), $m->consolidate('/var/vt_ultima'));
echo "defaults\n";
pergunta($m = new vt_mrel());
diz($m->setDataDir("$raiz/dat"), $m->consolidate("$raiz/ultima"));
echo "tightened\n";
$m = parser($raiz);
pergunta($m);
ini_set('open_basedir', '/usr');
pergunta($m);
?>
--CLEAN--
<?php
require __DIR__ . '/../inc/arvore.inc';
limpa(arvore(__FILE__));
?>
--EXPECT--
given
setDataDir() /var/vt_fora, setLogDir() /var/log, consolidate() /var/vt_ultima, false false true false
defaults
msgs_per_day() DAT, msgs_per_hour() DAT, msgs_per_hour() DAT, user_msgs() DAT, msg_trace() DAT, '000000'
consolidate() DAT, false
consolidate() LOGS, true false
tightened
'111110'
false
msgs_per_day() @/dat, msgs_per_hour() @/dat, msgs_per_hour() @/dat, user_msgs() @/dat, msg_trace() @/dat, '000000'
consolidate() @/ultima, false
