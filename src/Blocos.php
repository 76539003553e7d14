<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/**
 * A compact file cut into blocks that can be read in any order. A block holds whole lines, and all lines
 * of one second: rows of the same second are told apart by their ids alone.
 */
final class Blocos
{
    private readonly int $bytes;
    /** @var ?resource while it is kept open */
    private $aberto;

    /** @param bool $fica whether the file stays open: it may be replaced, and its blocks must be of one file */
    public function __construct(
        private readonly string $arquivo,
        private readonly int $tamanho,
        bool $fica,
    ) {
        $this->aberto = $fica ? fopen($arquivo, 'rb') : null;
        $this->bytes = $fica ? fstat($this->aberto)['size'] : (int) filesize($arquivo);
    }

    public function quantos(): int
    {
        return max(1, intdiv($this->bytes + $this->tamanho - 1, $this->tamanho));
    }

    /** The lines of a block, counted from 0; "" where a run of one second has taken them all. */
    public function texto(int $qual): string
    {
        $f = $this->aberto ?? fopen($this->arquivo, 'rb');
        $inicio = $this->limite($f, $qual);
        $fim = $this->limite($f, $qual + 1);
        fseek($f, $inicio);
        return $fim > $inicio ? (string) stream_get_contents($f, $fim - $inicio) : '';
    }

    /**
     * The first line that begins behind a place in another second than the line before it.
     *
     * @param resource $f
     */
    private function limite($f, int $qual): int
    {
        $lugar = $qual * $this->tamanho;
        if ($qual === 0 || $lugar >= $this->bytes) {
            return min($lugar, $this->bytes);
        }
        fseek($f, $lugar - 1);
        fgets($f);
        $segundo = strtok((string) fgets($f), ' ') . ' ';
        do {
            $lugar = (int) ftell($f);
            $linha = fgets($f);
        } while ($linha !== false && str_starts_with($linha, $segundo));
        return $lugar;
    }
}
