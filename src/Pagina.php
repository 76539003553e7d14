<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Linha\Mensagem;

/** Some messages of a search, the newest first, and where to go on. */
final readonly class Pagina
{
    /** @param list<Mensagem> $mensagens */
    public function __construct(
        public array $mensagens,
        /** For the next page; null when there is no older message. */
        public ?string $cursor,
        /** Where the search paused for the work that it had cost: what is older was not looked at. Else null. */
        public ?\DateTimeImmutable $pausa,
    ) {
    }
}
