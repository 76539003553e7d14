<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Linha\HoraDeUsuario;

/**
 * Adds up the counters of all users of some domains, for each period of an hour of a statistics file. Reads the
 * file directly, like Maiores: the extension answers for users who are named.
 */
final readonly class PorDominio
{
    private string $nome;
    /** Finds the beginnings of periods, and the lines of such users with their seven counters. */
    private string $linha;

    /**
     * @param non-empty-list<string> $dominios letter case aside
     * @param bool $semDominio whether names without a domain count too
     */
    public function __construct(array $dominios, bool $semDominio)
    {
        $this->nome = implode('; ', $dominios);
        $dominios = array_filter(array_map(Texto::latin1(...), $dominios), 'is_string');
        $nomes = '[^ \n]*@(?:' . implode('|', array_map(static fn (string $d) => preg_quote($d, '/'), $dominios)) . ')'
            . ($semDominio ? '|[^ \n@]+' : '');
        $this->linha = "/^(?:\\[(\\d+)\\]$|(?:$nomes)" . str_repeat(' (-?\d+)', 7) . '(?= |$))/mi';
    }

    /**
     * @return array<int, array{int, int, int, int, int, int, int}> by the period's beginning in Unix seconds: sent,
     *     its bytes, received, its bytes, viruses, spam, errors
     */
    private function horas(string $arquivo): array
    {
        $horas = [];
        $inicio = 0;
        $f = fopen($arquivo, 'rb');
        fgets($f);  // the day's totals
        while (($bloco = fread($f, 1 << 18)) !== '' && $bloco !== false) {
            preg_match_all($this->linha, $bloco . fgets($f), $achadas, PREG_SET_ORDER);
            foreach ($achadas as $m) {
                if (!isset($m[2])) {
                    $inicio = (int) $m[1];
                    $horas[$inicio] = array_fill(0, 7, 0);
                    continue;
                }
                foreach ($horas[$inicio] as $i => $n) {
                    $valor = (int) $m[$i + 2];
                    $horas[$inicio][$i] = $n + ($valor < 0 ? $valor + 0x100000000 : $valor);
                }
            }
        }
        fclose($f);
        return $horas;
    }

    /**
     * @param array<string, string> $arquivos statistics files by day
     * @return \Generator<int, HoraDeUsuario>
     */
    public function linhas(\DateTimeZone $fuso, array $arquivos, Transbordo $transbordo): \Generator
    {
        foreach ($arquivos as $dia => $arquivo) {
            foreach ($this->horas($arquivo) as $segundos => $contas) {
                [$enviadas, $bytesEnviados, $recebidas, $bytesRecebidos, $virus, $spam, $erros] = $contas;
                $inicio = (new \DateTimeImmutable("@$segundos"))->setTimezone($fuso);
                yield new HoraDeUsuario(
                    $this->nome,
                    $dia,
                    $inicio,
                    (int) $inicio->format('G'),
                    $enviadas,
                    $bytesEnviados,
                    $recebidas,
                    $bytesRecebidos,
                    $spam,
                    $virus,
                    $erros,
                    $transbordo->doDia($dia)
                );
            }
        }
    }
}
