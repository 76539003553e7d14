<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

/** What goes back to the browser. Every answer carries the headers that keep foreign content out. */
final readonly class Resposta
{
    private const SEGURANCA = [
        'Content-Security-Policy' => "default-src 'self'; img-src 'self' data:; frame-ancestors 'none'",
        'X-Content-Type-Options' => 'nosniff',
        'Referrer-Policy' => 'same-origin',
        // Mail data: nobody but the browser that asked keeps it, and it asks again.
        'Cache-Control' => 'private, no-cache',
    ];

    /** @var array<string, string> */
    public array $cabecalhos;

    /**
     * @param iterable<string> $corpo pieces of text, sent one behind the other
     * @param array<string, string> $cabecalhos besides those of every answer
     */
    public function __construct(public int $estado, public iterable $corpo, array $cabecalhos)
    {
        $this->cabecalhos = $cabecalhos + self::SEGURANCA;
    }

    public static function html(int $estado, string $corpo, array $cabecalhos = []): self
    {
        return new self($estado, [$corpo], $cabecalhos + ['Content-Type' => 'text/html; charset=utf-8']);
    }

    /** @param iterable<string> $corpo */
    public static function csv(string $arquivo, iterable $corpo): self
    {
        return new self(200, $corpo, [
            'Content-Type' => 'text/csv; charset=utf-8',
            'Content-Disposition' => "attachment; filename=\"$arquivo.csv\"",
        ]);
    }

    public function envia(bool $comCorpo = true): void
    {
        http_response_code($this->estado);
        foreach ($this->cabecalhos as $nome => $valor) {
            header("$nome: $valor");
        }
        if ($comCorpo) {
            foreach ($this->corpo as $pedaco) {
                echo $pedaco;
            }
        }
    }
}
