<?php

declare(strict_types=1);

namespace Vorna\Mrel\Correio;

use Vorna\Mrel\Bytes;
use Vorna\Mrel\Contador;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Relatorios;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Saude\Resultado;
use Vorna\Mrel\Saude\Verificador;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** What the mailed report tells: one day against the week before it, the largest senders, how the relay is. */
final readonly class RelatorioDiario
{
    private const SEMANA = 7;
    private const MAIORES = 10;

    public string $dia;
    /** How many of the seven days before it have files. */
    public int $comparados;
    /** Messages of local and other senders; null when the day has no files. */
    public ?int $mensagens;
    /** A row "dia"; one "media" and one "diferenca" (texts such as "+12%") when there is something to compare with. */
    public Tabela $comparacao;
    /** The days themselves. */
    public Tabela $semana;
    public Tabela $maiores;
    public Resultado $saude;

    public function __construct(public Relay $relay, Periodo $dia)
    {
        $relatorios = new Relatorios($relay);
        $this->dia = $dia->ultimo;
        $linhas = iterator_to_array(Tabelas::dias($relatorios->totais($dia->alargado(self::SEMANA)))->linhas, false);
        $este = $linhas && end($linhas)[0] === $this->dia ? array_pop($linhas) : null;
        $this->comparados = count($linhas);
        $this->mensagens = $este === null ? null : $este[1] + $este[3];
        $this->comparacao = new Tabela('dias', self::compara($este, $linhas));
        $this->semana = new Tabela('dias', $este === null ? $linhas : [...$linhas, $este], true);
        $maiores = $relatorios->topo($dia, Contador::Enviadas, self::MAIORES);
        // Written twice, as text and as HTML: a list.
        $this->maiores = new Tabela('topo', iterator_to_array(Tabelas::topo($maiores, Contador::Enviadas, false)->linhas, false));
        // What the configuration does not name cannot be checked, and is no trouble of the relay.
        $sem = array_keys(array_filter(['ponto' => ($relay->ponto ?? '') === '', 'logs' => ($relay->logs ?? '') === '']));
        $this->saude = (new Verificador($relay))->resultado($sem);
    }

    /**
     * @param ?list<mixed> $este
     * @param list<list<mixed>> $antes
     * @return list<list<mixed>>
     */
    private static function compara(?array $este, array $antes): array
    {
        if ($este === null || !$antes) {
            return $este === null ? [] : [$este];
        }
        $media = ['media'];
        $diferenca = ['diferenca'];
        foreach (array_slice($este, 1, null, true) as $i => $valor) {
            $soma = 0;
            foreach ($antes as $linha) {
                $soma += $linha[$i] instanceof Bytes ? $linha[$i]->n : $linha[$i];
            }
            $m = $soma / count($antes);
            $v = $valor instanceof Bytes ? $valor->n : $valor;
            $media[] = $valor instanceof Bytes ? new Bytes((int) round($m), self::algumIncerto($antes, $i)) : (int) round($m);
            $diferenca[] = $m > 0 ? sprintf('%+d%%', round(($v - $m) / $m * 100)) : null;
        }
        return [$este, $media, $diferenca];
    }

    private static function algumIncerto(array $linhas, int $i): \Closure
    {
        return static function () use ($linhas, $i): bool {
            foreach ($linhas as $linha) {
                if ($linha[$i]->incertos()) {
                    return true;
                }
            }
            return false;
        };
    }
}
