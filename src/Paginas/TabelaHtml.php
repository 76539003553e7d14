<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Bytes;
use Vorna\Mrel\Formato\Quadro;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Tabela;

/** A table as a page shows it: texts for people, and beside each the value that a script sorts and draws by. */
final class TabelaHtml
{
    public readonly string $nome;
    /** @var list<array{nome: string, rotulo: string, numero: bool}> */
    public readonly array $colunas;
    /** @var list<list<array{texto: string, valor: ?string, classe: ?string, endereco: ?string}>> */
    public readonly array $linhas;
    /** @var list<string> the sum, where there is one */
    public readonly array $total;
    /** How a total that may have wrapped is explained; "" when none has. */
    public readonly string $incerto;

    /**
     * @param array<string, \Closure(list<mixed>): ?string> $ligacoes address behind a cell, by column, from its row
     * @param list<string> $sem columns that do not show
     */
    public function __construct(Tabela $tabela, string $lingua, array $ligacoes = [], array $sem = [])
    {
        $quadro = new Quadro($lingua);
        $quadro->comeca($tabela);
        $rotulos = new Rotulos($lingua);
        $colunas = array_diff($tabela->colunas, $sem);
        $linhas = $somas = $numeros = [];
        foreach ($tabela->linhas as $linha) {
            $celulas = [];
            foreach ($colunas as $i => $coluna) {
                $valor = $linha[$i];
                $texto = $quadro->celula($coluna, $valor);
                if (is_int($valor) || $valor instanceof Bytes) {
                    $numeros[$i] = true;
                }
                $celulas[] = [
                    'texto' => $texto,
                    'valor' => self::valor($valor, $texto),
                    'classe' => $coluna === 'estado' && is_string($valor) ? "e-$valor" : null,
                    'endereco' => isset($ligacoes[$coluna]) ? $ligacoes[$coluna]($linha) : null,
                ];
            }
            $linhas[] = $celulas;
            $tabela->soma && $somas = Quadro::soma($tabela->colunas, $somas, $linha);
        }
        $this->nome = $tabela->nome;
        $this->linhas = $linhas;
        $total = $tabela->soma && count($linhas) > 1 ? $quadro->total($tabela->colunas, $somas) : [];
        $this->total = $total ? ['Total', ...array_slice(array_values(array_intersect_key($total, $colunas)), 1)] : [];
        $this->colunas = array_values(array_map(static fn (string $c, int $i): array => [
            'nome' => $c,
            'rotulo' => $rotulos->coluna($tabela->nome, $c),
            'numero' => isset($numeros[$i]),
        ], $colunas, array_keys($colunas)));
        $this->incerto = $quadro->temIncertos() ? $rotulos->incerto() : '';
    }

    /**
     * What stands in a column, as formats for machines have it.
     *
     * @return list<string>
     */
    public function valores(string $coluna): array
    {
        $i = array_search($coluna, array_column($this->colunas, 'nome'), true);
        return array_map(static fn (array $l): string => $l[$i]['valor'] ?? $l[$i]['texto'], $this->linhas);
    }

    /** What a script goes by, where the text does not do: numbers, days and times. */
    private static function valor(int|string|Bytes|null $valor, string $texto): ?string
    {
        $bruto = (string) $valor;
        return $bruto !== $texto && (!is_string($valor) || preg_match('/^\d{4}-\d\d-\d\d(T[\d:+-]+)?$/D', $valor))
            ? $bruto : null;
    }
}
