<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Falha\NenhumDia;
use Vorna\Mrel\Falha\SemDiaCompleto;

/**
 * Periods as people ask for them: dates, or words. What command and pages take for "de" and "ate".
 *
 *     hoje, ontem, mes-passado (today, yesterday, last-month)   the calendar's, whatever is there
 *     ultimos-N, este-mes (last-N, this-month)                  end with the last complete day
 */
final readonly class Calendario
{
    public string $hoje;

    public function __construct(private Relay $relay, ?\DateTimeImmutable $agora = null)
    {
        $agora ??= new \DateTimeImmutable();
        $this->hoje = $agora->setTimezone($relay->fuso)->format('Y-m-d');
    }

    /**
     * The period from one to the other; one of them alone stands for both ends, neither for the last
     * complete day.
     *
     * @param ?string $de date or word; null or "" for none
     * @param ?string $ate likewise
     * @throws EntradaInvalida
     * @throws SemDiaCompleto for a word whose period holds no complete day yet: an empty answer is right
     * @throws NenhumDia when the last complete day is asked for and nothing was consolidated yet
     */
    public function periodo(?string $de = null, ?string $ate = null): Periodo
    {
        [$de, $ate] = [$de === '' ? null : $de, $ate === '' ? null : $ate];
        $primeiro = $this->um($de ?? $ate ?? 'ultimos-1');
        $ultimo = $de === null || $ate === null ? $primeiro : $this->um($ate);
        return Periodo::de($primeiro->primeiro, $ultimo->ultimo, $this->relay->fuso);
    }

    /** The last day that is complete, "2026-03-10". */
    public function ultimoDiaCompleto(): string
    {
        return Ponto::ultimoDiaCompleto($this->relay, $this->hoje) ?? throw NenhumDia::em($this->relay->dados);
    }

    private function um(string $palavra): Periodo
    {
        $fuso = $this->relay->fuso;
        $mes = substr($this->hoje, 0, 7);
        if (preg_match('/^(?:ultimos|last)-([1-9]\d{0,4})$/D', $palavra, $m)) {
            return Periodo::ultimos((int) $m[1], $this->ultimoDiaCompleto(), $fuso);
        }
        return match ($palavra) {
            'hoje', 'today' => Periodo::dia($this->hoje, $fuso),
            'ontem', 'yesterday' => Periodo::dia(gmdate('Y-m-d', strtotime("$this->hoje 12:00 UTC") - 86400), $fuso),
            'mes-passado', 'last-month' => Periodo::mes(gmdate('Y-m', strtotime("$mes-01 12:00 UTC") - 86400), $fuso),
            'este-mes', 'this-month' => $this->esteMes($palavra, "$mes-01"),
            default => preg_match('/^\d{4}-\d\d-\d\d$/D', $palavra)
                ? Periodo::dia($palavra, $fuso) : throw EntradaInvalida::periodo($palavra),
        };
    }

    private function esteMes(string $palavra, string $primeiro): Periodo
    {
        $ultimo = min($this->ultimoDiaCompleto(), $this->hoje);
        if ($ultimo < $primeiro) {
            throw SemDiaCompleto::em($palavra);
        }
        return Periodo::de($primeiro, $ultimo, $this->relay->fuso);
    }
}
