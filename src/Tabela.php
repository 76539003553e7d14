<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/**
 * An answer as rows of cells, the same for every format and every face. A cell is a number, Bytes, a text
 * in UTF-8, or null for what is not known; days, times and states are texts as formats for machines have them.
 */
final readonly class Tabela
{
    /** @var list<string> as in Rotulos */
    public array $colunas;

    /**
     * @param string $nome of the table in Rotulos
     * @param iterable<list<int|Bytes|string|null>> $linhas
     * @param bool $soma whether a table for people ends with a sum
     * @param array<string, \DateTimeImmutable> $abertos the days in it that are not over, as of EmAberto
     * @param ?list<string> $colunas when they are others than those of that table
     */
    public function __construct(
        public string $nome,
        public iterable $linhas,
        public bool $soma = false,
        public array $abertos = [],
        ?array $colunas = null,
    ) {
        $this->colunas = $colunas ?? Rotulos::colunas($nome);
    }

    /** @param array<string, \DateTimeImmutable> $abertos */
    public function comAbertos(array $abertos): self
    {
        return new self($this->nome, $this->linhas, $this->soma, $abertos, $this->colunas);
    }
}
