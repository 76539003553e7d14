<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\EntradaInvalida;

/**
 * The name of a user as it is asked for: a whole address in any ASCII letter case, or, with "*" at its end,
 * a beginning.
 */
final readonly class Nome
{
    public bool $comeco;
    /** The bytes that a day file would hold, in small ASCII letters; null when it cannot hold such a name. */
    public ?string $bytes;

    /** @throws EntradaInvalida */
    public function __construct(public string $texto)
    {
        self::verifica($texto);
        $this->comeco = str_ends_with($texto, '*');
        $bytes = Texto::latin1($this->comeco ? substr($texto, 0, -1) : $texto);
        $this->bytes = $bytes === null ? null : strtolower($bytes);
    }

    /** Refuses what is nobody's name: "" (nobody or everybody, as the report goes), lists, blanks. */
    public static function verifica(string $texto): void
    {
        if ($texto === '') {
            throw EntradaInvalida::nome($texto, 'está vazio.', 'it is empty.');
        }
        if (str_contains($texto, ',')) {
            throw EntradaInvalida::nome($texto, 'tem uma vírgula.', 'it has a comma.');
        }
        if (preg_match('/[\x00\n\r ]/', $texto)) {
            throw EntradaInvalida::nome(
                $texto,
                'tem um espaço ou uma quebra de linha.',
                'it has a blank or a line end.'
            );
        }
    }

    /** Whether it names this one, given as in a day file. */
    public function nomeia(string $latin1): bool
    {
        if ($this->bytes === null) {
            return false;
        }
        return $this->comeco
            ? strncasecmp($latin1, $this->bytes, strlen($this->bytes)) === 0
            : strcasecmp($latin1, $this->bytes) === 0;
    }
}
