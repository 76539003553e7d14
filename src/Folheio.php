<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Linha\Mensagem;

/**
 * The rows of a search (Busca) a page at a time, newest first, without those of older pages.
 *
 * Goes backwards through the blocks of the compact files until enough lines are met that may make a row,
 * gathers all lines of their messages, and lets Busca answer for these messages alone. Of its rows those
 * belong to the page whose time and id are those of a line that was met: a row is on one page only, and
 * where a page ends does not matter.
 */
final class Folheio
{
    /** A page pauses after so much work, in blocks searched for a text: 0.2 ms each. */
    private const MUITO = 1000;
    /** So many lines cost a search as much as a block. */
    private const POR_CUSTO = 10;
    /** Behind every time that a log can hold. */
    private const FIM = 99999999999;

    /** @var list<array{string, Blocos, int}> day, file and number of each block, oldest first */
    private array $blocos = [];
    /** How many of them are of days before the period. */
    private int $antes = 0;
    /** The block read last, and what doBloco answered for it. */
    private int $lido = -1;
    private array $doLido = [];
    /** Lines that a search was made for. */
    private int $feitas = 0;
    private readonly Candidatas $candidatas;
    private readonly Recolha $recolha;

    /**
     * @param array<string, string> $arquivos compact files of the period, by day
     * @param array<string, string> $anteriores those of the Busca::DIAS_ANTES days before it
     */
    public function __construct(
        array $arquivos,
        array $anteriores,
        private readonly Periodo $periodo,
        private readonly Filtro $filtro,
        int $bloco = 1 << 20,
    ) {
        foreach ($anteriores + $arquivos as $dia => $arquivo) {
            // The newest day may be today's, which is replaced while it grows.
            $blocos = new Blocos($arquivo, $bloco, $dia === array_key_last($arquivos));
            for ($n = 0; $n < $blocos->quantos(); ++$n) {
                $this->blocos[] = [$dia, $blocos, $n];
                $this->antes += isset($arquivos[$dia]) ? 0 : 1;
            }
        }
        $this->candidatas = new Candidatas($filtro, $periodo->fuso);
        $this->recolha = new Recolha($this->blocos);
    }

    public function pagina(?Cursor $cursor, int $n): Pagina
    {
        if ($this->filtro->id !== null) {
            return $this->deUmId($cursor, $n);
        }
        [$i, $limite] = $this->lugar($cursor);
        $linhas = [];
        // Of some messages no line is the row's, or their size does not fit: the more there are, the more at once.
        for ($quantas = $n + 1; $i >= $this->primeiro() && count($linhas) <= $n && !$this->cansado(); $quantas *= 2) {
            [$achadas, $i, $limite] = $this->junta($i, $limite, $quantas);
            array_push($linhas, ...$this->linhas($achadas));
        }
        $mensagens = array_column(array_slice($linhas, 0, $n), 0);
        if (count($linhas) > $n) {
            return new Pagina($mensagens, $linhas[$n - 1][1]->texto(), null);
        }
        if ($i < $this->primeiro()) {
            return new Pagina($mensagens, null, null);
        }
        $limite ??= new Cursor(...[...$this->nome($i), self::FIM, '']);
        return new Pagina($mensagens, $limite->texto(), $this->pausa($i, $limite));
    }

    /** An id has few rows, and one whose submission is not known has no time: all rows at once. */
    private function deUmId(?Cursor $cursor, int $n): Pagina
    {
        $linhas = [];
        $id = Texto::latin1($this->filtro->id);
        $textos = $id === null ? [] : $this->recolha->recolhe(array_fill_keys(array_keys($this->blocos), [$id => true]));
        foreach ($this->busca($textos) as $m) {
            array_unshift($linhas, $m);
        }
        $antes = $cursor?->bloco ?? 0;
        $ultima = $antes + $n < count($linhas) ? new Cursor($this->periodo->ultimo, $antes + $n, 0, '') : null;
        return new Pagina(array_slice($linhas, $antes, $n), $ultima?->texto(), null);
    }

    /** The oldest block in which a row can have its line. */
    private function primeiro(): int
    {
        // Submitted before the period and accepted within it, by those whose both ends count.
        $antes = $this->filtro->usuario || ($this->filtro->remetente && $this->filtro->destinatario);
        return $antes ? 0 : $this->antes;
    }

    private function cansado(): bool
    {
        $buscas = intdiv($this->feitas, self::POR_CUSTO);
        return $this->candidatas->trabalho + $this->recolha->trabalho + $buscas > self::MUITO;
    }

    /** @return array{int, ?Cursor} the block to begin with; a cursor within it */
    private function lugar(?Cursor $cursor): array
    {
        for ($i = count($this->blocos) - 1; $cursor && $i >= 0; --$i) {
            $mais = $this->nome($i) <=> [$cursor->dia, $cursor->bloco];
            if ($mais <= 0) {
                return [$i, $mais === 0 ? $cursor : null];
            }
        }
        return [$i, null];
    }

    /**
     * Lines that may make a row, of at least so many messages if there are as many.
     *
     * @return array{list<array{int, int, string}>, int, ?Cursor} block, time and id of each; where to go on
     */
    private function junta(int $i, ?Cursor $limite, int $faltam): array
    {
        $achadas = $ids = [];
        for (; $i >= $this->primeiro() && !$this->cansado(); --$i, $limite = null) {
            foreach ($this->doBloco($i) as [$quando, $id]) {
                if ($limite?->passou($quando, $id)) {
                    continue;
                }
                $achadas[] = [$i, $quando, $id];
                $ids[$id] = true;
                if (count($ids) >= $faltam) {
                    return [$achadas, $i, new Cursor(...[...$this->nome($i), $quando, $id])];
                }
            }
        }
        return [$achadas, $i, null];
    }

    /** @return list<array{int, string}> times and ids of the lines of a block that may make a row, newest first */
    private function doBloco(int $i): array
    {
        if ($this->lido !== $i) {
            [, $arquivo, $numero] = $this->blocos[$i];
            $this->doLido = $this->candidatas->de($arquivo->texto($numero), $i >= $this->antes);
            $this->lido = $i;
        }
        return $this->doLido;
    }

    /** @return array{string, int} the block's day and number */
    private function nome(int $i): array
    {
        return [$this->blocos[$i][0], $this->blocos[$i][2]];
    }

    /**
     * The rows of these lines.
     *
     * @param list<array{int, int, string}> $achadas
     * @return list<array{Mensagem, Cursor}> newest first
     */
    private function linhas(array $achadas): array
    {
        $this->feitas += count($achadas);
        $ids = $lugares = [];
        foreach ($achadas as $n => [$i, $quando, $id]) {
            $ids[$i][$id] = true;
            $lugares["$quando $id"] = $n;
        }
        $linhas = [];
        foreach ($this->busca($this->recolha->recolhe($ids)) as $m) {
            $quando = (int) $m->quando?->getTimestamp();
            $n = $lugares[$quando . ' ' . Texto::latin1($m->id)] ?? null;
            if ($n !== null) {
                [$i, , $id] = $achadas[$n];
                $linhas[$n] = [$m, new Cursor(...[...$this->nome($i), $quando, $id])];
            }
        }
        ksort($linhas);
        return array_values($linhas);
    }

    /**
     * @param array<string, string> $textos all lines of some messages, by day
     * @return \Generator<int, Mensagem>
     */
    private function busca(array $textos): \Generator
    {
        $noPeriodo = fn (string $dia): bool => $dia >= $this->periodo->primeiro;
        $arquivos = array_filter($textos, $noPeriodo, ARRAY_FILTER_USE_KEY);
        $anteriores = array_diff_key($textos, $arquivos);
        $blocos = static fn (string $texto): array => [$texto];
        return (new Busca($arquivos, $anteriores, $this->periodo, $this->filtro, $blocos))->mensagens();
    }

    /** Down to where the search has looked. */
    private function pausa(int $i, Cursor $limite): \DateTimeImmutable
    {
        $quando = $limite->quando;
        if ($quando === self::FIM) {
            $numero = $this->blocos[$i + 1] ?? null;
            $quando = $numero ? (int) hexdec(strtok($numero[1]->texto($numero[2]), ' ')) : 0;
        }
        return (new \DateTimeImmutable("@$quando"))->setTimezone($this->periodo->fuso);
    }
}
