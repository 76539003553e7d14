<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Falha;

/** The outcome of one check: how well, why, and what to do about it. Sentences are pairs: Portuguese, English. */
final readonly class Verificacao
{
    /**
     * @param string $nome "ponto", "dias" ...
     * @param array{string, string} $texto
     * @param array{string, string} $conselho both empty when there is nothing to do
     * @param list<array{string, string}> $detalhes what stands behind the reason, if it is much
     */
    public function __construct(
        public string $nome,
        public Nivel $nivel,
        private array $texto,
        private array $conselho = ['', ''],
        private array $detalhes = [],
    ) {
    }

    public static function ok(string $nome, string $texto, string $text): self
    {
        return new self($nome, Nivel::Ok, [$texto, $text]);
    }

    /** What could not be looked at. */
    public static function desconhecida(string $nome, Falha $porque): self
    {
        return new self($nome, Nivel::Desconhecido, [$porque->frase('pt'), $porque->frase('en')]);
    }

    /** The reason, in "pt" or "en". */
    public function texto(string $lingua): string
    {
        return $this->texto[$lingua === 'en' ? 1 : 0];
    }

    /** What to do; "" for nothing. */
    public function conselho(string $lingua): string
    {
        return $this->conselho[$lingua === 'en' ? 1 : 0];
    }

    /** @return list<string> what stands behind the reason */
    public function detalhes(string $lingua): array
    {
        return array_column($this->detalhes, $lingua === 'en' ? 1 : 0);
    }
}
