<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

/** The texts of the pages, by name, from paginas/textos.php. Heads and definitions of columns are Rotulos'. */
final readonly class Textos
{
    /** @var array<string, array{string, string}> Portuguese, English */
    private array $textos;
    private int $i;

    /** @param string $lingua "pt" or "en" */
    public function __construct(string $lingua)
    {
        $this->textos = require dirname(__DIR__, 2) . '/paginas/textos.php';
        $this->i = $lingua === 'en' ? 1 : 0;
    }

    /**
     * @param array<string, string|int> $valores what stands for "{name}" in it; with "n" of 1, the text's singular
     *     ("name.1") where it has one
     */
    public function texto(string $nome, array $valores = []): string
    {
        if (($valores['n'] ?? null) === 1 && isset($this->textos["$nome.1"])) {
            $nome = "$nome.1";
        }
        $trocas = [];
        foreach ($valores as $chave => $valor) {
            $trocas["{{$chave}}"] = (string) $valor;
        }
        return strtr($this->textos[$nome][$this->i], $trocas);
    }
}
