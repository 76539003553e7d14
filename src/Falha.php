<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/**
 * Whatever the library cannot do, told in a sentence for the user: what is wrong and what to do. The
 * message is the Portuguese one. The kinds are in the folder Falha.
 */
abstract class Falha extends \RuntimeException
{
    public function __construct(string $frase, private readonly string $emIngles)
    {
        parent::__construct($frase);
    }

    /** The sentence in "pt" or "en". */
    public function frase(string $lingua): string
    {
        return $lingua === 'en' ? $this->emIngles : $this->getMessage();
    }

    /** A text as a sentence can quote it: valid UTF-8, on one line, not too long. */
    final public static function cita(string $texto): string
    {
        $texto = preg_match('//u', $texto) ? $texto : Texto::utf8($texto);
        $texto = preg_replace('/[\x00-\x1F\x7F]|\xC2[\x80-\x9F]/', '?', $texto);
        return preg_match('/^.{81}/us', $texto) ? preg_replace('/^(.{80}).*/us', '$1...', $texto) : $texto;
    }
}
