<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\EntradaInvalida;

/**
 * Whole local days, the first and the last included.
 *
 * The one place that knows which Unix seconds to ask the extension for. It looks for one file each 24
 * hours from the start on, named by the date in UTC, while the files are named by their local date.
 */
final readonly class Periodo
{
    private function __construct(
        /** "2026-03-10" */
        public string $primeiro,
        /** "2026-03-12" */
        public string $ultimo,
        public \DateTimeZone $fuso,
    ) {
    }

    /** One day, "2026-03-10". Without a zone: the C library's. */
    public static function dia(string $dia, ?\DateTimeZone $fuso = null): self
    {
        return self::de($dia, $dia, $fuso);
    }

    /** From one day to another, as "2026-03-10" and "2026-03-12". */
    public static function de(string $primeiro, string $ultimo, ?\DateTimeZone $fuso = null): self
    {
        foreach ([$primeiro, $ultimo] as $dia) {
            if (!self::existe($dia)) {
                throw EntradaInvalida::data($dia);
            }
        }
        if ($primeiro > $ultimo) {
            throw EntradaInvalida::invertido($primeiro, $ultimo);
        }
        return new self($primeiro, $ultimo, $fuso ?? Fuso::daMaquina());
    }

    /** A month, "2026-03". */
    public static function mes(string $mes, ?\DateTimeZone $fuso = null): self
    {
        if (!self::existe("$mes-01")) {
            throw EntradaInvalida::mes($mes);
        }
        return self::de("$mes-01", gmdate('Y-m-t', self::meioDia("$mes-01")), $fuso);
    }

    /** The last $n days, the last of which is $ultimo. */
    public static function ultimos(int $n, string $ultimo, ?\DateTimeZone $fuso = null): self
    {
        if ($n < 1) {
            throw EntradaInvalida::quantidade($n);
        }
        return self::dia($ultimo, $fuso)->alargado($n - 1);
    }

    /** The same end, begun $n days earlier, though not before 2000. */
    public function alargado(int $n): self
    {
        $maximo = intdiv(self::meioDia($this->primeiro) - self::meioDia('2000-01-01'), 86400);
        $inicio = self::meioDia($this->primeiro) - 86400 * max(0, min($n, $maximo));
        return new self(gmdate('Y-m-d', $inicio), $this->ultimo, $this->fuso);
    }

    /**
     * The range for reports of whole days: msgs_per_day, and msgs_per_hour of one user. Noon in UTC has
     * the date of the day meant, in every zone.
     *
     * @return array{int, int} Unix seconds
     */
    public function dias(): array
    {
        return [self::meioDia($this->primeiro), self::meioDia($this->ultimo) + 1];
    }

    /**
     * The range for reports of events: user_msgs, msg_trace, and msgs_per_hour of all. They test the time
     * of each line besides. From the first midnight to the last second; east of UTC that midnight has the
     * date of the day before, and two hours more reach the last day's file, and no further one.
     *
     * @return array{int, int} Unix seconds
     */
    public function eventos(): array
    {
        $inicio = $this->inicio();
        $fim = $this->fim()->getTimestamp() - 1;
        return [$inicio->getTimestamp(), $inicio->getOffset() > 0 ? $fim + 7200 : $fim];
    }

    /** The first moment. */
    public function inicio(): \DateTimeImmutable
    {
        return new \DateTimeImmutable("$this->primeiro 00:00", $this->fuso);
    }

    /** The first moment after the period. */
    public function fim(): \DateTimeImmutable
    {
        return new \DateTimeImmutable("$this->ultimo 00:00 +1 day", $this->fuso);
    }

    public function quantosDias(): int
    {
        return intdiv(self::meioDia($this->ultimo) - self::meioDia($this->primeiro), 86400) + 1;
    }

    /** @return \Generator<int, self> each day, a period of its own */
    public function cadaDia(): \Generator
    {
        $ultimo = self::meioDia($this->ultimo);
        for ($t = self::meioDia($this->primeiro); $t <= $ultimo; $t += 86400) {
            $dia = gmdate('Y-m-d', $t);
            yield new self($dia, $dia, $this->fuso);
        }
    }

    /** Whether the text is a date for which there can be day files. */
    public static function existe(string $dia): bool
    {
        return preg_match('/^(20\d\d)-(\d\d)-(\d\d)$/D', $dia, $d) && checkdate((int) $d[2], (int) $d[3], (int) $d[1]);
    }

    private static function meioDia(string $dia): int
    {
        return gmmktime(12, 0, 0, (int) substr($dia, 5, 2), (int) substr($dia, 8), (int) substr($dia, 0, 4));
    }
}
