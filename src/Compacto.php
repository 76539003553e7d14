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

    /** @return \Generator<int, string> every line but the last of the file ends in LF */
    public static function blocos(string $arquivo): \Generator
    {
        $f = fopen($arquivo, 'rb');
        while (($bloco = fread($f, self::BLOCO)) !== '' && $bloco !== false) {
            // fread stops where it likes: the rest of the line that it cut.
            yield str_ends_with($bloco, "\n") ? $bloco : $bloco . fgets($f);
        }
        fclose($f);
    }

    /** Whether the log's word for a kind of user means a local one: I..., SMTPCONNINT. */
    public static function local(string $classe): bool
    {
        return ($classe[0] ?? '') === 'I' || (($classe[0] ?? '') === 'S' && ($classe[8] ?? '') === 'I');
    }
}
