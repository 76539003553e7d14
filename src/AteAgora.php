<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\NaoConsolidado;
use Vorna\Mrel\Saude\Arquivos;

/**
 * A consolidation up to this moment that readers and the daily run do not notice: made in a scratch
 * directory, from a copy of the point, then renamed into place file by file.
 *
 * The engine's lock is this process's from its first run to the end of the process. So nobody else writes
 * day files while these are renamed.
 */
final class AteAgora
{
    private const VEZES = 3;
    /** What must still fit on the disk when all is written: a full one cuts files short without a word. */
    private const SONDA = 1 << 20;

    private readonly Dias $dias;
    private readonly string $logs;
    private readonly int $inicio;

    private function __construct(private readonly Relay $relay, private readonly Rascunho $rascunho)
    {
        $this->inicio = time();
        $this->dias = new Dias(realpath($relay->dados));
        $logs = (string) $relay->logs;
        $this->logs = str_starts_with($logs, '/') ? $logs : getcwd() . "/$logs";
    }

    /**
     * Consolidates, in this process.
     *
     * @throws NaoConsolidado when nothing was changed, for one reason or another
     */
    public static function executa(Relay $relay): void
    {
        Motor::exige();
        self::recusaRoot($relay->dados);
        $rascunho = Rascunho::abre($relay->dados, Rascunho::AGORA) ?? throw NaoConsolidado::ocupado('', true);
        try {
            $esta = new self($relay, $rascunho);
            $esta->publica($esta->consolida());
        } finally {
            $rascunho->apaga();
        }
    }

    /** @return list<string> the days that are to be replaced, whole in the scratch directory */
    private function consolida(): array
    {
        for ($vez = 1; $vez <= self::VEZES; ++$vez) {
            $this->rascunho->esvazia();
            $ponto = $this->ponto();
            // From within, so that a long path is no obstacle: the engine takes no more than 127 bytes.
            $aqui = getcwd();
            chdir($this->rascunho->caminho);
            $ponto === null || file_put_contents('ponto', $ponto);
            $relay = new Relay('.', logs: $this->logs, ponto: 'ponto', fuso: $this->relay->fuso);
            Consolidacao::executa($relay, true);
            chdir($aqui);
            $feitos = (new Dias($this->rascunho->caminho))->todos();
            // Only now the lock is ours, and with it the point stands still.
            if ($feitos && $this->ponto() === $ponto) {
                $this->chegou($feitos) || throw NaoConsolidado::discoCheio($this->rascunho->caminho);
                return $this->escolhe($feitos);
            }
            if (($dono = Trava::dono()) !== null && !Trava::minha()) {
                throw NaoConsolidado::ocupado($dono, true);
            }
        }
        throw NaoConsolidado::nadaEscrito();
    }

    /** The engine stops at what it cannot write, without a word: then the day that the log has come to is missing. */
    private function chegou(array $feitos): bool
    {
        $hoje = (new \DateTimeImmutable("@$this->inicio"))->setTimezone($this->relay->fuso)->format('Y-m-d');
        return end($feitos) >= $hoje || !(new Logs($this->logs))->chegouA($hoje);
    }

    private function ponto(): ?string
    {
        Ponto::dia($this->relay->ponto);  // throws when it is there but cannot be read
        $ponto = @file_get_contents((string) $this->relay->ponto);
        return $ponto === false ? null : $ponto;
    }

    /**
     * Without a point a run begins with the oldest log, which may hold but half of its day: then only days
     * that have no files yet, or are not over, are replaced.
     *
     * @param list<string> $feitos
     * @return list<string>
     */
    private function escolhe(array $feitos): array
    {
        $ponto = Ponto::dia($this->relay->ponto);
        $ha = array_flip($this->dias->todos());
        $abertos = new EmAberto($this->relay);
        return array_values(array_filter($feitos, static fn (string $dia): bool => $ponto !== null
            ? $dia >= $ponto : !isset($ha[$dia]) || $abertos->ate($dia) !== null));
    }

    /**
     * Everything is looked at before the first file is renamed. Oldest day first; of a day the events before
     * the statistics, as the engine writes them: no counter ever speaks of mail that cannot be found.
     *
     * @param list<string> $dias
     */
    private function publica(array $dias): void
    {
        $novos = new Dias($this->rascunho->caminho);
        if (@file_put_contents("{$this->rascunho->caminho}/sonda", str_repeat("\0", self::SONDA)) !== self::SONDA) {
            throw NaoConsolidado::discoCheio($this->rascunho->caminho);
        }
        $pares = [];
        foreach ($dias as $dia) {
            $estatistica = $novos->caminho(Dias::ESTATISTICA, $dia);
            $compacto = $novos->caminho(Dias::COMPACTO, $dia);
            is_file($estatistica) && Arquivos::estatistica($estatistica) === null
                || throw NaoConsolidado::discoCheio($this->rascunho->caminho);
            $pares[$compacto] = $this->alvo($compacto, Dias::COMPACTO, $dia);
            $pares[$estatistica] = $this->alvo($estatistica, Dias::ESTATISTICA, $dia);
            $this->naoEncolhe($dia, $compacto, $pares[$compacto]);
        }
        foreach ($pares as $novo => $alvo) {
            touch($novo, $this->inicio);  // until when it tells: what came later may be missing
            @rename($novo, $alvo) || throw NaoConsolidado::semEscrita($alvo);
        }
    }

    /** What a new file replaces; the new one gets the mode and the group that the daily run would leave it. */
    private function alvo(string $novo, string $tipo, string $dia): string
    {
        $alvo = $this->dias->caminho($tipo, $dia);
        $alvo = realpath($alvo) ?: $alvo;
        $pasta = dirname($alvo);
        is_dir($pasta) || @mkdir($pasta, 0755) || throw NaoConsolidado::semEscrita($pasta);
        // Never renamed to another file system: that would be a copy, which can be met half done.
        if (!is_writable($pasta) || stat($pasta)['dev'] !== stat($novo)['dev']) {
            throw NaoConsolidado::semTroca($pasta);
        }
        if (file_exists($alvo)) {
            if (!is_file($alvo) || fileowner($alvo) !== fileowner($novo)) {
                throw NaoConsolidado::semTroca($alvo);
            }
            self::grupo($novo, filegroup($alvo));
            chmod($novo, fileperms($alvo) & 0777);
        } elseif (fileperms($pasta) & 02000) {
            self::grupo($novo, filegroup($pasta));
        }
        return $alvo;
    }

    private static function grupo(string $arquivo, int $grupo): void
    {
        if (filegroup($arquivo) !== $grupo && !@chgrp($arquivo, $grupo)) {
            throw NaoConsolidado::semTroca($arquivo);
        }
    }

    /** Events of a day only come on: fewer of them mean that a log has gone. */
    private function naoEncolhe(string $dia, string $novo, string $velho): void
    {
        if ((int) @filesize($velho) > filesize($novo)) {
            throw NaoConsolidado::encolheria($dia, filesize($novo), filesize($velho));
        }
    }

    /** Root would leave files, and a lock, that the daily run's user can no longer write. */
    private static function recusaRoot(string $dados): void
    {
        $dono = @fileowner($dados);
        if ($dono && @fileowner('/proc/self') === 0) {
            throw NaoConsolidado::comoRoot($dados, Trava::usuario($dono));
        }
    }
}
