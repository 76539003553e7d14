<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\EntradaInvalida;

/** Which messages are looked for: of a user in either direction, or by sender, recipient, id, size. */
final readonly class Filtro
{
    public ?Nome $usuario;
    public ?Nome $remetente;
    public ?Nome $destinatario;

    /**
     * @param ?string $usuario sent or received; not together with the next two
     * @param ?string $remetente together with $destinatario: from the one to the other
     * @param ?string $id the whole id, letter case included
     * @param int $minKb smallest size in KiB, 0 for no bound; with a bound, sizes that are not known are out
     * @param int $maxKb largest size in KiB, 0 for no bound
     * @param bool $todas every message submitted; needed when there is no other filter
     * @param ?int $hora 0 to 23, by the clock, of the time that the row shows
     * @throws EntradaInvalida when a name or an hour cannot be, or nothing was asked for
     */
    public function __construct(
        ?string $usuario = null,
        ?string $remetente = null,
        ?string $destinatario = null,
        public ?string $id = null,
        public int $minKb = 0,
        public int $maxKb = 0,
        public bool $todas = false,
        public ?int $hora = null,
    ) {
        $this->usuario = $usuario === null ? null : new Nome($usuario);
        $this->remetente = $remetente === null ? null : new Nome($remetente);
        $this->destinatario = $destinatario === null ? null : new Nome($destinatario);
        if ($this->usuario && ($this->remetente || $this->destinatario)) {
            throw EntradaInvalida::filtro(
                'Peça um usuário, ou então remetente e destinatário, e não os dois juntos.',
                'Ask for a user, or else for sender and recipient, not for both.'
            );
        }
        if ($id !== null) {
            self::verificaId($id);
        }
        if ($minKb < 0 || $maxKb < 0 || ($maxKb > 0 && $minKb > $maxKb)) {
            throw EntradaInvalida::filtro(
                'Os tamanhos estão invertidos ou são negativos: o menor em KiB vem primeiro, 0 é sem limite.',
                'The sizes are inverted or negative: the smaller one in KiB comes first, 0 is no bound.'
            );
        }
        if ($hora !== null && ($hora < 0 || $hora > 23)) {
            throw EntradaInvalida::hora($hora);
        }
        if (!$todas && $usuario === null && $remetente === null && $destinatario === null && $id === null) {
            throw EntradaInvalida::filtro(
                'Sem filtro viriam todas as mensagens: dê um usuário, um remetente, um destinatário ou um '
                    . 'identificador, ou peça todas.',
                'Without a filter all messages would come: give a user, a sender, a recipient or an id, or ask for all.'
            );
        }
    }

    /** @throws EntradaInvalida for what is no message's id */
    public static function verificaId(string $id): void
    {
        if (preg_match('/^$|[\x00\n\r ]/', $id)) {
            throw EntradaInvalida::filtro(
                'O identificador da mensagem está vazio ou tem espaços: copie-o inteiro, sem nada em volta.',
                'The id of the message is empty or has blanks: copy all of it, and nothing around it.'
            );
        }
    }

    /** Whether a size, null for one that is not known, lies within the bounds. */
    public function cabe(?int $bytes): bool
    {
        if ($this->minKb === 0 && $this->maxKb === 0) {
            return true;
        }
        return $bytes !== null && $bytes >= $this->minKb * 1024
            && ($this->maxKb === 0 || $bytes <= $this->maxKb * 1024);
    }

    /** Whether a row's time, null for one that is not known, lies within the hour. */
    public function naHora(?\DateTimeImmutable $quando): bool
    {
        return $this->hora === null || (int) ($quando?->format('G') ?? -1) === $this->hora;
    }
}
