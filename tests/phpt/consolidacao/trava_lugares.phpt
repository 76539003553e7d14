--TEST--
What may stand in the lock's place, a cleaned /tmp, and six processes at once, in a root of its own
--CONFLICTS--
lock
--FILE--
<?php
require __DIR__ . '/../inc/arvore.inc';
$raiz = arvore(__FILE__);
raiz_propria($raiz);
isolado($raiz, <<<'CODIGO'
const TRAVA = '/tmp/vtmrel.lck';

// A process that consolidates a tree of its own at each line it is sent and tells how many files
// came out; it keeps what it holds until it ends.
function processo(): array
{
    static $numero = 0;
    $raiz = '/tmp/arvore' . ++$numero;
    cria($raiz, mensagem('A'));
    $p = outro_php('$raiz = "' . $raiz . '"; while (fgets(STDIN)) { limpa("$raiz/dat"); limpa("$raiz/ultima");
        parser($raiz)->consolidate("$raiz/ultima"); echo count(arquivos($raiz)), "\n"; }', $canos);
    return [$p, $canos];
}

function consolida(array ...$processos): string
{
    array_map(fn($p) => fwrite($p[1][0], "vai\n"), $processos);
    return implode(array_map(fn($p) => trim(fgets($p[1][1])), $processos));
}

function termina(array ...$processos): void
{
    foreach ($processos as [$p, $canos]) {
        fclose($canos[0]);
        proc_close($p);
    }
}

file_put_contents('/tmp/alheio', 'alheio');
foreach ([
    'nothing' => fn() => null,
    'a file of another size and mode' => fn() => file_put_contents(TRAVA, 'texto') && chmod(TRAVA, 0644),
    'a link' => fn() => symlink('/tmp/alheio', TRAVA),
    'a link to nothing' => fn() => symlink('/tmp/nada', TRAVA),
    'a FIFO' => fn() => exec('mkfifo ' . TRAVA),
    'a directory' => fn() => mkdir(TRAVA),
] as $caso => $faz) {
    limpa(TRAVA);
    $faz();
    $tipo = @filetype(TRAVA);
    $p = processo();
    echo "$caso: ", consolida($p), ' ', @filetype(TRAVA) === ($tipo ?: 'file') ? 'stays' : 'changed', "\n";
    termina($p);
}
diz(file_get_contents('/tmp/alheio'), file_exists('/tmp/nada'));

// A cleaner took the file away while it was held: the next one makes it anew, and the first one
// then asks for that.
limpa(TRAVA);
$a = processo();
$b = processo();
echo 'first ', consolida($a), ', second ', consolida($b);
unlink(TRAVA);
echo '; cleaned: second ', consolida($b), ', first ', consolida($a);
termina($b);
echo ', first again ', consolida($a), "\n";
termina($a);

for ($vez = 0; $vez < 3; ++$vez) {
    limpa(TRAVA);
    $seis = array_map(fn() => processo(), range(1, 6));
    $feitos = consolida(...$seis);
    echo 'six at once: ', strlen($feitos), ' answers, ', substr_count($feitos, '2'), ' result, ', substr_count($feitos, '0'), " without\n";
    termina(...$seis);
}
CODIGO);
?>
--EXPECT--
nothing: 2 stays
a file of another size and mode: 2 stays
a link: 0 stays
a link to nothing: 0 stays
a FIFO: 0 stays
a directory: 0 stays
'alheio' false
first 2, second 0; cleaned: second 2, first 0, first again 2
six at once: 6 answers, 1 result, 5 without
six at once: 6 answers, 1 result, 5 without
six at once: 6 answers, 1 result, 5 without
