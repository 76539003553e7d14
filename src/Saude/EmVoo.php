<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

/**
 * What the consolidation holds while it reads a day: messages, counters by user and hour, totals; and what
 * becomes of it at the day's end. The events are Recontagem's.
 */
abstract class EmVoo
{
    public const ENVIADAS = 0;
    public const BYTES_ENVIADOS = 1;
    public const RECEBIDAS = 2;
    public const BYTES_RECEBIDOS = 3;
    public const VIRUS = 4;
    public const SPAM = 5;
    public const ERROS = 6;

    /** Marks of a message: the low bits of one number, above which its size stands. */
    protected const M_LOCAL = 1;
    protected const M_ACEITA = 2;
    protected const M_SPAM = 4;
    protected const M_VIRUS = 8;
    protected const M_ERRO = 16;
    protected const M_FATAL = 32;
    protected const M_FIM = 64;
    protected const M_TENTADA = 128;
    /** An attempt or a failed connection on any day. */
    protected const M_ULTIMA = 256;
    protected const M_SEM_REMETENTE = 512;
    /** Its submission is in no file that was read. */
    protected const M_DESCONHECIDA = 1024;
    /** Errors that no acceptance has settled. */
    protected const M_PENDENTE = 2048;
    protected const MARCAS = 12;
    /** In place of marks: its lines are only collected. */
    protected const APARTE = -2;
    protected const HORAS = 24;

    /** @var list<array<int, array<string, int>>> counters by hour and user; hour -1 for what counts nowhere */
    public array $contas;
    /** @var list<int> spam, virus, error, blocked, messages and bytes of local senders, of others; see fecha() */
    public array $totais = [0, 0, 0, 0, 0, 0, 0, 0];
    /** With how many messages of earlier days it began, and their bytes. */
    public int $quantas = 0;
    public int $tamanhoInicial = 0;

    /** @var array<string, int> marks and size by id */
    protected array $marcas = [];
    /** @var array<string, string> local senders by id */
    protected array $remetentes = [];
    /** @var array<string, list<array{int, string}>> errors that no acceptance has settled, by id: status, text */
    protected array $pendentes = [];
    /** @var list<string> the local sender of each submission */
    protected array $submetidas = [];

    /** @param int $inicio when the day's first hour begins */
    final public function __construct(protected readonly int $inicio)
    {
        $this->contas = array_fill(0, 7, array_fill(-1, self::HORAS + 1, []));
    }

    /** Those of another one, whose lines this one only collects. */
    public function separa(self $outra): void
    {
        $this->marcas += array_fill_keys(array_keys($outra->marcas), self::APARTE);
    }

    /** How many messages it holds, and their bytes. */
    public function emCurso(): array
    {
        return [count($this->marcas), array_sum(array_map(static fn (int $m): int => $m >> self::MARCAS, $this->marcas))];
    }

    protected function mais(int $conta, int $hora, string $nome, int $n): void
    {
        $this->contas[$conta][$hora][$nome] = ($this->contas[$conta][$hora][$nome] ?? 0) + $n;
    }

    /** Ends the day: the totals, and who stays. */
    public function fecha(): void
    {
        $t = &$this->totais;
        foreach ($this->marcas as $id => $m) {
            if ($m === self::APARTE) {
                unset($this->marcas[$id]);
                continue;
            }
            $tentada = ($m & self::M_TENTADA) !== 0;
            $terminada = ($m & (self::M_FIM | self::M_FATAL)) !== 0;
            $falhou = $terminada ? ($m & (self::M_ERRO | self::M_FATAL)) !== 0 : ($m & self::M_ERRO) !== 0;
            if ($tentada && ($terminada || $falhou)) {
                $t[2] += $falhou ? 1 : 0;
                if ($terminada ? !$falhou || $m & self::M_ACEITA : $m & self::M_ACEITA) {
                    $de = $m & self::M_LOCAL ? 4 : 6;
                    ++$t[$de];
                    $t[$de + 1] += $m >> self::MARCAS;
                }
                $t[0] += $terminada && $m & self::M_SPAM ? 1 : 0;
            }
            $t[1] += $terminada && $m & self::M_VIRUS ? 1 : 0;
            if ($terminada || ($falhou && !$tentada)) {
                unset($this->marcas[$id]);
            }
        }
    }

    /**
     * The messages that stay at the end of the day, for the next one; $carregadas those of earlier days.
     *
     * @param bool $outra whether another run does the next day: it learns of them by the last-consolidation file
     */
    public function proxima(self $carregadas, int $inicio, bool $outra): static
    {
        $nova = new static($inicio);
        $marcas = $carregadas->marcas + $this->marcas;
        $referencias = $outra ? [] : $this->referencias($carregadas);
        $perdida = false;
        // The file has the latest first.
        foreach (array_reverse($marcas, true) as $id => $m) {
            $de = isset($carregadas->marcas[$id]) ? $carregadas : $this;
            if (!$outra) {
                $nova->fica((string) $id, $m & ~(self::M_TENTADA | self::M_ERRO), $de, $referencias);
                continue;
            }
            // The reader takes the id behind a sender that the log left out for that sender.
            if (!$perdida) {
                $fim = $m & self::M_ULTIMA ? self::M_FIM | self::M_ULTIMA : 0;
                $fica = -1 << self::MARCAS | self::M_LOCAL | self::M_SPAM | self::M_VIRUS;
                $nova->marcas[$id] = $m & $fica | $fim;
            }
            $perdida = !$perdida && ($m & self::M_SEM_REMETENTE) !== 0;
        }
        $nova->marcas = array_reverse($nova->marcas, true);
        [$nova->quantas, $nova->tamanhoInicial] = $nova->emCurso();
        return $nova;
    }

    /**
     * What the engine holds of messages in flight by sender: a submission adds one, an end or a virus takes one.
     *
     * @return array<string, int>
     */
    private function referencias(self $carregadas): array
    {
        $n = array_count_values([...$this->submetidas, ...$carregadas->submetidas]);
        foreach ([$this->contas, $carregadas->contas] as $contas) {
            foreach ([self::ENVIADAS => -1, self::SPAM => 1] as $conta => $vezes) {
                foreach ($contas[$conta] as $nomes) {
                    foreach ($nomes as $nome => $quantas) {
                        $n[$nome] = ($n[$nome] ?? 0) + $vezes * $quantas;
                    }
                }
            }
        }
        return $n;
    }

    private function fica(string $id, int $marcas, self $de, array $referencias): void
    {
        $this->marcas[$id] = $marcas;
        if (isset($de->pendentes[$id])) {
            $this->pendentes[$id] = $de->pendentes[$id];
        }
        // A sender for whom nothing is awaited is forgotten at midnight.
        if (isset($de->remetentes[$id]) && ($referencias[$de->remetentes[$id]] ?? 0) !== 0) {
            $this->remetentes[$id] = $de->remetentes[$id];
        }
    }
}
