<?php

declare(strict_types=1);

namespace Vorna\Mrel\Formato;

use Vorna\Mrel\Formato;
use Vorna\Mrel\Tabela;

/** An object a row: one a line, or all of them in a list. What is not known is null. */
final readonly class Json implements Formato
{
    /** @param bool $porLinha an object a line and nothing around them (NDJSON) */
    public function __construct(private bool $porLinha = false)
    {
    }

    public function pedacos(Tabela $tabela): \Generator
    {
        $pedaco = $this->porLinha ? '' : '[';
        $antes = $this->porLinha ? '' : "\n";
        foreach ($tabela->linhas as $linha) {
            $pedaco .= $antes . self::texto(array_combine($tabela->colunas, $linha)) . ($this->porLinha ? "\n" : '');
            $antes = $this->porLinha ? '' : ",\n";
            if (strlen($pedaco) >= self::PEDACO) {
                yield $pedaco;
                $pedaco = '';
            }
        }
        yield $pedaco . ($this->porLinha ? '' : ($antes === "\n" ? "]\n" : "\n]\n"));
    }

    /** A value as JSON on one line, every control character escaped. */
    public static function texto(mixed $valor): string
    {
        return preg_replace_callback(
            '/\x7F|\xC2([\x80-\x9F])/',
            static fn (array $m): string => sprintf('\u%04x', ord($m[1] ?? $m[0])),
            json_encode($valor, JSON_UNESCAPED_UNICODE | JSON_UNESCAPED_SLASHES | JSON_THROW_ON_ERROR)
        );
    }
}
