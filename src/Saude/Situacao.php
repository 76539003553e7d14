<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Dias;
use Vorna\Mrel\Ponto;
use Vorna\Mrel\Relay;

/** A relay at one moment, as the checks look at it: each thing is read once, and only if a check asks. */
final class Situacao
{
    public readonly Dias $arquivos;
    public readonly \DateTimeImmutable $agora;
    /** "2026-03-12" */
    public readonly string $hoje;
    private string|false|null $ponto = false;
    private string|false|null $ultimo = false;
    /** @var ?list<string> */
    private ?array $dias = null;
    /** @var array<string, array{?list<int>, ?int}> */
    private array $cabecas = [];

    public function __construct(public readonly Relay $relay, \DateTimeImmutable $agora)
    {
        $this->arquivos = new Dias($relay->dados);
        $this->agora = $agora->setTimezone($relay->fuso);
        $this->hoje = $this->agora->format('Y-m-d');
    }

    /** A day so many days later, or earlier. */
    public static function dia(string $dia, int $mais): string
    {
        return gmdate('Y-m-d', strtotime("$dia 12:00 UTC") + 86400 * $mais);
    }

    /** The point's day; null when none was recorded. */
    public function ponto(): ?string
    {
        return $this->ponto === false ? $this->ponto = Ponto::dia($this->relay->ponto) : $this->ponto;
    }

    /** @return list<string> the days that have a file, oldest first */
    public function dias(): array
    {
        return $this->dias ??= $this->arquivos->todos();
    }

    /** The first day that need not be complete. */
    public function fim(): string
    {
        return min($this->ponto() ?? $this->hoje, $this->hoje);
    }

    /** @return list<string> the days before it that have a file */
    public function completos(): array
    {
        return array_values(array_filter($this->dias(), fn (string $dia): bool => $dia < $this->fim()));
    }

    /** @return list<string> the days before it that lack one of their files, from the first day on */
    public function faltam(): array
    {
        $completos = $this->completos();
        $inteiros = array_filter($completos, fn (string $dia): bool => is_file($this->arquivos->caminho(Dias::ESTATISTICA, $dia))
            && is_file($this->arquivos->caminho(Dias::COMPACTO, $dia)));
        return $completos ? Andamento::faltam($completos[0], $this->fim(), $inteiros) : [];
    }

    /** The last complete day; null when there is none. */
    public function ultimo(): ?string
    {
        if ($this->ultimo === false) {
            $ultimo = Ponto::ultimoDiaCompleto($this->relay, $this->hoje);
            // A point in the future makes no day complete that is not over.
            $this->ultimo = $ultimo === null ? null : min($ultimo, self::dia($this->hoje, -1));
        }
        return $this->ultimo;
    }

    /**
     * The first line of a day's statistics: spam, virus, error, blocked, messages and bytes of local senders,
     * messages and bytes of others; bytes without their sign. Null when it is not there or is torn.
     *
     * @return ?list<int>
     */
    public function totais(string $dia): ?array
    {
        return $this->cabeca($dia)[0];
    }

    /** When a day's first hour begins, Unix seconds, as its statistics say; null as with totais(). */
    public function inicio(string $dia): ?int
    {
        return $this->cabeca($dia)[1];
    }

    /** @return array{?list<int>, ?int} */
    private function cabeca(string $dia): array
    {
        if (!isset($this->cabecas[$dia])) {
            $f = @fopen($this->arquivos->caminho(Dias::ESTATISTICA, $dia), 'rb');
            $texto = $f ? (string) fread($f, 300) : '';
            $f && fclose($f);
            $this->cabecas[$dia] = preg_match('/^\d+ \d+((?: -?\d+){8})\n(?:\[(\d+)\])?/', $texto, $m) ? [
                array_map(static fn (string $n): int => (int) $n & 0xFFFFFFFF, explode(' ', ltrim($m[1]))),
                isset($m[2]) ? (int) $m[2] : null,
            ] : [null, null];
        }
        return $this->cabecas[$dia];
    }

    /** Messages of a day, all senders together; null when that cannot be read. */
    public function mensagens(string $dia): ?int
    {
        $totais = $this->totais($dia);
        return $totais === null ? null : $totais[4] + $totais[6];
    }

    /** Bytes of a day's two files. */
    public function tamanho(string $dia): int
    {
        return (int) @filesize($this->arquivos->caminho(Dias::ESTATISTICA, $dia))
            + (int) @filesize($this->arquivos->caminho(Dias::COMPACTO, $dia));
    }

    /** Messages in flight, as the last-consolidation file records them; null when it cannot be read. */
    public function emCurso(): ?int
    {
        $arquivo = $this->relay->ponto ?? '';
        $texto = is_file($arquivo) ? @file_get_contents($arquivo) : false;
        // Each record is introduced by its line end.
        return $texto === false ? null : substr_count($texto, "\r\n");
    }
}
