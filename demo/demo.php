<?php
// Consolidates the logs under DIRETORIO/logs into DIRETORIO/dat and shows what came of it.
//
//     php -n -d extension=PATH demo/demo.php DIRETORIO
declare(strict_types=1);

require __DIR__ . '/tabela.php';
require __DIR__ . '/../src/autoload.php';

use Vorna\Mrel\{Dias, Estado, Falha, Filtro, Periodo, Relatorios, Relay, Rotulos};
use Vorna\Mrel\Linha\{DiaDeUsuario, Hora, Mensagem, Rastro, Totais};

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

// The columns of a report under their names: text to the left, what $alinhamento marks ">" to the right.
function mostra(string $tabela, string $alinhamento, array $colunas, array $celulas, array $mais = []): void
{
    $titulos = array_map(fn(string $c) => (new Rotulos())->coluna($tabela, $c), $colunas);
    echo tabela($alinhamento, [...$titulos, ...$mais], $celulas);
}

function data(string $dia): string
{
    return implode('/', array_reverse(explode('-', $dia)));
}

function quando(?DateTimeImmutable $t): string
{
    return $t?->format('d/m/Y H:i:s') ?? '';
}

function mostra_totais(array $dias): void
{
    $numeros = fn(Totais $t) => [$t->internas, $t->bytesInternas, $t->externas, $t->bytesExternas, $t->spam, $t->virus,
        $t->comErro];
    $formata = fn(string $rotulo, array $n) => [$rotulo, numero($n[0]), tamanho($n[1]), numero($n[2]), tamanho($n[3]),
        ...array_map(numero(...), array_slice($n, 4))];
    $celulas = array_map(fn(Totais $t) => $formata(data($t->dia), $numeros($t)), $dias);
    $somas = array_map(fn(int ...$coluna) => array_sum($coluna), ...array_map($numeros, $dias));
    array_push($celulas, null, $formata('Total', $somas));
    mostra('dias', '<>>>>>>>', Rotulos::colunas('dias'), $celulas);
    echo "\n  Internas e externas: mensagens cujo remetente é ou não é usuário local.\n";
}

function mostra_dias(iterable $dias): void
{
    $celulas = array_map(fn(DiaDeUsuario $d) => [data($d->dia), numero($d->enviadas), tamanho($d->bytesEnviados),
        numero($d->recebidas), tamanho($d->bytesRecebidos), numero($d->spam), numero($d->virus), numero($d->comErro)],
        iterator_to_array($dias));
    mostra('dias_usuario', '<>>>>>>>', array_slice(Rotulos::colunas('dias_usuario'), 1), $celulas);
}

function mostra_horas(array $horas): void
{
    $maior = max(1, ...array_map(fn(Hora $h) => $h->internas + $h->externas, $horas));
    $celulas = array_map(fn(Hora $h) => [sprintf('%02dh', $h->hora), numero($h->internas), numero($h->externas),
        numero($h->comErro), barra($h->internas + $h->externas, $maior, 40)], $horas);
    mostra('horas', '<>>><', ['hora', 'internas', 'externas', 'com_erro'], $celulas, ['Internas e externas']);
}

function mostra_mensagens(array $mensagens): void
{
    $rotulos = new Rotulos();
    $celulas = array_map(fn(Mensagem $m) => [quando($m->quando), $rotulos->valor($m->sentido), $m->remetente ?? '',
        tamanho($m->bytes ?? 0), $rotulos->valor($m->estado), $m->id], $mensagens);
    mostra('mensagens', '<<<><<', ['quando', 'sentido', 'remetente', 'bytes', 'estado', 'id'], $celulas);
}

// Of these messages, the history of the latest one that a recipient refused and others accepted; of
// the latest one if there is none among them.
function rastro_a_mostrar(Relatorios $r, array $mensagens): Rastro
{
    $com_erro = array_filter($mensagens, fn(Mensagem $m) => $m->estado === Estado::ComErro);
    foreach (array_slice(array_reverse($com_erro), 0, 40) as $m) {
        $rastro = $r->rastro($m->id);
        $estados = array_column($rastro->destinatarios, 'estado');
        if (in_array(Estado::Recusado, $estados, true) && in_array(Estado::Entregue, $estados, true)) {
            return $rastro;
        }
    }
    return $r->rastro(end($mensagens)->id);
}

function mostra_rastro(Rastro $r): void
{
    $rotulos = new Rotulos();
    $campos = ['id' => $r->id, 'remetente' => $r->remetente ?? '', 'bytes' => tamanho($r->bytes ?? 0),
        'submetida' => quando($r->submetida), 'encerrada' => quando($r->encerrada) ?: 'ainda não',
        'estado' => $rotulos->valor($r->estado)];
    foreach ($campos as $coluna => $valor) {
        printf("  %-9s  %s\n", $rotulos->coluna('rastro', $coluna), $valor);
    }
    foreach (array_filter(explode("\n", $r->texto)) as $frase) {
        echo "  $frase\n";
    }
    echo "\n";
    $celulas = array_map(fn($d) => [$d->nome, quando($d->quando), $d->texto], $r->destinatarios);
    mostra('rastro', '<<<', ['destinatario', 'quando', 'texto'], $celulas);
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
$dias = (new Dias("$raiz/dat"))->todos()
    ?: para('A consolidação não escreveu nada. Outro processo consolida agora?');
echo 'pronto em ' . numero($segundos, 2) . ' s (' . numero($linhas / $segundos)
    . " linhas por segundo).\n";

titulo('3. O que foi escrito: por dia, os eventos e a estatística');
mostra_arquivos($raiz, [...glob("$raiz/dat/rels_*/*.txt"), "$raiz/ultima_consolidacao"]);

try {
    $relay = new Relay("$raiz/dat", ponto: "$raiz/ultima_consolidacao");
    $relatorios = new Relatorios($relay);
    $periodo = Periodo::de($dias[0], end($dias), $relay->fuso);

    titulo('4. Totais por dia');
    mostra_totais(iterator_to_array($relatorios->totais($periodo)));

    $usuario = ($relatorios->topo($periodo, n: 1)[0] ?? para('Ninguém enviou nada.'))->nome;
    titulo("5. Dia a dia de quem mais enviou: $usuario");
    mostra_dias($relatorios->porUsuario($periodo, [$usuario]));

    titulo('6. Hora a hora, os três dias juntos');
    mostra_horas($relatorios->horas($periodo));

    $mensagens = iterator_to_array($relatorios->mensagens($periodo, new Filtro(usuario: $usuario)), false);
    titulo("7. As dez últimas mensagens de $usuario");
    mostra_mensagens(array_slice($mensagens, -10));

    titulo('8. A história de uma mensagem');
    mostra_rastro(rastro_a_mostrar($relatorios, $mensagens));
} catch (Falha $e) {
    para($e->getMessage());
}

echo "\nTudo ficou em $raiz.\n";
