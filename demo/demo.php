<?php
// Consolidates the logs under DIRETORIO/logs into DIRETORIO/dat and shows what came of it.
//
//     php -n -d extension=PATH demo/demo.php DIRETORIO
declare(strict_types=1);

require __DIR__ . '/tabela.php';
require __DIR__ . '/estatistica.php';

function titulo(string $texto): void
{
    echo "\n$texto\n\n";
}

function para(string $motivo): never
{
    fwrite(STDERR, "\n$motivo\n");
    exit(1);
}

function conta_linhas(string $path): int
{
    $linhas = 0;
    for ($f = fopen($path, 'rb'); ($bloco = fread($f, 1 << 20)) !== '' && $bloco !== false;) {
        $linhas += substr_count($bloco, "\n");
    }
    return $linhas;
}

// A table of files, with their lines and sizes; answers the sum of lines.
function mostra_arquivos(string $raiz, array $paths): int
{
    $celulas = [];
    $total = [0, 0];
    foreach ($paths as $path) {
        $total[0] += $n = conta_linhas($path);
        $total[1] += $bytes = filesize($path);
        $celulas[] = [substr($path, strlen($raiz) + 1), numero($n), tamanho($bytes)];
    }
    array_push($celulas, null, ['Total', numero($total[0]), tamanho($total[1])]);
    echo tabela('<>>', ['Arquivo', 'Linhas', 'Tamanho'], $celulas);
    return $total[0];
}

function mostra_totais(array $dias): void
{
    $colunas = ['internas', 'bytes_internas', 'externas', 'bytes_externas', 'spam', 'virus', 'erro',
        'anexos'];
    $celulas = [];
    $soma = array_fill_keys($colunas, 0);
    $formata = fn(string $rotulo, array $totais) => [$rotulo, ...array_map(
        fn(string $c) => str_starts_with($c, 'bytes') ? tamanho($totais[$c]) : numero($totais[$c]),
        $colunas
    )];
    foreach ($dias as $data => $path) {
        $totais = le_totais($path);
        foreach ($colunas as $c) {
            $soma[$c] += $totais[$c];
        }
        $celulas[] = $formata(implode('/', array_reverse(explode('-', $data))), $totais);
    }
    array_push($celulas, null, $formata('Total', $soma));
    echo tabela('<>>>>>>>>', ['Dia', 'Internas', 'Tamanho', 'Externas', 'Tamanho', 'Spam', 'Vírus',
        'Com erro', 'Anexos'], $celulas);
    echo "\n  Internas e externas: mensagens cujo remetente é ou não é usuário local.\n";
}

function mostra_usuarios(array $dias, int $quantos): void
{
    $usuarios = [];
    foreach ($dias as $path) {
        soma_usuarios($path, $usuarios);
    }
    $movimento = fn(array $u) => $u['enviadas'] + $u['recebidas'];
    uasort($usuarios, fn(array $a, array $b) => $movimento($b) <=> $movimento($a));
    $celulas = [];
    foreach (array_slice($usuarios, 0, $quantos) as $nome => $u) {
        $celulas[] = [(string) $nome, numero($u['enviadas']), tamanho($u['bytes_enviados']),
            numero($u['recebidas']), tamanho($u['bytes_recebidos']), numero($u['spam']),
            numero($u['erro'])];
    }
    echo tabela('<>>>>>>', ['Usuário', 'Enviadas', 'Tamanho', 'Recebidas', 'Tamanho', 'Spam',
        'Erros'], $celulas);
    echo "\n  " . numero(count($usuarios)) . " usuários e correspondentes apareceram no período.\n";
}

$raiz = rtrim($argv[1] ?? para('demo.php DIRETORIO'), '/');
class_exists('vt_mrel', false) || para('A extensão não está carregada.');
$logs = glob("$raiz/logs/MAIL_DISPATCHER.LOG*") ?: para("Não há logs em $raiz/logs.");
sort($logs);
$logs[] = array_shift($logs);  // the live file holds the last lines

echo "Relatórios de correio: demonstração\n";
titulo('1. Os logs do despachante');
$linhas = mostra_arquivos($raiz, $logs);

titulo('2. A consolidação');
echo '  Lendo ' . numero($linhas) . ' linhas... ';
$mrel = new vt_mrel();
if (!$mrel->setLogDir("$raiz/logs") || !$mrel->setDataDir("$raiz/dat")) {
    para("Diretório recusado: $raiz");
}
$inicio = hrtime(true);
$mrel->consolidate("$raiz/ultima_consolidacao");
$segundos = (hrtime(true) - $inicio) / 1e9;
$dias = dias("$raiz/dat");
$dias || para('A consolidação não escreveu nada. Outro processo consolida agora?');
echo 'pronto em ' . numero($segundos, 2) . ' s (' . numero($linhas / $segundos)
    . " linhas por segundo).\n";

titulo('3. O que foi escrito: por dia, os eventos e a estatística');
mostra_arquivos($raiz, [...glob("$raiz/dat/rels_*/*.txt"), "$raiz/ultima_consolidacao"]);

titulo('4. Totais por dia');
mostra_totais($dias);

titulo('5. Os usuários mais ativos do período');
mostra_usuarios($dias, 10);

echo "\nTudo ficou em $raiz.\n";
