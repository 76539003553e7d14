--TEST--
getPontaraPath over a registry tree of its own, in a private mount namespace
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$chave = '/etc/regdb/HKEY_LOCAL_MACHINE/Velto Norim Security/cfg5';
$valores = fn(string $nome, string $valor) => "mkdir -p '$chave'; printf '%s' '<?xml version=\"1.0\"?>\n<regvaluestore>\n"
    . "  <string name=\"Outro\">x</string><string name=\"$nome\">$valor</string></regvaluestore>' > '$chave/Values.xml'";
$longo = '/opt/' . str_repeat('0123456789', 20);
foreach ([
    'no registry' => 'true',
    'no key' => "mkdir -p '" . dirname($chave) . "'",
    'a file instead of the key' => "mkdir -p '" . dirname($chave) . "'; : > '$chave'",
    'no values' => "mkdir -p '$chave'",
    'another value' => $valores('path', '/opt/outro'),
    'path' => $valores('Path', '/opt/norim &amp; cia'),
    '200 bytes' => $valores('Path', substr($longo, 0, 200)),
    '127 bytes' => $valores('Path', substr($longo, 0, 127)),
] as $caso => $linhas) {
    echo "$caso: ";
    isolado("mount -t tmpfs vt /etc; $linhas; find /etc | sort > /mnt/antes", '
        $m = new vt_mrel();
        $path = $m->getPontaraPath();
        var_dump($path, $m->getPontaraPath() === $path);
        passthru("find /etc | sort | cmp - /mnt/antes");');
}
?>
--EXPECT--
no registry: string(0) ""
bool(true)
no key: string(0) ""
bool(true)
a file instead of the key: string(0) ""
bool(true)
no values: string(0) ""
bool(true)
another value: string(0) ""
bool(true)
path: string(16) "/opt/norim & cia"
bool(true)
200 bytes: string(127) "/opt/01234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901"
bool(true)
127 bytes: string(127) "/opt/01234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901"
bool(true)
