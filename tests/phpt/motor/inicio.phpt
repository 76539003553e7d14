--TEST--
Without memory for its classes the module does not start, and the engine says so
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$raiz = arvore(__FILE__);
mkdir($raiz);
// Refuses one allocation of the module's own, counted from its loading on. The engine loads modules so
// that they see the C library first; here they see what was preloaded.
file_put_contents("$raiz/falha.c", <<<'C'
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdlib.h>
#include <string.h>
void *__libc_malloc(size_t);
static int restam;
static int nosso(const void *de) {
    Dl_info i;
    return dladdr(de, &i) && (strstr(i.dli_fname, "vt_mrel.so") || strstr(i.dli_fname, "libstdc++"));
}
void *malloc(size_t n) {
    return restam > 0 && nosso(__builtin_return_address(0)) && --restam == 0 ? NULL : __libc_malloc(n);
}
void *dlopen(const char *nome, int modo) {
    void *(*real)(const char *, int) = (void *(*)(const char *, int))dlsym(RTLD_NEXT, "dlopen");
    void *modulo = real(nome, modo & ~RTLD_DEEPBIND);
    if (nome && strstr(nome, "vt_mrel.so")) restam = atoi(getenv("FALHA"));
    return modulo;
}
C);
passthru("cc -shared -fPIC -o $raiz/falha.so $raiz/falha.c -ldl");
$php = [PHP_BINARY, '-n', '-d', 'extension=' . extensao(), '-r', 'echo class_exists("vt_mrel_itr") ? "loaded" : "absent";'];
for ($n = 1, $recusas = 0; $n < 50; ++$n) {
    $p = proc_open($php, [1 => ['pipe', 'w'], 2 => ['redirect', 1]], $canos, null,
        ['LD_PRELOAD' => "$raiz/falha.so", 'FALHA' => $n] + getenv());
    $dito = stream_get_contents($canos[1]);
    $fim = proc_close($p);
    if ($dito === 'loaded' && $fim === 0) {
        break;
    }
    $recusas += strpos($dito, 'Unable to start') !== false && $fim === 254;
}
echo $recusas > 0 && $recusas === $n - 1 ? "refused in order, then loaded\n" : "allocation $n: $fim $dito\n";
?>
--EXPECT--
refused in order, then loaded
