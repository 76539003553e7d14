<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/**
 * Adds up one counter of the statistics files by user or by domain. Reads the files directly: the
 * extension answers for users who are named, not for all of them.
 */
final class Maiores
{
    /** The counter's place on a user's line, behind his name. */
    private const CAMPO = [
        'enviadas' => 1,
        'bytes_enviados' => 2,
        'recebidas' => 3,
        'bytes_recebidos' => 4,
        'virus' => 5,
        'spam' => 6,
        'erros' => 7,
    ];

    /** Finds the lines with a counter that is not 0: the name and the counter. */
    private readonly string $linha;
    /** @var array<string, int> by name, as spelt */
    private array $somas = [];
    /** @var array<string, int> how often each spelling was met */
    private array $vezes = [];

    /**
     * @param list<string> $locais local domains
     * @param ?\Closure(string): bool $so whether a name, in UTF-8, counts; null for all
     */
    public function __construct(
        private readonly array $locais,
        Contador $por,
        private readonly bool $dominios,
        private readonly ?\Closure $so = null,
    ) {
        // A pattern, since it is three times as fast as cutting every line into pieces.
        $this->linha = '/^([^ \n]+)' . str_repeat(' -?\d+', self::CAMPO[$por->value] - 1)
            . ' (-?[1-9]\d*)(?= |$)/m';
    }

    /** Adds a day's file. */
    public function soma(string $arquivo): void
    {
        $somas = &$this->somas;
        $vezes = &$this->vezes;
        $f = fopen($arquivo, 'rb');
        fgets($f);  // the day's totals
        while (($bloco = fread($f, 1 << 18)) !== '' && $bloco !== false) {
            preg_match_all($this->linha, $bloco . fgets($f), $achadas);
            $valores = $achadas[2];
            foreach ($achadas[1] as $i => $nome) {
                $valor = (int) $valores[$i];
                if ($valor < 0) {
                    $valor += 0x100000000;  // written signed, counted without a sign
                }
                if (isset($somas[$nome])) {
                    $somas[$nome] += $valor;
                    ++$vezes[$nome];
                } else {
                    $somas[$nome] = $valor;
                    $vezes[$nome] = 1;
                }
            }
        }
        fclose($f);
    }

    /** @return array<string, int> the $n largest, by name, ISO-8859-1 */
    public function primeiros(int $n): array
    {
        [$valores, $grafias] = $this->reune();
        $nomes = array_map(self::maisVista(...), $grafias);
        $chaves = array_map('strval', array_keys($valores));
        array_multisort(array_values($valores), SORT_DESC, SORT_NUMERIC, $chaves, SORT_ASC, SORT_STRING);
        $primeiros = [];
        foreach (array_slice($chaves, 0, $n) as $chave) {
            $primeiros[$nomes[$chave]] = $valores[$chave];
        }
        return $primeiros;
    }

    /** @return array{array<string, int>, array<string, array<string, int>>} sums and spellings, by folded name */
    private function reune(): array
    {
        $valores = $grafias = [];
        foreach ($this->somas as $nome => $valor) {
            $nome = (string) $nome;
            if ($this->so !== null && !($this->so)(Texto::utf8($nome))) {
                continue;
            }
            $mostrado = $this->mostrado($nome);
            if ($mostrado === '') {
                continue;
            }
            $chave = strtolower($mostrado);
            $valores[$chave] = ($valores[$chave] ?? 0) + $valor;
            $grafias[$chave][$mostrado] = ($grafias[$chave][$mostrado] ?? 0) + $this->vezes[$nome];
        }
        return [$valores, $grafias];
    }

    private function mostrado(string $nome): string
    {
        if ($nome === '') {
            return '';
        }
        $arroba = strpos($nome, '@');
        $local = count($this->locais) === 1 ? Texto::latin1($this->locais[0]) : null;
        if ($this->dominios) {
            return $arroba === false ? $local ?? '(local)' : substr($nome, $arroba + 1);
        }
        return $arroba === false && $local !== null ? "$nome@$local" : $nome;
    }

    /** The spelling met most often; of those met as often the first by its bytes. */
    private static function maisVista(array $vezes): string
    {
        $mais = array_map('strval', array_keys($vezes, max($vezes)));
        sort($mais, SORT_STRING);
        return $mais[0];
    }
}
