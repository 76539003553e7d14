--TEST--
The lock: another process holds it until it ends, the own process gets it again and keeps it
--CONFLICTS--
lock
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$raiz = arvore(__FILE__);
cria($raiz, mensagem('A'));
$consolida = 'parser(' . var_export($raiz, true) . ')->consolidate("' . $raiz . '/ultima"); echo "done\n"; fgets(STDIN);';

// Another process consolidated and still lives: nothing happens here.
$outro = outro_php($consolida, $canos);
echo 'other: ', fgets($canos[1]);
limpa("$raiz/dat");
parser($raiz)->consolidate("$raiz/ultima2");
echo 'held by the other: ', count(arquivos($raiz)), " files\n";
fclose($canos[0]);
proc_close($outro);

// It has ended: now the lock is ours, again and again, also when the object is gone; by the same
// descriptor, since to close any of the file would let go of it.
$abertos = fn() => array_filter(glob('/proc/self/fd/*'), fn($fd) => @readlink($fd) === '/tmp/vtmrel.lck');
for ($i = 1; $i <= 2; ++$i) {
    limpa("$raiz/dat");
    limpa("$raiz/ultima");
    parser($raiz)->consolidate("$raiz/ultima");
    $antes = $meus ?? [];
    $meus = $abertos();
    echo 'ours: ', count(arquivos($raiz)), ' files', $meus === $antes ? ', the same descriptor' : '', "\n";
}
limpa("$raiz/dat");
$outro = outro_php($consolida, $canos);
echo 'other: ', fgets($canos[1]);
echo 'held by us: ', count(arquivos($raiz)), " files\n";
fclose($canos[0]);
proc_close($outro);
printf("mode %o\n", fileperms('/tmp/vtmrel.lck') & 0777);
?>
--EXPECT--
other: done
held by the other: 0 files
ours: 2 files
ours: 2 files, the same descriptor
other: done
held by us: 0 files
mode 600
