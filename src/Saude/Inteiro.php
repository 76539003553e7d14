<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

/** Writes a file so that whoever reads it finds the old one or the new one, never a part. */
final class Inteiro
{
    /** The file gets the mode of the old one; a new one that of the umask. A link is followed. */
    public static function escreve(string $arquivo, string $texto): bool
    {
        $alvo = is_link($arquivo) ? (@realpath($arquivo) ?: $arquivo) : $arquivo;
        // What reads a whole directory of such files goes by the end of the name.
        $novo = $alvo . '.' . getmypid() . '.novo';
        $f = @fopen($novo, 'xb');
        if ($f === false) {
            return false;
        }
        $feito = @fwrite($f, $texto) === strlen($texto) && @fflush($f) && @fsync($f);
        $feito = @fclose($f) && $feito;
        $modo = @fileperms($alvo);
        $modo === false || @chmod($novo, $modo & 0777);
        if (!$feito || !is_file($alvo) && file_exists($alvo) || !@rename($novo, $alvo)) {
            @unlink($novo);
            return false;
        }
        return true;
    }
}
