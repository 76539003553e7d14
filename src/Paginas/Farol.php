<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Linha\Totais;
use Vorna\Mrel\Saude\Nivel;

/** "Is all well?": one state, and the reasons for it. */
final class Farol
{
    /** Days before, to compare a day with; with fewer than MINIMO nothing is called unusual. */
    public const DIAS = 7;
    private const MINIMO = 3;
    /** A live log silent for so long, in seconds, is worth a look. */
    private const SILENCIO = 3600;

    public string $estado = 'ok';
    /** @var list<array{0: string, 1: array<string, string|int>}> texts with their values, the worst first */
    public array $razoes = [];

    /** @param ?list<Totais> $totais the day and those before it, oldest first; null to leave them out */
    public function __construct(Situacao $s, \Closure $dia, ?array $totais, string $lingua)
    {
        if ($s->falha !== null) {
            $this->diz('critico', 'farol.falha', ['frase' => $s->falha->frase($lingua)]);
            return;
        }
        $atraso = $s->atraso();
        match (true) {
            $atraso === null => $this->diz('critico', 'farol.nada', []),
            $atraso > 2 => $this->diz('critico', 'farol.parada', ['dia' => $dia($s->ultimo), 'n' => $atraso - 1]),
            $atraso === 2 => $this->diz('aviso', 'farol.atraso', ['dia' => $dia($s->ultimo)]),
            default => null,
        };
        foreach ($s->verificado?->problemas() ?? [] as $v) {
            $this->diz($v->nivel === Nivel::Critico ? 'critico' : 'aviso', 'farol.falha', ['frase' => $v->texto($lingua)]);
        }
        if ($s->lacunas && $atraso !== null && $atraso <= 2) {
            [$primeiro, $ultimo] = $s->lacunas[0];
            $this->diz('aviso', 'farol.lacuna', ['de' => $dia($primeiro), 'ate' => $dia($ultimo)]);
        }
        if ($s->log !== null && $s->agora->getTimestamp() - $s->log->getTimestamp() > self::SILENCIO) {
            $this->diz('aviso', 'farol.silencio', ['quando' => $dia($s->log->format('Y-m-d')) . ' ' . $s->log->format('H:i')]);
        }
        $totais !== null && $this->compara($totais);
        usort($this->razoes, static fn (array $a, array $b): int => $b[2] <=> $a[2]);
    }

    /** @param list<Totais> $totais */
    private function compara(array $totais): void
    {
        $hoje = array_pop($totais);
        $antes = array_slice($totais, -self::DIAS);
        if ($hoje === null || count($antes) < self::MINIMO) {
            return;
        }
        $media = static fn (\Closure $de): float => array_sum(array_map($de, $antes)) / count($antes);
        $todas = static fn (Totais $t): int => $t->internas + $t->externas;
        $movimento = $media($todas);
        if ($movimento > 0 && ($todas($hoje) < $movimento / 2 || $todas($hoje) > $movimento * 2)) {
            $this->diz('aviso', $todas($hoje) < $movimento ? 'farol.pouco' : 'farol.muito', [
                'p' => (int) round(100 * abs($todas($hoje) / $movimento - 1)),
            ]);
        }
        foreach (['comErro' => 'farol.erros', 'spam' => 'farol.spam', 'virus' => 'farol.virus'] as $campo => $texto) {
            $normal = $media(static fn (Totais $t): int => $t->$campo);
            // Small counts vary: what is twice as many must also be many.
            if ($hoje->$campo > 2 * $normal && $hoje->$campo - $normal > 0.01 * $todas($hoje)) {
                $this->diz('aviso', $texto, ['n' => $hoje->$campo, 'media' => (int) round($normal)]);
            }
        }
    }

    private function diz(string $nivel, string $texto, array $valores): void
    {
        $ordem = ['ok' => 0, 'aviso' => 1, 'critico' => 2];
        $this->razoes[] = [$texto, $valores, $ordem[$nivel]];
        if ($ordem[$nivel] > $ordem[$this->estado]) {
            $this->estado = $nivel;
        }
    }
}
