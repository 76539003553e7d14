<?php
// Traces of messages drawn at random, of those that met a connection error and of others: what each
// costs, and whether it tells what the message's own lines tell.
declare(strict_types=1);

// Draws the same messages every time.
const SEMENTE = 20261122;
const SORTEADAS = 15;  // of each kind

// What a day's traces are asked of: its directory and compact file, and ids that were drawn from all
// messages submitted that day. `$dados` holds the consolidated day.
function sorteia_traces(string $dados): array
{
    $compacto = arquivo_do_dia($dados, 'compact_mail');
    $submetidas = $erros = [];
    foreach (new SplFileObject($compacto) as $linha) {
        [, , $status, $id] = explode(' ', rtrim($linha), 5) + ['', '', '', ''];
        if ($status === '1') {
            $submetidas[$id] = true;
        } elseif ($status === '5') {
            $erros[$id] = true;
        }
    }
    mt_srand(SEMENTE);
    $sorteia = fn(array $ids) => array_map('strval', array_rand($ids, SORTEADAS));
    return ['dados' => $dados, 'compacto' => $compacto,
        'erro' => $sorteia(array_intersect_key($submetidas, $erros)),
        'outras' => $sorteia(array_diff_key($submetidas, $erros))];
}

// Median seconds of the traces of the others and of those with an error, and the most of the latter;
// and the answers by id.
function traces(array $dia): array
{
    $ids = [...$dia['erro'], ...$dia['outras']];
    $r = relatorio('historias', $dia['dados'], implode(',', $ids));
    [$erro, $outras] = array_chunk($r['cpu'], SORTEADAS);
    return ['cpu' => mediana($outras), 'erro' => mediana($erro), 'pior' => max($erro),
        'respostas' => array_combine($ids, $r['respostas'])];
}

// The search for each of the others' ids.
function procuras(array $dia): array
{
    return ['cpu' => mediana(array_map(fn(string $id) => mede(['rg', '-N', $id, $dia['compacto']])['cpu'],
        $dia['outras']))];
}

// What the lines of a message tell: the answer of historia().
function historia_das_linhas(string $linhas): string
{
    [$destinos, $fim, $erro] = [[], 0, 0];
    foreach (explode("\n", rtrim($linhas)) as $linha) {
        $c = explode(' ', $linha);
        $t = hexdec($c[0]);
        if ($c[2] === '1') {
            $mensagem = [$c[3], $c[5], $c[6], $t];
        } elseif ($c[2] === '2' && ($i = array_search($c[4], array_column($destinos, 0), true)) !== false) {
            $destinos[$i][1] = $t;
        } elseif ($c[2] === '2' || $c[2] === '9') {
            $destinos[] = [$c[4], $t];
        } elseif ($c[2] === '4') {
            $fim = $t;
        }
        // What pends is an error at the next END of any message, and those come every second.
        $erro |= (int) in_array($c[2], ['5', '8', '9', '11', '13'], true);
    }
    $linhas = [[...$mensagem, $fim, $erro], ...$destinos];
    return implode('', array_map(fn(array $l) => implode(' ', $l) . "\n", $linhas));
}

// Stops the bench unless every trace tells what a search for the id finds.
function confere_traces(string $que, array $dia): void
{
    foreach (traces($dia)['respostas'] as $id => $resposta) {
        $quer = historia_das_linhas(executa(['rg', '-N', (string) $id, $dia['compacto']]));
        $resposta === $quer || para("$que: different answers for $id\n  ours:  $resposta  peer:  $quer");
    }
    echo "$que: answers agree; " . 2 * SORTEADAS . ' ids drawn by seed ' . SEMENTE . "\n";
}

// The rows of the table, from the rounds of each day's traces and searches.
function linhas_dos_traces(array $dias, array $traces, array $procuras): array
{
    $linha = function (string $figura, float $maximo, array $vezes) {
        $cada = implode('; ', array_map(fn(float $v) => sprintf('%.2f', $v), $vezes));
        return linha($figura, sprintf('at most %.1f times', $maximo), "$cada times", max($vezes) <= $maximo);
    };
    $entre = fn(string $a) => array_map(fn(array $t) => razao($t[$a], $t['cpu']), $traces);
    $n = SORTEADAS;
    $mb = implode('; ', array_map(fn(array $d) => sprintf('%.0f', filesize($d['compacto']) / 1e6), $dias));
    return [
        $linha("trace of a message over compact files of $mb MB against `rg` for its id, median of $n", 1.0,
            array_map(fn(array $t, array $p) => razao($t['cpu'], $p['cpu']), $traces, $procuras)),
        $linha("those that met a connection error against others, medians of $n each", 1.3, $entre('erro')),
        $linha("the slowest of the $n with an error against the median of others", 2.0, $entre('pior')),
    ];
}
