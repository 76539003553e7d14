<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/**
 * Tells which byte totals may have begun again at 0. The engine counts bytes in 32 bits, so a total of
 * 5 GiB reads as 1 GiB, and nothing in the total shows it. What shows it is the sizes of the messages that
 * were submitted: when they come to a multiple of 4 GiB more than the total, it has wrapped. The two need
 * not agree to the byte, since totals are of messages attempted on the day; half of 4 GiB decides.
 */
final class Transbordo
{
    private const VOLTA = 0x100000000;
    private const AMOSTRAS = 16;
    private const AMOSTRA = 16384;
    private const FOLGA = 4;  // how far off a sample may be

    /** @var array<string, bool> */
    private array $dias_incertos = [];

    public function __construct(private readonly Dias $dias, private readonly Motor $motor)
    {
    }

    /** @return \Closure(): bool of the totals of a day, and of any counter that is a part of them */
    public function doDia(string $dia): \Closure
    {
        return fn (): bool => $this->dias_incertos[$dia] ??= max($this->voltas($dia)) > 0;
    }

    /** @return \Closure(): bool of sums that were made of a period's counters in more than 32 bits */
    public function dosDias(Periodo $periodo): \Closure
    {
        return function () use ($periodo): bool {
            foreach ($periodo->cadaDia() as $dia) {
                if ($this->doDia($dia->primeiro)()) {
                    return true;
                }
            }
            return false;
        };
    }

    /**
     * Of the 24 hours of all users. Their sum has the totals of the days to agree with; what is missing
     * is sought in the hours with more mail than their bytes account for, at the mean size of all.
     *
     * @param list<list<int>> $horas messages and bytes of local senders, messages and bytes of others, ...
     * @return \Closure(int): bool by the hour
     */
    public function dasHoras(Periodo $periodo, array $horas): \Closure
    {
        $incertas = null;
        return function (int $hora) use ($periodo, $horas, &$incertas): bool {
            $incertas ??= $this->horasIncertas($periodo, $horas);
            return $incertas[$hora];
        };
    }

    /** @return list<bool> */
    private function horasIncertas(Periodo $periodo, array $horas): array
    {
        $totais = [0, 0];
        $itr = $this->motor->pergunta('msgs_per_day', ...[...$periodo->dias(), ' ']);
        while ($itr->fetch()) {
            $voltas = $this->voltas(gmdate('Y-m-d', $itr->timestamp));
            $totais[0] += $itr->bytes_int + $voltas[0] * self::VOLTA;
            $totais[1] += $itr->bytes_ext + $voltas[1] * self::VOLTA;
        }
        $incertas = array_fill(0, 24, false);
        foreach ($totais as $i => $total) {
            [$mensagens, $bytes] = [array_column($horas, 2 * $i), array_column($horas, 2 * $i + 1)];
            if (self::arredonda($total - array_sum($bytes)) < 1) {
                continue;
            }
            $media = $total / max(1, array_sum($mensagens));
            $suspeitas = array_map(
                static fn (int $m, int $b): bool => self::arredonda($m * $media - $b) > 0,
                $mensagens,
                $bytes,
            );
            foreach ($incertas as $hora => $incerta) {
                $incertas[$hora] = $incerta || !in_array(true, $suspeitas, true) || $suspeitas[$hora];
            }
        }
        return $incertas;
    }

    /** @return array{int, int} how often the totals of local and of other senders began again at 0 that day */
    public function voltas(string $dia): array
    {
        $estatistica = $this->dias->caminho(Dias::ESTATISTICA, $dia);
        $compacto = $this->dias->caminho(Dias::COMPACTO, $dia);
        if (!is_file($estatistica)) {
            return [0, 0];
        }
        if (!is_readable($estatistica) || !is_readable($compacto)) {
            return [1, 1];  // nothing shows that they did not
        }
        $texto = file_get_contents($estatistica);
        $totais = array_map('intval', explode(' ', strstr($texto . "\n", "\n", true))) + array_fill(0, 10, 0);
        $bytes = [$totais[7] & self::VOLTA - 1, $totais[9] & self::VOLTA - 1];
        if ($this->folgado($compacto, $texto, [$totais[6], $totais[8]])) {
            return [0, 0];
        }
        [$locais, $outros] = self::submetido($compacto);
        return [self::arredonda($locais[1] - $bytes[0]), self::arredonda($outros[1] - $bytes[1])];
    }

    /** Whether samples of a large file say that the day is far from 4 GiB, and no user of it had much in an hour. */
    private function folgado(string $compacto, string $estatistica, array $mensagens): bool
    {
        $tamanho = filesize($compacto);
        if ($tamanho <= self::AMOSTRAS * self::AMOSTRA || preg_match('/ (?:-\d|\d{9})/', $estatistica, offset: 100)) {
            return false;
        }
        $f = fopen($compacto, 'rb');
        $somas = [[0, 0], [0, 0]];
        for ($i = 0; $i < self::AMOSTRAS; ++$i) {
            fseek($f, intdiv($tamanho * $i, self::AMOSTRAS));
            $i === 0 || fgets($f);
            self::acumula($somas, (string) fread($f, self::AMOSTRA));
        }
        foreach ($somas as $i => [$n, $soma]) {
            if ($soma / max(1, $n) * $mensagens[$i] * self::FOLGA >= self::VOLTA) {
                return false;
            }
        }
        return true;
    }

    /** @return array{array{int, int}, array{int, int}} messages and bytes submitted, of local and of other senders */
    private static function submetido(string $compacto): array
    {
        $somas = [[0, 0], [0, 0]];
        foreach (Compacto::blocos($compacto) as $bloco) {
            self::acumula($somas, $bloco);
        }
        return $somas;
    }

    private static function acumula(array &$somas, string $bloco): void
    {
        preg_match_all('/^[0-9a-f]+ \d+ 1 [^ \n]+ ([^ \n]*) [^ \n]* (\d+)/m', $bloco, $submissoes);
        foreach ($submissoes[1] as $i => $classe) {
            $de = Compacto::local($classe) ? 0 : 1;
            ++$somas[$de][0];
            $somas[$de][1] += $submissoes[2][$i] & self::VOLTA - 1;
        }
    }

    private static function arredonda(int|float $bytes): int
    {
        return max(0, (int) round($bytes / self::VOLTA));
    }
}
