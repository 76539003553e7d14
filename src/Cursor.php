<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\EntradaInvalida;

/** The place in a list, newest first, behind which the next page begins. */
final readonly class Cursor
{
    public function __construct(
        public string $dia,
        /** The block of the day's file; of older blocks everything follows. */
        public int $bloco,
        /** Unix seconds: of that block, what is earlier follows. */
        public int $quando,
        /** ISO-8859-1: of that second, the smaller ids follow. */
        public string $id,
    ) {
    }

    /** @throws EntradaInvalida */
    public static function le(string $texto): self
    {
        $campos = explode(' ', (string) base64_decode(strtr($texto, '-_', '+/'), true), 4);
        if (
            count($campos) !== 4 || !Periodo::existe($campos[0])
            || !preg_match('/^\d{1,9} \d{1,18}$/D', "$campos[1] $campos[2]")
        ) {
            throw EntradaInvalida::cursor($texto);
        }
        return new self($campos[0], (int) $campos[1], (int) $campos[2], $campos[3]);
    }

    public function texto(): string
    {
        return rtrim(strtr(base64_encode("$this->dia $this->bloco $this->quando $this->id"), '+/', '-_'), '=');
    }

    /** Whether a line of the cursor's block was given out before. */
    public function passou(int $quando, string $id): bool
    {
        return $quando > $this->quando || ($quando === $this->quando && strcmp($id, $this->id) >= 0);
    }
}
