<?php
// The five reports over the days of a data directory, as a page would ask for them.
declare(strict_types=1);

final class Relatorios
{
    private readonly string $dados;
    private readonly DateTimeZone $fuso;
    private readonly string $primeiro;  // the first and the last day, "2026-03-10"
    private readonly string $ultimo;

    // Null when the directory has no day files.
    public static function de(string $dados): ?self
    {
        // The date is in the names: rels_MM-YY/mail_stat_DD.txt.
        $dias = preg_replace('~^.*rels_(\d\d)-(\d\d)/mail_stat_(\d\d)\.txt$~', '20$2-$1-$3',
            glob("$dados/rels_*/mail_stat_*.txt"));
        return $dias ? new self($dados, min($dias), max($dias)) : null;
    }

    private function __construct(string $dados, string $primeiro, string $ultimo)
    {
        $this->dados = $dados;
        $this->primeiro = $primeiro;
        $this->ultimo = $ultimo;
        // Days are those of the C library, which PHP does not show; date(1) does. One offset is
        // enough: no zone changes its clocks in the demo's days.
        $this->fuso = new DateTimeZone(trim(shell_exec("date -d '$primeiro 12:00' +%:z")));
    }

    // A day has one row: the totals of all users.
    public function totais(): array
    {
        return $this->linhas($this->pergunta('msgs_per_day', [...$this->datas(), ' ']));
    }

    // The rows of each user named, a row for each day on which there is something to tell.
    public function dias(array $usuarios): array
    {
        $itr = $this->pergunta('msgs_per_day', [...$this->datas(), implode(',', $usuarios)]);
        $dias = array_fill_keys($usuarios, []);  // the report turns their order round
        while ($itr->fetch()) {
            $dias[$itr->usuario] = $this->linhas($itr, 'fetch_msgs_per_day');
        }
        return $dias;
    }

    // The rows of hour 0 to hour 23, all days together.
    public function horas(): array
    {
        return $this->linhas($this->pergunta('msgs_per_hour', [...$this->instantes(), ' ']));
    }

    // Messages that the recipient received and the sender sent; "" for no such filter. Without
    // both: all that were sent.
    public function mensagens(string $destinatario = '', string $remetente = ''): array
    {
        return $this->linhas($this->pergunta('user_msgs', [$destinatario, $remetente,
            ...$this->instantes(), '', 0, 0]));
    }

    // The history of one message, and its recipients as "destinatarios".
    public function rastro(string $id): array
    {
        $itr = $this->pergunta('msg_trace', [$id, ...$this->instantes()]);
        $itr->fetch();  // answers 0: there is one message only
        $mensagem = get_object_vars($itr);
        return $mensagem + ['destinatarios' => $this->linhas($itr, 'fetch_recipient')];
    }

    // Day of a row of totais() or dias().
    public function data(int $timestamp): string
    {
        return gmdate('d/m/Y', $timestamp);
    }

    // Local date and time of an event.
    public function quando(int $timestamp): string
    {
        return (new DateTime("@$timestamp"))->setTimezone($this->fuso)->format('d/m/Y H:i:s');
    }

    // The range for reports of whole days. They take one file each 24 hours from the start, by the
    // date in UTC; at noon that is the day meant, in every zone.
    private function datas(): array
    {
        return [strtotime("$this->primeiro 12:00 UTC"), strtotime("$this->ultimo 12:00 UTC") + 1];
    }

    // The range for reports of events, which besides must lie in it: from the first midnight to the
    // last second. East of UTC midnight has the date of the day before; two hours more reach the
    // last day's file, and no further one.
    private function instantes(): array
    {
        $inicio = new DateTimeImmutable("$this->primeiro 00:00", $this->fuso);
        $fim = new DateTimeImmutable("$this->ultimo 00:00 +1 day", $this->fuso);
        $leste = $inicio->getOffset() > 0;
        return [$inicio->getTimestamp(), $fim->getTimestamp() - 1 + ($leste ? 7200 : 0)];
    }

    // Asks with a parser and an iterator of its own: nothing of an earlier report shows.
    private function pergunta(string $metodo, array $argumentos): vt_mrel_itr
    {
        $mrel = new vt_mrel();
        $mrel->setDataDir($this->dados);
        $itr = new vt_mrel_itr();
        $mrel->$metodo(...[...$argumentos, $itr->getHandle()]);
        return $itr;
    }

    private function linhas(vt_mrel_itr $itr, string $fetch = 'fetch'): array
    {
        $linhas = [];
        while ($itr->$fetch()) {
            $linhas[] = get_object_vars($itr);
        }
        return $linhas;
    }
}
