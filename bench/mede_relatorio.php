<?php
// Measures one kind of report inside a long-lived process: five calls, of which the median counts.
//
//     php -n -d extension=PATH bench/mede_relatorio.php REPORT DATA START END [ARGUMENT]
//
// Prints, serialised: seconds of CPU a call and the answer (in ISO-8859-1); for the walk also those of
// the same loop over plain objects; for traces of several ids, parted by commas, both of each.
declare(strict_types=1);

require __DIR__ . '/relatorios.php';

function cpu(): float
{
    $u = getrusage();
    return $u['ru_utime.tv_sec'] + $u['ru_stime.tv_sec']
        + ($u['ru_utime.tv_usec'] + $u['ru_stime.tv_usec']) / 1e6;
}

// Median seconds of five calls, and what the last one answered.
function vezes(callable $chamada): array
{
    $r = em_voltas([$chamada]);
    return ['cpu' => $r['cpu'][0], 'resposta' => $r['respostas'][0]];
}

// The same of several calls that take turns, so that a slow moment of the machine is not that of one.
function em_voltas(array $chamadas): array
{
    $segundos = $respostas = [];
    for ($i = 0; $i < 5; ++$i) {
        foreach ($chamadas as $qual => $chamada) {
            $antes = cpu();
            $respostas[$qual] = $chamada();
            $segundos[$qual][] = cpu() - $antes;
        }
    }
    $mediana = function (array $s) {
        sort($s);
        return $s[2];
    };
    return ['cpu' => array_map($mediana, $segundos), 'respostas' => $respostas];
}

// A row of that report as a plain object, for the loop that the walk is measured against.
final class Linha
{
    public function __construct(public string $msg_id, public string $msg_sendername, public int $msg_size,
        public int $msg_time, public int $enviada, public int $interna, public int $error,
        public int $spam, public int $virus)
    {
    }
}

// The rows of the day, read from the iterator, and from an array of plain objects that is there.
function passeio(string $dados, array $intervalo): array
{
    [$m, $itr] = pagina($dados);
    $m->user_msgs('', '', ...[...$intervalo, '', 0, 0, $itr->getHandle()]);
    $linhas = [];
    while ($itr->fetch()) {
        $linhas[] = new Linha($itr->msg_id, $itr->msg_sendername, $itr->msg_size, $itr->msg_time,
            $itr->enviada, $itr->interna, $itr->error, $itr->spam, $itr->virus);
    }
    $iterador = vezes(function () use ($itr) {
        for ($n = $soma = 0; $itr->fetch(); ++$n) {
            $soma += $itr->msg_size + $itr->msg_time + $itr->enviada + strlen($itr->msg_id)
                + strlen($itr->msg_sendername);
        }
        return [$n, $soma];
    });
    $simples = vezes(function () use ($linhas) {
        $n = $soma = 0;
        foreach ($linhas as $l) {
            ++$n;
            $soma += $l->msg_size + $l->msg_time + $l->enviada + strlen($l->msg_id)
                + strlen($l->msg_sendername);
        }
        return [$n, $soma];
    });
    return ['cpu' => $iterador['cpu'], 'resposta' => $iterador['resposta'],
        'cpu_simples' => $simples['cpu'], 'resposta_simples' => $simples['resposta']];
}

[, $que, $dados, $de, $ate] = $argv;
$intervalo = [(int) $de, (int) $ate];
$extra = $argv[5] ?? '';
echo serialize(match ($que) {
    'historias' => em_voltas(array_map(fn(string $id) => fn() => historia($dados, $id, $intervalo),
        explode(',', $extra))),
    'horas' => vezes(fn() => horas($dados, $intervalo)),
    'mensagens' => vezes(fn() => mensagens($dados, $extra, $intervalo)),
    'totais' => vezes(fn() => totais($dados, $intervalo)),
    'passeio' => passeio($dados, $intervalo),
});
