--TEST--
Two parsers in one script consolidate their own logs; consolidate always answers false
--CONFLICTS--
lock
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$raiz = arvore(__FILE__);
cria("$raiz/1", [...mensagem('A'), 'MAILQ OK Msg B para ze']);
cria("$raiz/2", mensagem('C', 'bia'), 'Thu Oct  1', '2026');
$m1 = parser("$raiz/1");
$m2 = parser("$raiz/2");
diz($m1->consolidate("$raiz/1/ultima"), $m2->consolidate("$raiz/2/ultima"));
foreach ([1, 2] as $n) {
    diz(...arquivos("$raiz/$n"));
    echo trim(file_get_contents("$raiz/$n/ultima")), "\n";
}
echo file_get_contents("$raiz/1/dat/rels_03-09/compact_mail_15.txt");
echo implode(array_slice(file("$raiz/2/dat/rels_10-26/mail_stat_01.txt"), 0, 5));
diz($m1->consolidate("$raiz/nao/ha"), $m1->consolidate("a\0b"));
?>
--EXPECTF--
false false
'rels_03-09/compact_mail_15.txt' 'rels_03-09/mail_stat_15.txt'
1 Sun Mar 15 00:00:00 2009

B 0 N N N N 0 0 (null)
'rels_10-26/compact_mail_01.txt' 'rels_10-26/mail_stat_01.txt'
1 Thu Oct  1 00:00:00 2026
49bc4500 1 1 A INTERNO ana 100
49bc453c 2 7 A
49bc4578 2 2 A rui@fora.test
49bc45b4 2 4 A
49bc45f0 1 2 B ze
1790812800 1790816399 0 0 0 0 1 100 0 0
[1790812800]
rui@fora.test 0 0 1 100 0 0 0 0
bia 1 100 0 0 0 0 0 0
[1790816400]
%s/vt_consolida/nao/ha: No such file or directory
false false
