<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\NaoConsolidado;

/**
 * The dispatcher's logs as the consolidation sees them: the live one, and the rotated ones beside it, told
 * apart by the time of their first line.
 */
final readonly class Logs
{
    public const VIVO = 'MAIL_DISPATCHER.LOG';

    private const CARIMBO = '/^\w{3} (\w{3}) ([ \d]\d) (\d\d:\d\d:\d\d) (\d{4})/';
    private const MESES = ['Jan' => '01', 'Feb' => '02', 'Mar' => '03', 'Apr' => '04', 'May' => '05', 'Jun' => '06',
        'Jul' => '07', 'Aug' => '08', 'Sep' => '09', 'Oct' => '10', 'Nov' => '11', 'Dec' => '12'];
    private const BLOCO = 1 << 20;

    public function __construct(private string $diretorio)
    {
    }

    public function vivo(): string
    {
        return "$this->diretorio/" . self::VIVO;
    }

    /**
     * Those that a run from that point on reads, in its order.
     *
     * @param ?string $ponto day of the point, null for a first run
     * @return list<string> paths
     * @throws NaoConsolidado when a log is missing, empty or unreadable, so that a day would be written without it
     */
    public function aLer(?string $ponto): array
    {
        $inicios = [];
        foreach ($this->todos() as $arquivo) {
            $inicios[$arquivo] = self::inicio($arquivo);
        }
        $vivo = $inicios[$this->vivo()] ?? null;
        if ($ponto !== null) {
            if ($vivo === null) {
                throw is_file($this->vivo())
                    ? NaoConsolidado::logVazio($this->vivo()) : NaoConsolidado::semLog($this->vivo());
            }
            if ($vivo <= "$ponto 00:00:00") {
                return [$this->vivo()];
            }
        }
        $inicios = array_filter($inicios, static fn (?string $i): bool => $i !== null && $i > "$ponto 00:00:00");
        if (!$inicios) {
            throw NaoConsolidado::semLog($this->vivo());
        }
        ksort($inicios, SORT_STRING);
        asort($inicios, SORT_STRING);
        return array_keys($inicios);
    }

    /** Whether the live log has a line of that day or a later one. */
    public function chegouA(string $dia): bool
    {
        $vivo = $this->vivo();
        $f = is_file($vivo) ? @fopen($vivo, 'rb') : false;
        if ($f === false) {
            return false;
        }
        fseek($f, max(0, filesize($vivo) - 65536));
        $fim = stream_get_contents($f);
        fclose($f);
        foreach (array_reverse(explode("\n", $fim)) as $linha) {
            $quando = self::quando($linha);
            if ($quando !== null) {
                return substr($quando, 0, 10) >= $dia;
            }
        }
        return false;
    }

    /**
     * How many lines of these days the logs hold.
     *
     * @param list<string> $arquivos
     */
    public static function linhas(array $arquivos, string $primeiro, string $ultimo): int
    {
        $linhas = 0;
        foreach ($arquivos as $arquivo) {
            $f = @fopen($arquivo, 'rb');
            while ($f && ($bloco = fread($f, self::BLOCO)) !== '' && $bloco !== false) {
                $bloco .= fgets($f);
                $dia = substr(self::quando($bloco) ?? '', 0, 10);
                if ($dia > $ultimo) {
                    break;
                }
                $cauda = strrpos(rtrim($bloco, "\n"), "\n");
                $fim = substr(self::quando(substr($bloco, $cauda === false ? 0 : $cauda + 1)) ?? '', 0, 10);
                // Most blocks lie within the days, or before them.
                $linhas += match (true) {
                    $dia >= $primeiro && $fim <= $ultimo && $fim !== '' =>
                        substr_count($bloco, "\n") + (str_ends_with($bloco, "\n") ? 0 : 1),
                    $fim !== '' && $fim < $primeiro => 0,
                    default => self::linhasDoBloco($bloco, $primeiro, $ultimo),
                };
            }
            $f && fclose($f);
        }
        return $linhas;
    }

    /** Lines that a stamp is missing from belong with those before them. */
    private static function linhasDoBloco(string $bloco, string $primeiro, string $ultimo): int
    {
        $linhas = 0;
        $dia = '';
        foreach (explode("\n", rtrim($bloco, "\n")) as $linha) {
            $dia = substr(self::quando($linha) ?? $dia, 0, 10);
            $linhas += $dia >= $primeiro && $dia <= $ultimo ? 1 : 0;
        }
        return $linhas;
    }

    /** @return list<string> paths of the live log and all that are named after it */
    public function todos(): array
    {
        $nomes = is_dir($this->diretorio) ? @scandir($this->diretorio) : null;
        if ($nomes === null || $nomes === false || !is_executable($this->diretorio)) {
            throw $nomes === null
                ? NaoConsolidado::semLog($this->diretorio) : NaoConsolidado::logIlegivel($this->diretorio);
        }
        $arquivos = [];
        foreach ($nomes as $nome) {
            $arquivo = "$this->diretorio/$nome";
            if (strncasecmp($nome, self::VIVO, strlen(self::VIVO)) === 0 && is_file($arquivo)) {
                if (!is_readable($arquivo)) {
                    throw NaoConsolidado::logIlegivel($arquivo);
                }
                $arquivos[] = $arquivo;
            }
        }
        return $arquivos;
    }

    /** Local time of the first line; null when the log is empty or its first stamp unreadable. */
    private static function inicio(string $arquivo): ?string
    {
        return self::quando((string) @file_get_contents($arquivo, false, null, 0, 40));
    }

    /** "Thu Mar 12 00:00:30 2026: ..." as "2026-03-12 00:00:30". */
    public static function quando(string $linha): ?string
    {
        if (!preg_match(self::CARIMBO, $linha, $m) || !isset(self::MESES[$m[1]])) {
            return null;
        }
        return "$m[4]-" . self::MESES[$m[1]] . '-' . strtr($m[2], ' ', '0') . " $m[3]";
    }
}
