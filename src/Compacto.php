<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** Reads compact files, a block of whole lines at a time: a day of a large relay has hundreds of MiB. */
final class Compacto
{
    private const BLOCO = 1 << 20;

    public const SUBMISSAO = '1';
    public const ACEITE = '2';
    public const FIM = '4';
    public const VIRUS = '15';

    /**
     * @param int $bytes about so many at a time
     * @return \Generator<int, string> every line but the last of the file ends in LF
     */
    public static function blocos(string $arquivo, int $bytes = self::BLOCO): \Generator
    {
        yield from self::deAberto(fopen($arquivo, 'rb'), $bytes);
    }

    /**
     * Reads as blocos does, but one file always from the same opening: while it is replaced, whoever reads it
     * more than once sees one state of it.
     *
     * @return \Closure(string): \Generator<int, string>
     */
    public static function leitor(?string $mutavel): \Closure
    {
        $f = $mutavel === null ? null : fopen($mutavel, 'rb');
        return static fn (string $arquivo): \Generator =>
            $arquivo === $mutavel ? self::deAberto($f) : self::blocos($arquivo);
    }

    /** @param resource $f read from its beginning */
    private static function deAberto($f, int $bytes = self::BLOCO): \Generator
    {
        rewind($f);
        while (($bloco = fread($f, $bytes)) !== '' && $bloco !== false) {
            // fread stops where it likes: the rest of the line that it cut.
            yield str_ends_with($bloco, "\n") ? $bloco : $bloco . fgets($f);
        }
    }

    /** Whether the log's word for a kind of user means a local one: I..., SMTPCONNINT. */
    public static function local(string $classe): bool
    {
        return ($classe[0] ?? '') === 'I' || (($classe[0] ?? '') === 'S' && ($classe[8] ?? '') === 'I');
    }
}
