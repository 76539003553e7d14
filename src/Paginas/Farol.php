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
    private const SILENCIO = 6 * 3600;
    /** Checks are run at least daily; older ones say nothing of today. */
    private const VELHA = 36 * 3600;

    public string $estado = 'ok';
    /** @var list<array{0: string, 1: array<string, string|int>}> texts with their values, the worst first */
    public array $razoes = [];

    /**
     * @param \Closure(string): string $dia writes a day for people
     * @param ?list<Totais> $totais the day and those before it, oldest first; null to leave them out
     */
    public function __construct(Situacao $s, \Closure $dia, ?array $totais, string $lingua)
    {
        if ($s->falha !== null) {
            $this->diz('critico', 'farol.falha', ['frase' => $s->falha->frase($lingua)]);
            return;
        }
        $ditos = $this->verificado($s, $dia, $lingua);
        $atraso = $s->atraso();
        isset($ditos['ponto']) || match (true) {
            $atraso === null => $this->diz('critico', 'farol.nada', []),
            $atraso > 2 => $this->diz('critico', 'farol.parada', ['dia' => $dia($s->ultimo), 'n' => $atraso - 1]),
            $atraso === 2 => $this->diz('aviso', 'farol.atraso', ['dia' => $dia($s->ultimo)]),
            default => null,
        };
        if ($s->lacunas && $atraso !== null && $atraso <= 2 && !isset($ditos['dias'])) {
            [$primeiro, $ultimo] = $s->lacunas[0];
            $this->diz('aviso', 'farol.lacuna', ['de' => $dia($primeiro), 'ate' => $dia($ultimo)]);
        }
        if (
            $s->log !== null && $s->agora->getTimestamp() - $s->log->getTimestamp() > self::SILENCIO
            && !isset($ditos['logs'])
        ) {
            $this->diz('aviso', 'farol.silencio', ['quando' => self::quando($s->log, $dia)]);
        }
        $totais !== null && $this->compara($totais);
        usort($this->razoes, static fn (array $a, array $b): int => $b[2] <=> $a[2]);
    }

    /** @return array<string, true> the checks after which there is nothing more to say */
    private function verificado(Situacao $s, \Closure $dia, string $lingua): array
    {
        $v = $s->verificado;
        if ($v === null) {
            return [];
        }
        if ($s->agora->getTimestamp() - $v->quando->getTimestamp() > self::VELHA) {
            $this->diz('aviso', 'farol.velha', ['quando' => self::quando($v->quando, $dia)]);
            return [];
        }
        // That of the logs read their last line: it knows better than the file's time.
        $ditos = in_array('logs', array_column($v->verificacoes, 'nome'), true) ? ['logs' => true] : [];
        foreach ($v->problemas() as $problema) {
            $nivel = $problema->nivel === Nivel::Critico ? 'critico' : 'aviso';
            $this->diz($nivel, 'farol.falha', ['frase' => $problema->texto($lingua)]);
            $ditos[$problema->nome] = true;
        }
        return $ditos;
    }

    private static function quando(\DateTimeImmutable $t, \Closure $dia): string
    {
        return $dia($t->format('Y-m-d')) . ' ' . $t->format('H:i');
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
