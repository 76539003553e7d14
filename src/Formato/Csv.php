<?php

declare(strict_types=1);

namespace Vorna\Mrel\Formato;

use Vorna\Mrel\Bytes;
use Vorna\Mrel\Formato;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Visivel;

/**
 * Comma separated values as RFC 4180 has them, but lines end in LF; or as a spreadsheet of this part of the
 * world opens them: semicolons, byte order mark, CR LF, decimal comma, control characters as pictures, and
 * no text that it would take for a formula.
 */
final readonly class Csv implements Formato
{
    private string $separador;
    private string $fim;
    /** Characters for which a cell is put between quotes. */
    private string $especiais;

    public function __construct(private bool $planilha = false)
    {
        $this->separador = $planilha ? ';' : ',';
        $this->fim = $planilha ? "\r\n" : "\n";
        $this->especiais = $this->separador . "\"\r\n";
    }

    public function pedacos(Tabela $tabela): \Generator
    {
        $pedaco = ($this->planilha ? "\u{FEFF}" : '') . implode($this->separador, $tabela->colunas) . $this->fim;
        $separadores = count($tabela->colunas) - 1;
        foreach ($tabela->linhas as $linha) {
            // Hardly any line has a cell that needs more than to be joined with the others.
            $texto = implode($this->separador, $linha);
            if (
                $this->planilha || strpbrk($texto, "\"\r\n") !== false
                || substr_count($texto, $this->separador) !== $separadores
            ) {
                $texto = implode($this->separador, array_map($this->celula(...), $linha));
            }
            $pedaco .= $texto . $this->fim;
            if (strlen($pedaco) >= self::PEDACO) {
                yield $pedaco;
                $pedaco = '';
            }
        }
        yield $pedaco;
    }

    private function celula(int|float|string|Bytes|null $valor): string
    {
        if ($this->planilha && is_float($valor)) {
            return strtr((string) $valor, '.', ',');
        }
        $texto = (string) $valor;
        if ($this->planilha && is_string($valor)) {
            // For people: programs get every byte as it is.
            $texto = Visivel::linhas($texto);
            if ($texto !== '' && strpos('=+-@', $texto[0]) !== false) {
                $texto = "'$texto";
            }
        }
        return strpbrk($texto, $this->especiais) === false ? $texto : '"' . str_replace('"', '""', $texto) . '"';
    }
}
