<?php
// Measures one kind of report inside a long-lived process: five calls, of which the median counts.
//
//     php -n -d extension=PATH bench/mede_relatorio.php REPORT DATA START END [ARGUMENT]
//
// Prints, serialised: seconds of CPU a call and the answer (in ISO-8859-1); for the walk also those of
// the same loop over plain objects.
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
    $segundos = [];
    for ($i = 0; $i < 5; ++$i) {
        $antes = cpu();
        $resposta = $chamada();
        $segundos[] = cpu() - $antes;
    }
    sort($segundos);
    return ['cpu' => $segundos[2], 'resposta' => $resposta];
}

// The first 100,000 rows of the day, read from the iterator and from an array of plain objects.
function passeio(string $dados, array $intervalo): array
{
    $linhas = 100000;
    [$m, $itr] = pagina($dados);
    $m->user_msgs('', '', ...[...$intervalo, '', 0, 0, $itr->getHandle()]);
    $objetos = [];
    for ($i = 0; $i < $linhas && $itr->fetch(); ++$i) {
        $objetos[] = (object) get_object_vars($itr);
    }
    while ($itr->fetch());
    $iterador = vezes(function () use ($itr, $linhas) {
        $soma = 0;
        for ($i = 0; $i < $linhas && $itr->fetch(); ++$i) {
            $soma += $itr->msg_size + $itr->msg_time + $itr->enviada + strlen($itr->msg_id)
                + strlen($itr->msg_sendername);
        }
        while ($itr->fetch());
        return [$i, $soma];
    });
    // The rest of the walk, which only goes back to the start, is not part of the comparison.
    $resto = vezes(function () use ($itr, $linhas) {
        for ($i = 0; $i < $linhas && $itr->fetch(); ++$i);
        $antes = cpu();
        while ($itr->fetch());
        return cpu() - $antes;
    });
    $simples = vezes(function () use ($objetos) {
        $soma = 0;
        foreach ($objetos as $o) {
            $soma += $o->msg_size + $o->msg_time + $o->enviada + strlen($o->msg_id)
                + strlen($o->msg_sendername);
        }
        return [count($objetos), $soma];
    });
    return ['cpu' => $iterador['cpu'] - $resto['resposta'], 'resposta' => $iterador['resposta'],
        'cpu_simples' => $simples['cpu'], 'resposta_simples' => $simples['resposta']];
}

[, $que, $dados, $de, $ate] = $argv;
$intervalo = [(int) $de, (int) $ate];
$extra = $argv[5] ?? '';
echo serialize(match ($que) {
    'historia' => vezes(fn() => historia($dados, $extra, $intervalo)),
    'horas' => vezes(fn() => horas($dados, $intervalo)),
    'mensagens' => vezes(fn() => mensagens($dados, $extra, $intervalo)),
    'totais' => vezes(fn() => totais($dados, $intervalo)),
    'passeio' => passeio($dados, $intervalo),
});
