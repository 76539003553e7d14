<?php

declare(strict_types=1);

namespace Vorna\Mrel\Formato;

use Vorna\Mrel\Bytes;
use Vorna\Mrel\Formato;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Visivel;

/** A table of text for people, in their language, with a sum where one makes sense. */
final class Quadro implements Formato
{
    /** The widths come from so many rows; what is wider further down juts out, so that no table waits for its end. */
    private const MEDIDAS = 1000;

    private const INSTANTES = ['quando' => 1, 'inicio' => 1, 'submetida' => 1, 'encerrada' => 1];
    private const PALAVRAS = ['estado' => 1, 'estado_destinatario' => 1, 'sentido' => 1, 'tipo' => 1];
    /** Numbers that are names: nothing is added up, nothing is grouped. */
    private const ORDINAIS = ['hora' => 1, 'posicao' => 1, 'n' => 1];

    private readonly Rotulos $rotulos;
    private readonly Humano $humano;
    private bool $incertos = false;
    /** @var array<string, \DateTimeImmutable> */
    private array $abertos = [];

    public function __construct(private readonly string $lingua = 'pt')
    {
        $this->rotulos = new Rotulos($lingua);
        $this->humano = new Humano($lingua);
    }

    public function pedacos(Tabela $tabela): \Generator
    {
        $this->comeca($tabela);
        $colunas = $tabela->colunas;
        $linhas = [];
        $larguras = $direita = null;
        $somas = [];
        $quantas = 0;
        foreach ($tabela->linhas as $linha) {
            ++$quantas;
            $linhas[] = $this->celulas($colunas, $linha);
            $tabela->soma && $somas = self::soma($colunas, $somas, $linha);
            $direita ??= array_map(static fn (mixed $v): bool => is_int($v) || $v instanceof Bytes, $linha);
            if (count($linhas) === self::MEDIDAS) {
                $inicio = $larguras === null;
                $larguras ??= $this->larguras($tabela, $linhas);
                yield ($inicio ? $this->cabeca($tabela, $larguras, $direita) : '')
                    . self::texto($linhas, $larguras, $direita);
                $linhas = [];
            }
        }
        $direita ??= array_fill(0, count($colunas), false);
        if ($tabela->soma && $quantas > 1) {
            $linhas[] = null;
            $linhas[] = $this->total($colunas, $somas);
        }
        $inicio = $larguras === null;
        $larguras ??= $this->larguras($tabela, $linhas);
        yield ($inicio ? $this->cabeca($tabela, $larguras, $direita) : '') . self::texto($linhas, $larguras, $direita);
        if ($this->incertos) {
            yield '* ' . $this->rotulos->incerto() . "\n";
        }
        foreach ($tabela->abertos as $dia => $ate) {
            yield $this->rotulos->naoTerminou($this->humano->dia($dia), $ate) . "\n";
        }
    }

    /**
     * Rows of texts without a head of their own: names and values, as of one message.
     *
     * @param array<string, string> $campos value by name
     */
    public static function ficha(array $campos): string
    {
        $largura = max(array_map(self::largura(...), array_keys($campos)));
        $texto = '';
        foreach ($campos as $nome => $valor) {
            $texto .= rtrim($nome . str_repeat(' ', $largura - self::largura($nome)) . "  $valor") . "\n";
        }
        return $texto;
    }

    /** A cell of a column as people read it. */
    public function celula(string $coluna, int|string|Bytes|null $valor): string
    {
        if ($valor instanceof Bytes) {
            $incerto = $valor->incertos();
            $this->incertos = $this->incertos || $incerto;
            return $this->humano->tamanho($valor->n) . ($incerto ? ' *' : '');
        }
        if ($valor === null || $valor === '') {
            return '';
        }
        if (is_int($valor)) {
            return match (true) {
                str_starts_with($coluna, 'bytes') => $this->humano->tamanho($valor),
                isset(self::ORDINAIS[$coluna]) => (string) $valor,
                default => $this->humano->numero($valor),
            };
        }
        return match (true) {
            $coluna === 'dia' => $this->dia($valor),
            isset(self::INSTANTES[$coluna]) => $this->humano->instante($valor),
            isset(self::PALAVRAS[$coluna]) => $this->rotulos->valor($valor),
            default => Visivel::texto($valor),
        };
    }

    private function dia(string $dia): string
    {
        $ate = $this->abertos[$dia] ?? null;
        return $this->humano->dia($dia) . ($ate === null ? '' : " ({$this->rotulos->ate($ate)})");
    }

    private function celulas(array $colunas, array $linha): array
    {
        return array_map($this->celula(...), $colunas, $linha);
    }

    /** Cells are those of this table from now on. */
    public function comeca(Tabela $tabela): void
    {
        $this->incertos = false;
        $this->abertos = $tabela->abertos;
    }

    /** Whether a cell was marked as uncertain since the last table began. */
    public function temIncertos(): bool
    {
        return $this->incertos;
    }

    /**
     * Adds a row to the sums of columns; numbers that are names are left out.
     *
     * @param list<string> $colunas
     * @param array<int, int|Bytes> $somas so far, by the column's place
     * @param list<int|Bytes|string|null> $linha
     * @return array<int, int|Bytes>
     */
    public static function soma(array $colunas, array $somas, array $linha): array
    {
        foreach ($linha as $i => $valor) {
            if ($valor instanceof Bytes) {
                $antes = $somas[$i] ?? null;
                $somas[$i] = new Bytes(
                    ($antes->n ?? 0) + $valor->n,
                    static fn (): bool => $antes?->incertos() || $valor->incertos()
                );
            } elseif (is_int($valor) && !isset(self::ORDINAIS[$colunas[$i]])) {
                $somas[$i] = ($somas[$i] ?? 0) + $valor;
            }
        }
        return $somas;
    }

    /**
     * The row of the sums as people read it.
     *
     * @param list<string> $colunas
     * @param array<int, int|Bytes> $somas
     * @return list<string>
     */
    public function total(array $colunas, array $somas): array
    {
        $celulas = [];
        foreach ($colunas as $i => $coluna) {
            $celulas[] = $i === 0 ? 'Total' : $this->celula($coluna, $somas[$i] ?? null);
        }
        return $celulas;
    }

    private function larguras(Tabela $tabela, array $linhas): array
    {
        $larguras = array_map(fn (string $c): int => self::largura($this->titulo($tabela, $c)), $tabela->colunas);
        foreach (array_filter($linhas) as $linha) {
            foreach ($linha as $i => $celula) {
                $larguras[$i] = max($larguras[$i], self::largura($celula));
            }
        }
        return $larguras;
    }

    private function titulo(Tabela $tabela, string $coluna): string
    {
        return $this->rotulos->coluna($tabela->nome, $coluna);
    }

    private function cabeca(Tabela $tabela, array $larguras, array $direita): string
    {
        $titulos = array_map(fn (string $c): string => $this->titulo($tabela, $c), $tabela->colunas);
        return self::texto([$titulos, null], $larguras, $direita);
    }

    /** Lines of text; null draws a line. */
    private static function texto(array $linhas, array $larguras, array $direita): string
    {
        $texto = '';
        foreach ($linhas as $linha) {
            if ($linha === null) {
                $texto .= implode('──', array_map(static fn (int $n): string => str_repeat('─', $n), $larguras)) . "\n";
                continue;
            }
            $celulas = [];
            foreach ($linha as $i => $celula) {
                $vazio = str_repeat(' ', max(0, $larguras[$i] - self::largura($celula)));
                $celulas[] = $direita[$i] ? $vazio . $celula : $celula . $vazio;
            }
            $texto .= rtrim(implode('  ', $celulas), ' ') . "\n";
        }
        return $texto;
    }

    /** Columns that a UTF-8 text takes: its characters, none of which is wide in ISO-8859-1. */
    private static function largura(string $texto): int
    {
        return strlen(preg_replace('/[\x80-\xBF]/', '', $texto));
    }
}
