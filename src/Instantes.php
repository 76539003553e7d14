<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** Unix seconds as ISO 8601 with offset, in one zone: for millions of rows, whose times come close together. */
final class Instantes
{
    private int $quarto = -1;
    private string $prefixo = '';
    private int $minuto = 0;
    private string $sufixo = '';

    public function __construct(private readonly \DateTimeZone $fuso)
    {
    }

    /** "2026-03-10T08:15:00-03:00"; "" for 0, a time that is not known. */
    public function texto(int $segundos): string
    {
        if ($segundos === 0) {
            return '';
        }
        // Within a quarter of an hour of UTC no zone changes its clocks.
        $quarto = intdiv($segundos, 900);
        if ($quarto !== $this->quarto) {
            $this->quarto = $quarto;
            $inicio = (new \DateTimeImmutable('@' . $quarto * 900))->setTimezone($this->fuso);
            [$this->prefixo, $minuto, $this->sufixo] = explode('|', $inicio->format('Y-m-d\TH:|i|P'));
            $this->minuto = (int) $minuto;
        }
        $resto = $segundos % 900;
        $minuto = $this->minuto + intdiv($resto, 60);
        $segundo = $resto % 60;
        return $this->prefixo . ($minuto < 10 ? '0' : '') . $minuto . ($segundo < 10 ? ':0' : ':') . $segundo
            . $this->sufixo;
    }
}
