<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\NaoConsolidado;

/** The bytes of one log, plain or compressed by gzip: told by how it begins, not by its name. */
final readonly class LogBruto
{
    private const BLOCO = 1 << 20;
    private const GZIP = "\x1F\x8B";
    /** What other compressors begin with. They would be passed over for logs without a stamp. */
    private const OUTROS = ["BZh", "\xFD7zXZ\0", "\x28\xB5\x2F\xFD", "PK\x03\x04"];

    private bool $comprimido;

    public function __construct(public string $arquivo)
    {
        $cabeca = (string) @file_get_contents($arquivo, false, null, 0, 6);
        $this->comprimido = str_starts_with($cabeca, self::GZIP);
        foreach (self::OUTROS as $outro) {
            if (str_starts_with($cabeca, $outro)) {
                throw NaoConsolidado::naoSeiLer($arquivo);
            }
        }
    }

    /**
     * All of it, in blocks.
     *
     * @return \Generator<int, string>
     * @throws NaoConsolidado at the end of a compressed log that is cut short or damaged
     */
    public function blocos(): \Generator
    {
        $f = @fopen($this->arquivo, 'rb') ?: throw NaoConsolidado::logIlegivel($this->arquivo);
        try {
            if ($this->comprimido) {
                yield from $this->descomprime($f);
                return;
            }
            while (!feof($f)) {
                $bloco = @fread($f, self::BLOCO);
                if ($bloco === false) {
                    throw NaoConsolidado::logIlegivel($this->arquivo);
                }
                yield $bloco;
            }
        } finally {
            fclose($f);
        }
    }

    /** How many bytes blocos() will give, or somewhat more. */
    public function tamanho(): int
    {
        $tamanho = (int) filesize($this->arquivo);
        if (!$this->comprimido) {
            return $tamanho;
        }
        // The last four bytes tell it, unless there are 4 GiB of it or several pieces.
        $dito = unpack('V', (string) @file_get_contents($this->arquivo, false, null, max(0, $tamanho - 4)) . "\0\0\0\0")[1];
        if ($dito >= $tamanho) {
            return $dito;
        }
        $bytes = 0;
        foreach ($this->blocos() as $bloco) {
            $bytes += strlen($bloco);
        }
        return $bytes;
    }

    /** Whether this one's bytes are those that the other begins with: then it is a copy of it. */
    public function comeca(self $outro): bool
    {
        $deles = $outro->blocosQueHa();
        $tem = '';
        foreach ($this->blocosQueHa() as $bloco) {
            for (; strlen($tem) < strlen($bloco); $deles->next()) {
                if (!$deles->valid()) {
                    return false;
                }
                $tem .= $deles->current();
            }
            if (strncmp($tem, $bloco, strlen($bloco)) !== 0) {
                return false;
            }
            $tem = substr($tem, strlen($bloco));
        }
        return true;
    }

    /** Those of a log that is cut short too, as while it is being compressed. */
    private function blocosQueHa(): \Generator
    {
        try {
            yield from $this->blocos();
        } catch (NaoConsolidado) {
        }
    }

    /** @param resource $f */
    private function descomprime($f): \Generator
    {
        $contexto = null;
        $resto = '';
        while (true) {
            $resto = $resto !== '' ? $resto : (string) @fread($f, self::BLOCO >> 2);
            if ($resto === '') {
                break;
            }
            // A further piece may follow on the one that has ended; so may zeros, which stand for nothing.
            if ($contexto === null) {
                if (trim($resto, "\0") === '') {
                    $resto = '';
                    continue;
                }
                $contexto = inflate_init(ZLIB_ENCODING_GZIP);
                $lidos = 0;
            }
            $bloco = @inflate_add($contexto, $resto);
            if ($bloco === false) {
                throw NaoConsolidado::cortado($this->arquivo);
            }
            $usados = inflate_get_read_len($contexto) - $lidos;
            $lidos += $usados;
            $resto = inflate_get_status($contexto) === ZLIB_STREAM_END ? (string) substr($resto, $usados) : '';
            if (inflate_get_status($contexto) === ZLIB_STREAM_END) {
                $contexto = null;
            }
            yield $bloco;
        }
        if ($contexto !== null) {
            throw NaoConsolidado::cortado($this->arquivo);
        }
    }
}
