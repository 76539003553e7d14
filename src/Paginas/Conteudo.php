<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

/** What a page has found: the data of its template. */
final readonly class Conteudo
{
    /** @param array<string, mixed> $dados */
    public function __construct(public array $dados = [], public int $estado = 200)
    {
    }
}
