<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Symfony\Component\Console\Output\ConsoleOutput;
use Vorna\Mrel\Visivel;

/**
 * Standard output that notices when it cannot be written to, and lets no control character of a text
 * reach a terminal.
 */
final class Saida extends ConsoleOutput
{
    private readonly bool $terminal;

    public function __construct()
    {
        parent::__construct();
        $this->terminal = stream_isatty(STDOUT);
    }

    public function eTerminal(): bool
    {
        return $this->terminal;
    }

    /**
     * Texts as they are, one behind the other.
     *
     * @param iterable<string> $pedacos
     * @throws SaidaPerdida
     */
    public function escreve(iterable $pedacos): void
    {
        foreach ($pedacos as $pedaco) {
            self::grava($this->terminal ? Visivel::linhas($pedaco) : $pedaco);
        }
    }

    /** What the console writes of its own: help, lists, completion. */
    protected function doWrite(string $message, bool $newline): void
    {
        self::grava($newline ? $message . PHP_EOL : $message);
    }

    private static function grava(string $texto): void
    {
        while ($texto !== '') {
            error_clear_last();
            $n = @fwrite(STDOUT, $texto);
            if ($n === 0) {
                // A pipe that somebody has set not to block, and that is full.
                [$ler, $escrever, $outros] = [null, [STDOUT], null];
                stream_select($ler, $escrever, $outros, 1);
                continue;
            }
            if ($n === false) {
                preg_match('/errno=(\d+) (.*)/', error_get_last()['message'] ?? '', $m);
                throw new SaidaPerdida((int) ($m[1] ?? 0), $m[2] ?? '');
            }
            $texto = substr($texto, $n);
        }
    }
}
