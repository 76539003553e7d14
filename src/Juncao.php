<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\NaoConsolidado;

/**
 * The dispatcher's logs from the point on as one, as if it had never been rotated: plain and compressed
 * ones, in the order of their first lines, copies left out.
 */
final class Juncao
{
    private const VEZES = 3;

    private readonly Logs $logs;
    private readonly ?string $ponto;
    private int $tamanhoDoVivo = 0;

    public function __construct(private readonly Relay $relay)
    {
        $this->logs = new Logs((string) $relay->logs);
        $dia = Ponto::dia($relay->ponto);
        $this->ponto = $dia === null ? null : "$dia 00:00:00";
    }

    /**
     * Writes them into a directory as its live log. Begun anew if they are rotated meanwhile.
     *
     * @param \Closure(int, int, int): void $avisa told the number of logs, the bytes that they take at most,
     *   and how many there are left, before any is taken
     * @throws NaoConsolidado when a log cannot be read whole, when there is no space, or nothing to read
     */
    public function escreve(string $diretorio, \Closure $avisa): void
    {
        for ($vez = 1; $vez <= self::VEZES; ++$vez) {
            $antes = $this->vistos();
            $logs = $this->escolhe(array_keys($antes));
            $bytes = array_sum(array_map(static fn (LogBruto $log): int => $log->tamanho(), $logs));
            $livres = (int) disk_free_space($diretorio);
            $vez === 1 && $avisa(count($logs), $bytes, $livres);
            $bytes < $livres || throw NaoConsolidado::semEspaco($diretorio, $bytes, $livres);
            $escrita = new EscritaDeLog("$diretorio/" . Logs::VIVO, $this->ponto);
            array_map($escrita->acrescenta(...), $logs);
            $escritos = $escrita->termina();
            if ($this->paradosDesde($antes)) {
                $escritos > 0 || throw NaoConsolidado::semLog($this->logs->vivo());
                return;
            }
        }
        throw NaoConsolidado::giramSempre((string) $this->relay->logs);
    }

    /**
     * The logs in their order, from the one that holds the point.
     *
     * @param list<string> $arquivos
     * @return list<LogBruto>
     */
    private function escolhe(array $arquivos): array
    {
        $inicios = [];
        foreach ($arquivos as $arquivo) {
            $inicio = self::inicio(new LogBruto($arquivo));
            if ($inicio !== null) {
                $inicios[$inicio][] = $arquivo;
            }
        }
        ksort($inicios, SORT_STRING);
        $antes = array_filter(array_keys($inicios), fn (string $i): bool => $this->ponto !== null && $i <= $this->ponto);
        $logs = [];
        foreach (array_slice($inicios, max(0, count($antes) - 1)) as $juntos) {
            array_push($logs, ...$this->semCopias($juntos));
        }
        return $logs;
    }

    /**
     * Of logs that begin in the same second those that are no copies, in the order of their ends; the live
     * one last.
     *
     * @param list<string> $arquivos
     * @return list<LogBruto>
     */
    private function semCopias(array $arquivos): array
    {
        $logs = array_map(static fn (string $arquivo): LogBruto => new LogBruto($arquivo), $arquivos);
        if (count($logs) === 1) {
            return $logs;
        }
        $vivo = $this->logs->vivo();
        // The live one first: of two that are the same it is the one that stays.
        usort($logs, static fn (LogBruto $a, LogBruto $b): int => ($b->arquivo === $vivo) <=> ($a->arquivo === $vivo));
        foreach ($logs as $i => $log) {
            foreach ($logs as $j => $outro) {
                if ($i !== $j && $log->comeca($outro) && ($i > $j || !$outro->comeca($log))) {
                    unset($logs[$i]);
                    break;
                }
            }
        }
        $ordem = [];
        foreach ($logs as $log) {
            $ordem[$log->arquivo] = [$log->arquivo === $vivo, self::fim($log), $log->arquivo];
        }
        usort($logs, static fn (LogBruto $a, LogBruto $b): int => $ordem[$a->arquivo] <=> $ordem[$b->arquivo]);
        return $logs;
    }

    /** The first stamp, though it be behind the rest of a line that a rotation cut through. */
    private static function inicio(LogBruto $log): ?string
    {
        $texto = '';
        foreach ($log->blocos() as $bloco) {
            $texto .= $bloco;
            if (substr_count($texto, "\n") > 1) {
                break;
            }
        }
        [$primeira, $segunda] = explode("\n", $texto, 3) + ['', ''];
        return Logs::quando($primeira) ?? (str_contains($primeira, "\0") ? null : Logs::quando($segunda));
    }

    private static function fim(LogBruto $log): string
    {
        $fim = $resto = '';
        foreach ($log->blocos() as $bloco) {
            $linhas = explode("\n", substr($resto . $bloco, -8192));
            $resto = array_pop($linhas);
            foreach ($linhas as $linha) {
                $fim = Logs::quando($linha) ?? $fim;
            }
        }
        return $fim;
    }

    /** @return array<string, string> what shows a change, by path */
    private function vistos(): array
    {
        $vistos = [];
        foreach ($this->logs->todos() as $arquivo) {
            clearstatcache(true, $arquivo);
            $s = @stat($arquivo) ?: ['ino' => 0, 'size' => 0];
            $vistos[$arquivo] = "$s[ino] " . ($arquivo === $this->logs->vivo() ? '' : $s['size']);
            $this->tamanhoDoVivo = $arquivo === $this->logs->vivo() ? $s['size'] : $this->tamanhoDoVivo;
        }
        return $vistos;
    }

    /** Whether they are those of before; the live one may have grown. */
    private function paradosDesde(array $antes): bool
    {
        $vivo = $this->tamanhoDoVivo;
        return $this->vistos() === $antes && $this->tamanhoDoVivo >= $vivo;
    }
}
