<?php
// Consolidates the logs under DIRETORIO/logs into DIRETORIO/dat and shows what came of it.
//
//     php -n -d extension=PATH demo/demo.php DIRETORIO
declare(strict_types=1);

require __DIR__ . '/tabela.php';
require __DIR__ . '/relatorios.php';

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

function mostra_totais(Relatorios $r): void
{
    $colunas = ['msgs_int', 'bytes_int', 'msgs_ext', 'bytes_ext', 'spam', 'virus', 'error',
        'att_blocked'];
    $formata = fn(string $rotulo, array $totais) => [$rotulo, ...array_map(
        fn(string $c) => str_starts_with($c, 'bytes') ? tamanho($totais[$c]) : numero($totais[$c]),
        $colunas
    )];
    $celulas = [];
    $soma = array_fill_keys($colunas, 0);
    foreach ($r->totais() as $dia) {
        $celulas[] = $formata($r->data($dia['timestamp']), $dia);
        foreach ($colunas as $c) {
            $soma[$c] += $dia[$c];
        }
    }
    array_push($celulas, null, $formata('Total', $soma));
    echo tabela('<>>>>>>>>', ['Dia', 'Internas', 'Tamanho', 'Externas', 'Tamanho', 'Spam', 'Vírus',
        'Com erro', 'Anexos'], $celulas);
    echo "\n  Internas e externas: mensagens cujo remetente é ou não é usuário local.\n";
}

// The local sender with the most messages.
function quem_mais_enviou(Relatorios $r): string
{
    $internas = array_filter($r->mensagens(), fn(array $m) => $m['interna'] === 1);
    $remetentes = array_count_values(array_column($internas, 'msg_sendername'));
    arsort($remetentes);
    return (string) array_key_first($remetentes);
}

function mostra_dias(Relatorios $r, string $usuario): void
{
    $celulas = [];
    foreach ($r->dias([$usuario])[$usuario] as $dia) {
        // Of a user, "ext" is what he sent, "int" what he received; spam and error are crossed.
        $celulas[] = [$r->data($dia['timestamp']), numero($dia['msgs_ext']),
            tamanho($dia['bytes_ext']), numero($dia['msgs_int']), tamanho($dia['bytes_int']),
            numero($dia['error']), numero($dia['virus']), numero($dia['spam'])];
    }
    echo tabela('<>>>>>>>', ['Dia', 'Enviadas', 'Tamanho', 'Recebidas', 'Tamanho', 'Spam', 'Vírus',
        'Erros'], $celulas);
}

function mostra_horas(Relatorios $r): void
{
    $horas = $r->horas();
    $movimento = array_map(fn(array $h) => $h['msgs_int'] + $h['msgs_ext'], $horas);
    $celulas = [];
    foreach ($horas as $i => $h) {
        $celulas[] = [sprintf('%02dh', $i), numero($h['msgs_int']), numero($h['msgs_ext']),
            numero($h['spam']), numero($h['virus']), numero($h['error']),
            barra($movimento[$i], max(1, ...$movimento), 40)];
    }
    echo tabela('<>>>>><', ['Hora', 'Internas', 'Externas', 'Spam', 'Vírus', 'Com erro',
        'Internas e externas'], $celulas);
    echo "\n  Spam e vírus contam no veredito, e outra vez quando a mensagem termina.\n";
}

function estado(array $m): string
{
    return $m['virus'] ? 'vírus' : ($m['error'] || $m['fatal_error'] ? 'com erro' : 'sem erro');
}

function mostra_mensagens(Relatorios $r, array $mensagens): void
{
    $celulas = [];
    foreach ($mensagens as $m) {
        $celulas[] = [$r->quando($m['msg_time']), $m['enviada'] ? 'enviada' : 'recebida',
            utf8($m['msg_sendername']), tamanho($m['msg_size']), estado($m), utf8($m['msg_id'])];
    }
    echo tabela('<<<><<', ['Quando', 'Sentido', 'Remetente', 'Tamanho', 'Estado', 'Mensagem'], $celulas);
}

// Of these messages, the history of the latest one that a recipient refused and others accepted; of
// the latest one if there is none among them.
function rastro_a_mostrar(Relatorios $r, array $mensagens): array
{
    $com_erro = array_filter($mensagens, fn(array $m) => $m['error'] === 1);
    foreach (array_slice(array_reverse($com_erro), 0, 40) as $m) {
        $rastro = $r->rastro($m['msg_id']);
        $recusas = array_column($rastro['destinatarios'], 'error');
        if (in_array(1, $recusas, true) && in_array(0, $recusas, true)) {
            return $rastro;
        }
    }
    return $r->rastro(end($mensagens)['msg_id']);
}

function mostra_rastro(Relatorios $r, array $m): void
{
    $encerrada = $m['msg_end_time'] ? $r->quando($m['msg_end_time']) : 'ainda não';
    $campos = ['Mensagem' => utf8($m['msg_id']), 'Remetente' => utf8($m['msg_sendername']),
        'Tamanho' => tamanho($m['msg_size']), 'Submetida' => $r->quando($m['msg_time']),
        'Encerrada' => $encerrada, 'Estado' => estado($m)];
    foreach ($campos as $rotulo => $valor) {
        printf("  %-9s  %s\n", $rotulo, $valor);
    }
    foreach (array_filter(explode("\n", utf8($m['str_error']))) as $frase) {
        echo "  $frase\n";
    }
    echo "\n";
    $celulas = [];
    foreach ($m['destinatarios'] as $d) {
        $celulas[] = [utf8($d['recipient_name']), $r->quando($d['recipient_time']),
            utf8($d['recipient_status_msg'])];
    }
    echo tabela('<<<', ['Destinatário', 'Quando', 'O que aconteceu'], $celulas);
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
$relatorios = Relatorios::de("$raiz/dat")
    ?? para('A consolidação não escreveu nada. Outro processo consolida agora?');
echo 'pronto em ' . numero($segundos, 2) . ' s (' . numero($linhas / $segundos)
    . " linhas por segundo).\n";

titulo('3. O que foi escrito: por dia, os eventos e a estatística');
mostra_arquivos($raiz, [...glob("$raiz/dat/rels_*/*.txt"), "$raiz/ultima_consolidacao"]);

titulo('4. Totais por dia');
mostra_totais($relatorios);

$usuario = quem_mais_enviou($relatorios);
titulo('5. Dia a dia de quem mais enviou: ' . utf8($usuario));
mostra_dias($relatorios, $usuario);

titulo('6. Hora a hora, os três dias juntos');
mostra_horas($relatorios);

$mensagens = $relatorios->mensagens($usuario, $usuario) ?: para('Nenhuma mensagem.');
usort($mensagens, fn(array $a, array $b) => $a['msg_time'] <=> $b['msg_time']);
titulo('7. As dez últimas mensagens de ' . utf8($usuario));
mostra_mensagens($relatorios, array_slice($mensagens, -10));

titulo('8. A história de uma mensagem');
mostra_rastro($relatorios, rastro_a_mostrar($relatorios, $mensagens));

echo "\nTudo ficou em $raiz.\n";
