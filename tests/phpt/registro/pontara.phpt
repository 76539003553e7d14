--TEST--
getPontaraPath over a registry tree of its own, in a root of its own
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$raiz = arvore(__FILE__);
raiz_propria($raiz);
$chave = "$raiz/etc/regdb/HKEY_LOCAL_MACHINE/Velto Norim Security/cfg5";
$valores = fn(string $nome, string $valor) => mkdir($chave, 0777, true) && file_put_contents("$chave/Values.xml",
    "<?xml version=\"1.0\"?>\n<regvaluestore>\n  <string name=\"Outro\">x</string><string name=\"$nome\">$valor</string></regvaluestore>");
$longo = '/opt/' . str_repeat('0123456789', 20);
foreach ([
    'no registry' => fn() => null,
    'no key' => fn() => mkdir(dirname($chave), 0777, true),
    'a file instead of the key' => fn() => mkdir(dirname($chave), 0777, true) && touch($chave),
    'no values' => fn() => mkdir($chave, 0777, true),
    'another value' => fn() => $valores('path', '/opt/outro'),
    'path' => fn() => $valores('Path', '/opt/norim &amp; cia'),
    '200 bytes' => fn() => $valores('Path', substr($longo, 0, 200)),
    '127 bytes' => fn() => $valores('Path', substr($longo, 0, 127)),
] as $caso => $faz) {
    limpa("$raiz/etc");
    mkdir("$raiz/etc");
    $faz();
    $antes = shell_exec('find ' . escapeshellarg($raiz));
    echo "$caso: ";
    isolado($raiz, '$m = new vt_mrel(); $path = $m->getPontaraPath(); diz($path, $m->getPontaraPath() === $path);');
    if (shell_exec('find ' . escapeshellarg($raiz)) !== $antes) {
        echo "the tree has changed\n";
    }
}
?>
--EXPECT--
no registry: '' true
no key: '' true
a file instead of the key: '' true
no values: '' true
another value: '' true
path: '/opt/norim & cia' true
200 bytes: '/opt/01234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901' true
127 bytes: '/opt/01234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901' true
