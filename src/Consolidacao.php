<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\DadosInacessiveis;
use Vorna\Mrel\Falha\NaoConsolidado;
use Vorna\Mrel\Linha\Consolidado;

/**
 * One consolidation seen from outside. The engine answers the same whatever happened, so point and day
 * files are compared: this object remembers those before, resultado() looks at those after.
 * The run itself is another process's, which then has the lock no longer than it runs: executa().
 */
final class Consolidacao
{
    private readonly string $hoje;
    private readonly ?string $ponto;
    /** @var array<string, string> what shows a change, by day */
    private readonly array $antes;
    /** @var list<string> paths, in the order of reading */
    private array $logs = [];
    private string $diretorio;
    private ?NaoConsolidado $obstaculo = null;

    /**
     * @param bool $forcada up to this moment, without moving the point
     * @param bool $ateAgora likewise, and without readers noticing: AteAgora
     * @param ?\Closure(): string $logs makes the log directory once there is use in it; without it the relay's
     * @throws DadosInacessiveis when neither the data directory nor the one above it can be used
     */
    public function __construct(
        private readonly Relay $relay,
        private readonly bool $forcada = false,
        private readonly bool $ateAgora = false,
        ?\Closure $logs = null,
    ) {
        Motor::exige();
        $this->hoje = (new \DateTimeImmutable())->setTimezone($relay->fuso)->format('Y-m-d');
        $this->ponto = Ponto::dia($relay->ponto);
        $this->antes = $this->marcas();
        $this->diretorio = (string) $relay->logs;
        try {
            // The logs come first, as what is wrong with them can be mended at once; but not what costs time.
            $logs === null && $this->logs = (new Logs($this->diretorio))->aLer($this->ponto);
            $this->obstaculo = $this->procuraObstaculo();
            if ($logs !== null && $this->obstaculo === null) {
                $this->diretorio = $logs();
                $this->logs = (new Logs($this->diretorio))->aLer($this->ponto);
            }
        } catch (NaoConsolidado $e) {
            $this->obstaculo = $e;
        }
        $this->obstaculo === null && self::esperaOutroSegundo($this->antes);
    }

    /** Where the logs are that it reads. */
    public function diretorioDosLogs(): string
    {
        return $this->diretorio;
    }

    /** Whether there is any use in running it. */
    public function vale(): bool
    {
        return $this->obstaculo === null;
    }

    /** @return array<string, int> size of each log that it will read, by path, in the order of reading */
    public function tamanhos(): array
    {
        return array_combine($this->logs, array_map('filesize', $this->logs));
    }

    /** Consolidates, in this process. */
    public static function executa(Relay $relay, bool $forcada): void
    {
        Motor::exige();
        putenv('TZ=' . $relay->fuso->getName());
        $mrel = new \vt_mrel();
        if (!$mrel->setLogDir((string) $relay->logs)) {
            throw DadosInacessiveis::recusado((string) $relay->logs);
        }
        if (!$mrel->setDataDir($relay->dados)) {
            throw DadosInacessiveis::recusado($relay->dados);
        }
        $forcada && $mrel->setForceMode();
        $mrel->consolidate((string) $relay->ponto);
    }

    /**
     * What has come of it.
     *
     * @param ?int $sinal that ended the process which ran it
     * @param string $erros what that process had to say
     * @param bool $bem whether it ended well all the same
     */
    public function resultado(?int $sinal = null, string $erros = '', bool $bem = false): Consolidado
    {
        clearstatcache();
        $depois = $this->marcas();
        $dias = array_map('strval', array_keys(array_diff_assoc($depois, $this->antes)));
        $ponto = Ponto::dia($this->relay->ponto);
        return new Consolidado(
            $dias,
            $dias ? Logs::linhas($this->logs, $dias[0], end($dias)) : 0,
            $ponto === null ? null : new \DateTimeImmutable("$ponto 00:00", $this->relay->fuso),
            $this->obstaculo ?? $this->motivo($dias, $ponto, $sinal, $erros, $bem),
        );
    }

    private function procuraObstaculo(): ?NaoConsolidado
    {
        $dono = Trava::dono();
        return match (true) {
            $this->ponto !== null && $this->ponto > $this->hoje => NaoConsolidado::futuro($this->ponto),
            $this->ponto === $this->hoje && !$this->atualiza() => NaoConsolidado::emDia($this->hoje),
            $dono !== null => NaoConsolidado::ocupado($dono, $this->ateAgora),
            Trava::recusa() => NaoConsolidado::travaAlheia(Trava::ARQUIVO),
            is_dir($this->relay->dados) && !is_writable($this->relay->dados)
                => NaoConsolidado::semEscrita($this->relay->dados),
            default => null,
        };
    }

    /** Whether it goes beyond today's midnight. */
    private function atualiza(): bool
    {
        return $this->forcada || $this->ateAgora;
    }

    /** @param list<string> $dias */
    private function motivo(array $dias, ?string $ponto, ?int $sinal, string $erros, bool $bem): ?NaoConsolidado
    {
        if ($sinal !== null) {
            return NaoConsolidado::interrompido($sinal);
        }
        if ($erros !== '') {
            return $this->ateAgora ? NaoConsolidado::dito($erros, $bem) : NaoConsolidado::motor($erros);
        }
        if (!$dias && $ponto === $this->ponto && ($dono = Trava::dono()) !== null) {
            return NaoConsolidado::ocupado($dono);
        }
        $arquivos = new Dias($this->relay->dados);
        $vazios = array_filter(
            $dias,
            fn (string $dia): bool => $dia < $this->hoje
                && (int) @filesize($arquivos->caminho(Dias::COMPACTO, $dia)) === 0
        );
        if ($vazios) {
            return NaoConsolidado::diasVazios(array_values($vazios));
        }
        if ($this->atualiza()) {
            return $dias ? null : NaoConsolidado::nadaEscrito();
        }
        return match (true) {
            $ponto === $this->hoje => null,
            $ponto !== null && $dias && !(new Logs($this->diretorio))->chegouA($this->hoje)
                => NaoConsolidado::naoTerminou($ponto),
            default => NaoConsolidado::ficou($ponto),
        };
    }

    /** @return array<string, string> of each day, what changes when a file of it is written */
    private function marcas(): array
    {
        $dados = $this->relay->dados;
        if (!file_exists($dados) && is_dir(dirname($dados))) {
            return [];  // the engine makes it
        }
        $arquivos = new Dias($dados);
        $marcas = [];
        foreach ($arquivos->todos() as $dia) {
            $marca = '';
            foreach ([Dias::ESTATISTICA, Dias::COMPACTO] as $tipo) {
                $s = @stat($arquivos->caminho($tipo, $dia));
                $marca .= $s ? "$s[mtime] $s[size] $s[ino] " : '- ';
            }
            $marcas[$dia] = $marca;
        }
        return $marcas;
    }

    /** Times of files are told in seconds: one written in this second would look the same when written again. */
    private static function esperaOutroSegundo(array $marcas): void
    {
        foreach ($marcas as $marca) {
            if (preg_match_all('/(\d+) \d+ \d+ /', $marca, $m) && max(array_map('intval', $m[1])) >= time()) {
                usleep(1_020_000 - (int) (fmod(microtime(true), 1) * 1_000_000));
                return;
            }
        }
    }
}
