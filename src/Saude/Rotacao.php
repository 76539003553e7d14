<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Falha;

/**
 * Whether the next consolidation will find every line. It reads the logs whose first line is later than the
 * point; or the live one alone, when that begins earlier.
 */
final class Rotacao
{
    /** The engine reads 999 in a run. */
    private const MUITOS = 900;
    /** Lines of a rotation some seconds after midnight: they are passed over, and that is known. */
    private const FOLGA = '00:01:00';
    /** By then the live log has its first line of the day, and the second run of the night is over. */
    private const HORA = '07:00';

    private string $meiaNoite;
    private ?Registro $vivo = null;
    private bool $soVivo;
    /** @var list<array{Nivel, string, string}> */
    private array $achados = [];

    /**
     * @param list<Registro> $logs
     * @param ?string $ponto its day; null for a first run, which reads all
     */
    public static function logs(array $logs, ?string $ponto, \DateTimeImmutable $agora): Verificacao
    {
        return (new self($logs, $ponto, $agora))->verificacao();
    }

    /** @param list<Registro> $logs */
    private function __construct(private array $logs, private ?string $ponto, private \DateTimeImmutable $agora)
    {
        usort($this->logs, static fn (Registro $a, Registro $b): int =>
            [$a->inicio ?? $a->fim, $a->nome] <=> [$b->inicio ?? $b->fim, $b->nome]);
        $this->meiaNoite = "$ponto 00:00:00";
        foreach ($this->logs as $log) {
            $this->vivo = $log->vivo ? $log : $this->vivo;
        }
        $this->soVivo = $ponto !== null && ($this->vivo?->inicio === null || $this->vivo->inicio <= $this->meiaNoite);
    }

    private function verificacao(): Verificacao
    {
        $this->oVivo();
        array_map($this->lido(...), $this->logs);
        $this->seguidos();
        if (count($this->logs) > self::MUITOS) {
            $n = count($this->logs);
            $this->acha(
                Nivel::Aviso,
                "há $n logs, e a consolidação lê no máximo 999",
                "there are $n logs, and the consolidation reads 999 at most"
            );
        }
        $n = count($this->logs);
        if (!$this->achados) {
            return Verificacao::ok('logs', "$n logs, sem lacunas depois do ponto.", "$n logs, without gaps after the point.");
        }
        usort($this->achados, static fn (array $a, array $b): int => $b[0]->codigo() <=> $a[0]->codigo());
        $frases = fn (int $i): string => implode('; ', array_slice(array_column($this->achados, $i), 0, 3));
        $mais = count($this->achados) - 3;
        [$pt, $en] = [$frases(1), $frases(2)];
        return new Verificacao('logs', $this->achados[0][0], $mais > 0
            ? ["$pt e mais $mais.", "$en and $mais more."] : ["$pt.", "$en."], [
            'Rode os logs segundos depois da meia-noite, sem comprimir; vtmrel consolida --juntar lê o que ficou fora.',
            'Rotate seconds after midnight, uncompressed; vtmrel consolidate --join reads what was left out.',
        ]);
    }

    private function acha(Nivel $nivel, string $frase, string $emIngles): void
    {
        $this->achados[] = [$nivel, $frase, $emIngles];
    }

    /** The live log hides the rotated ones while it is missing or empty. */
    private function oVivo(): void
    {
        if ($this->vivo?->inicio !== null) {
            return;
        }
        $this->vivo === null
            ? $this->acha($this->semVivo(), 'falta o log corrente', 'the live log is missing')
            : $this->acha($this->semVivo(), 'o log corrente está vazio ou ilegível', 'the live log is empty or unreadable');
    }

    private function semVivo(): Nivel
    {
        return $this->agora->format('H:i') < self::HORA ? Nivel::Aviso : Nivel::Critico;
    }

    private function lido(Registro $log): void
    {
        $nome = Falha::cita($log->nome);
        if ($log->emBranco) {
            $this->acha(
                Nivel::Aviso,
                "$nome tem linhas em branco, que cortam o dia",
                "$nome has blank lines, which cut the day"
            );
        }
        if ($log->vivo || ($log->tamanho === 0 && $log->legivel)) {
            return;
        }
        $depois = $this->ponto === null || max($log->inicio ?? '', $log->fim) > "$this->ponto " . self::FOLGA;
        if (!$log->legivel) {
            $this->acha(
                $depois ? Nivel::Critico : Nivel::Aviso,
                "$nome não é lido: comprimido, sem data ou sem permissão",
                "$nome is not read: compressed, without a date, or without the right to"
            );
            return;
        }
        $passado = $this->ponto !== null && ($this->soVivo || $log->inicio <= $this->meiaNoite);
        if ($depois && $passado && !$this->repete($log)) {
            $this->acha(
                // While the live log is empty they wait for its first line.
                $this->vivo?->inicio === null && $log->inicio > $this->meiaNoite ? $this->semVivo() : Nivel::Critico,
                "$nome tem linhas depois do ponto e não será lido",
                "$nome has lines after the point and will not be read"
            );
        }
    }

    /** Whether the live log has all that this one has. */
    private function repete(Registro $log): bool
    {
        return $this->vivo?->inicio !== null && $this->vivo->inicio <= $log->inicio && $log->fim <= $this->vivo->fim;
    }

    /** Days that lie between two logs, and times that are in two of them. */
    private function seguidos(): void
    {
        // Without a line of the point's day or an earlier one, what lies between is missing too.
        $fim = null;
        foreach ($this->logs as $log) {
            if ($log->inicio === null) {
                continue;
            }
            $antes = $fim ?? ($this->ponto === null ? null : Situacao::dia($this->ponto, -1) . ' 23:59:59');
            if ($antes !== null && $log->inicio > $antes) {
                $this->lacuna(substr($antes, 0, 10), substr($log->inicio, 0, 10));
            } elseif ($fim !== null && $log->legivel && $this->recua($log->inicio, $fim)) {
                $nome = Falha::cita($log->nome);
                $this->acha(Nivel::Aviso, "$nome começa antes do fim de outro", "$nome begins before the end of another");
            }
            $fim = max($fim ?? '', $log->fim);
        }
    }

    /** Days without any log, between two that have one. */
    private function lacuna(string $antes, string $depois): void
    {
        $primeiro = Situacao::dia($antes, 1);
        if ($primeiro >= $depois) {
            return;
        }
        $ultimo = Situacao::dia($depois, -1);
        $dias = $primeiro === $ultimo ? [$primeiro, $primeiro] : ["$primeiro a $ultimo", "$primeiro to $ultimo"];
        $this->acha(
            $this->ponto !== null && $ultimo >= $this->ponto ? Nivel::Critico : Nivel::Aviso,
            "nenhum log tem linhas de $dias[0]",
            "no log has lines of $dias[1]"
        );
    }

    /** Whether the first time is before the second by more than clocks go back that night. */
    private function recua(string $inicio, string $fim): bool
    {
        $utc = new \DateTimeZone('UTC');
        $fuso = $this->agora->getTimezone();
        $antes = new \DateTimeImmutable($inicio, $utc);
        $volta = $fuso->getOffset($antes->modify('-1 day')) - $fuso->getOffset($antes->modify('+1 day'));
        return $antes->getTimestamp() + max(0, $volta) + 60 < (new \DateTimeImmutable($fim, $utc))->getTimestamp();
    }
}
