<?php

// Logs of a test, as the dispatcher writes them: two messages an hour of some days, some of them on their way
// at midnight, and runs of the command over them with a clock that is a day behind.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

final class Despachante
{
    private static ?string $desvio = null;

    /** @return string the lines of a day, counted from today in UTC, up to an hour of it */
    public static function dia(int $dia, int $ate = 24): string
    {
        $inicio = strtotime("today UTC $dia days");
        $linhas = [];
        for ($i = 0; $i < 48; ++$i) {
            $id = sprintf('M%dX%02d', $dia + 9, $i);
            $t = $inicio + 1800 * $i + 30;
            $fim = $t + ($i % 5 === 4 ? 50000 : 60);
            $linhas[] = [$t, "MAILQ SUBMIT Msg $id de " . ($i % 3 ? 'SMTPCONNINT' : 'SMTPCONNEXT')
                . " remetente u$i@x.example com " . 1000 + $i . ' bytes'];
            $linhas[] = [$t, "MAILSMTP DELIVER Msg $id"];
            $i % 7 ? $linhas[] = [$fim, "MAILSMTP OK Msg $id para v$i@y.example"]
                : $linhas[] = [$fim, "MAILSMTP ERROR_FINAL Msg $id para v$i@y.example: 550 5.1.1 ausente"];
            $linhas[] = [$fim, "MAILSMTP END Msg $id"];
        }
        return self::texto($linhas, $inicio, $inicio + 3600 * $ate);
    }

    /** What is on its way at midnight ends on the next day: it is left to that day's first hours. */
    private static function texto(array $linhas, int $inicio, int $fim): string
    {
        usort($linhas, static fn (array $a, array $b): int => $a[0] <=> $b[0]);
        $texto = '';
        foreach ($linhas as [$t, $linha]) {
            $t < $fim && $texto .= gmdate('D M d H:i:s Y', $t) . ": 09 $linha\n";
        }
        return $texto;
    }

    /**
     * The command in a process that is disturbed.
     *
     * @param array<string, int|string> $como VT_MATA, VT_CHEIO; the clock is a day behind
     */
    public static function disturba(array $argumentos, array $como = []): Vtmrel
    {
        $ambiente = array_map('strval', $como) + ['LD_PRELOAD' => self::desvio(), 'VT_RELOGIO' => '-86400'];
        return Vtmrel::roda($argumentos, $ambiente);
    }

    private static function desvio(): string
    {
        if (self::$desvio === null) {
            self::$desvio = sys_get_temp_dir() . '/vt_desvio_' . getmypid() . '.so';
            exec('c++ -shared -fPIC -o ' . self::$desvio . ' ' . escapeshellarg(__DIR__ . '/../../faults/desvio.cpp'), $nada, $saiu);
            $saiu === 0 || throw new \RuntimeException('faults/desvio.cpp does not compile');
            register_shutdown_function(static fn () => unlink(self::$desvio));
        }
        return self::$desvio;
    }
}
