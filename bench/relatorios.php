<?php
// The reports as a page asks them: each function runs one report on objects of its own and answers
// what the page would show, as text or rows.
declare(strict_types=1);

// A parser on a data directory, and an iterator for its rows.
function pagina(string $dados): array
{
    $m = new vt_mrel();
    $m->setDataDir($dados);
    return [$m, new vt_mrel_itr()];
}

// History of a message: its submission, end and whether it failed, then a line for each recipient.
function historia(string $dados, string $id, array $intervalo): string
{
    [$m, $itr] = pagina($dados);
    $m->msg_trace($id, ...[...$intervalo, $itr->getHandle()]);
    $itr->fetch();
    $texto = "$itr->msg_id $itr->msg_sendername $itr->msg_size $itr->msg_time $itr->msg_end_time "
        . "$itr->error\n";
    while ($itr->fetch_recipient()) {
        $texto .= "$itr->recipient_name $itr->recipient_time\n";
    }
    return $texto;
}

// 24 lines: local and outside messages with their bytes, spam, virus, errors.
function horas(string $dados, array $intervalo): string
{
    [$m, $itr] = pagina($dados);
    $m->msgs_per_hour(...[...$intervalo, ' ', $itr->getHandle()]);
    $texto = '';
    while ($itr->fetch()) {
        $texto .= "$itr->msgs_int $itr->bytes_int $itr->msgs_ext $itr->bytes_ext $itr->spam "
            . "$itr->virus $itr->error\n";
    }
    return $texto;
}

// A line for each message that the user sent or received.
function mensagens(string $dados, string $usuario, array $intervalo): string
{
    [$m, $itr] = pagina($dados);
    $m->user_msgs($usuario, $usuario, ...[...$intervalo, '', 0, 0, $itr->getHandle()]);
    $texto = '';
    while ($itr->fetch()) {
        $texto .= "$itr->msg_id $itr->enviada $itr->msg_time $itr->msg_size $itr->msg_sendername "
            . "$itr->interna $itr->error $itr->spam $itr->virus\n";
    }
    return $texto;
}

// A line for each day: the eight totals.
function totais(string $dados, array $intervalo): string
{
    [$m, $itr] = pagina($dados);
    $m->msgs_per_day(...[...$intervalo, ' ', $itr->getHandle()]);
    $texto = '';
    while ($itr->fetch()) {
        $texto .= "$itr->spam $itr->virus $itr->error $itr->att_blocked $itr->msgs_int "
            . "$itr->bytes_int $itr->msgs_ext $itr->bytes_ext\n";
    }
    return $texto;
}
