<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

/**
 * Compares the statistics of one day with what its compact file comes to. Where they differ, tells why: a
 * counter of 32 bits that began again at 0, a message of another day, or damage.
 */
final class Somas
{
    private const VOLTA = 0x100000000;
    /** Totals in the order of the file, those of Recontagem; blocked attachments are in no event. */
    public const TOTAIS = ['spam', 'virus', 'com_erro', null, 'internas', 'bytes_internas', 'externas', 'bytes_externas'];
    public const CONTAS = ['enviadas', 'bytes_enviados', 'recebidas', 'bytes_recebidos', 'virus', 'spam', 'erros'];

    /** @var list<array{string, int, int, bool}> what differs: where, in the file, counted, whether a rule explains it */
    public array $diferencas = [];
    /** @var list<array{string, int, int}> what wrapped: where, in the file, the true figure */
    public array $voltas = [];

    /** @var list<array<int, array<string, int>>> of the messages of earlier days, the more of both possibilities */
    private array $folga;

    /**
     * @param Recontagem $dia messages of the day itself
     * @param Recontagem $antes those of earlier days, as one possibility has it
     * @param Recontagem $ou as the other has it
     */
    private function __construct(
        private readonly Recontagem $dia,
        private readonly Recontagem $antes,
        private readonly Recontagem $ou,
        private readonly bool $semAntes,
    ) {
        $this->folga = [];
        foreach ($antes->contas as $conta => $horas) {
            foreach ($horas as $hora => $nomes) {
                foreach ($nomes + $ou->contas[$conta][$hora] as $nome => $_) {
                    $this->folga[$conta][$hora][$nome] =
                        max($nomes[$nome] ?? 0, $ou->contas[$conta][$hora][$nome] ?? 0);
                }
            }
        }
    }

    /**
     * With the one of two possibilities that differs less.
     *
     * @param array{Recontagem, Recontagem} $carregadas earlier messages, had the run gone on, had another begun
     * @param bool $semAntes whether the day before is not there: then messages may be from before
     * @param int $primeiro which to try first
     * @return array{self, int} the differences, and which possibility it was
     */
    public static function melhor(
        string $texto,
        Recontagem $dia,
        array $carregadas,
        bool $semAntes,
        int $primeiro = 0,
    ): array
    {
        $melhor = null;
        $qual = $primeiro;
        foreach ([$primeiro, 1 - $primeiro] as $i) {
            $somas = new self($dia, $carregadas[$i], $carregadas[1 - $i], $semAntes);
            $somas->compara($texto);
            if ($melhor === null || count($somas->diferencas) < count($melhor->diferencas)) {
                [$melhor, $qual] = [$somas, $i];
            }
            if (!$melhor->diferencas) {
                break;
            }
        }
        return [$melhor, $qual];
    }

    private function compara(string $texto): void
    {
        $linhas = explode("\n", rtrim($texto, "\n"));
        $totais = array_map('intval', array_slice(explode(' ', array_shift($linhas)), 2));
        $hora = -1;
        $esperadas = $so = $recebidas = $recebidos = [];
        foreach ($linhas as $linha) {
            $lugar = strpos($linha, ' ');
            if ($lugar === false) {
                $this->faltam($hora++, $esperadas);
                $esperadas = $this->nomes($hora);
                $recebidas = $this->dia->contas[Recontagem::RECEBIDAS][$hora] ?? [];
                $recebidos = $this->dia->contas[Recontagem::BYTES_RECEBIDOS][$hora] ?? [];
                $so = array_diff_key($recebidas, $this->comMais($hora));
                continue;
            }
            $nome = substr($linha, 0, $lugar);
            unset($esperadas[$nome]);
            // Most have only received something.
            if (!isset($so[$nome]) || $linha !== "$nome 0 0 $recebidas[$nome] $recebidos[$nome] 0 0 0 0") {
                $this->usuario($hora, $nome, array_map('intval', explode(' ', substr($linha, $lugar + 1))));
            }
        }
        $this->faltam($hora, $esperadas);
        $this->totais($totais);
    }

    /** @return array<string, int> who has done more than to receive messages of the day itself */
    private function comMais(int $hora): array
    {
        $mais = [];
        foreach ($this->dia->contas as $conta => $horas) {
            $mais += $this->antes->contas[$conta][$hora] ?? [];
            $mais += $conta === Recontagem::RECEBIDAS || $conta === Recontagem::BYTES_RECEBIDOS ? [] : $horas[$hora] ?? [];
        }
        return $mais;
    }

    /** @return array<string, int> who has a line in that hour */
    private function nomes(int $hora): array
    {
        $nomes = [];
        foreach ([$this->dia, $this->antes] as $r) {
            foreach ($r->contas as $conta) {
                $nomes += $conta[$hora] ?? [];
            }
        }
        return $nomes;
    }

    private function conta(int $conta, int $hora, string $nome): int
    {
        return ($this->dia->contas[$conta][$hora][$nome] ?? 0) + ($this->antes->contas[$conta][$hora][$nome] ?? 0);
    }

    private function faltam(int $hora, array $nomes): void
    {
        foreach ($nomes as $nome => $_) {
            // Who has nothing but messages without a size has no line.
            $this->usuario($hora, (string) $nome, array_fill(0, 8, 0));
        }
    }

    /** @param list<int> $noArquivo */
    private function usuario(int $hora, string $nome, array $noArquivo): void
    {
        foreach (self::CONTAS as $conta => $rotulo) {
            $dia = $this->dia->contas[$conta][$hora][$nome] ?? 0;
            $this->um(
                "$nome, $hora h, $rotulo",
                $noArquivo[$conta] ?? 0,
                $this->conta($conta, $hora, $nome),
                [$dia, $dia + ($this->folga[$conta][$hora][$nome] ?? 0)],
                $this->semSubmissao($conta, $hora, $nome)
            );
        }
    }

    /** Whether a message whose submission is in no file may have counted there. */
    private function semSubmissao(int $conta, int $hora, string $nome): bool
    {
        $conhecida = static fn (Recontagem $r): bool => !(match ($conta) {
            Recontagem::RECEBIDAS => false,
            Recontagem::BYTES_RECEBIDOS => isset($r->semSubmissao[$hora][$nome]),
            default => ($r->finsSemSubmissao[$hora] ?? 0) > 0,
        });
        return ($this->semAntes && !$conhecida($this->dia)) || !$conhecida($this->antes);
    }

    /**
     * The totals may differ by the messages of other days, if the users' counters do; else only as the two
     * possibilities differ from each other.
     *
     * @param list<int> $noArquivo
     */
    private function totais(array $noArquivo): void
    {
        // A day that was done twice began with the messages that the first time had left in flight.
        [$mensagens, $bytes] = $this->dia->emCurso();
        $estranhas = array_sum($this->dia->finsSemSubmissao) + count($this->dia->semSubmissao);
        $mensagens += max($this->antes->quantas, $this->ou->quantas) + ($this->semAntes ? $estranhas : 0);
        $bytes += $this->antes->tamanhoInicial;
        $explicadas = array_filter($this->diferencas, static fn (array $d): bool => $d[3]) !== [];
        foreach (self::TOTAIS as $i => $rotulo) {
            if ($rotulo === null) {
                continue;
            }
            $deBytes = $i === 5 || $i === 7;
            $n = $this->dia->totais[$i] + $this->antes->totais[$i];
            $ou = $this->dia->totais[$i] + $this->ou->totais[$i];
            $folga = !$explicadas ? 0 : ($deBytes ? $bytes : $mensagens);
            $this->um(
                $rotulo,
                $noArquivo[$i] ?? 0,
                $n,
                [min($n, $ou) - $folga, max($n, $ou) + $folga],
                $deBytes && $this->semAntes && $estranhas > 0
            );
        }
    }

    /**
     * One counter.
     *
     * @param array{int, int} $entre what it may be, as the messages of other days go
     */
    private function um(string $onde, int $noArquivo, int $contado, array $entre, bool $qualquer): void
    {
        $lido = $noArquivo & self::VOLTA - 1;
        if ($lido === ($contado & self::VOLTA - 1)) {
            $contado >= self::VOLTA && $this->voltas[] = [$onde, $lido, $contado];
            return;
        }
        [$minimo, $maximo] = $entre;
        // The figure that has these 32 bits and is next to the one counted.
        $perto = $lido + self::VOLTA * (int) round(($contado - $lido) / self::VOLTA);
        $explicado = $qualquer || ($perto >= $minimo && $perto <= $maximo);
        $this->diferencas[] = [$onde, $lido, $contado, $explicado];
        $explicado && $perto >= self::VOLTA && $this->voltas[] = [$onde, $lido, $perto];
    }
}
