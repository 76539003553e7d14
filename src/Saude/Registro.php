<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Compacto;
use Vorna\Mrel\Falha\NaoConsolidado;
use Vorna\Mrel\Logs;

/** A log of the dispatcher as its head and its tail tell of it. */
final readonly class Registro
{
    private const PONTA = 65536;

    public function __construct(
        public string $nome,
        /** Whether it is the one being written. */
        public bool $vivo,
        public int $tamanho,
        /** Local time of the first line, "2026-03-12 00:00:03"; null when it cannot be told: the engine passes over it. */
        public ?string $inicio,
        /** Local time of the last line; of one that cannot be read by lines, of its last writing. */
        public string $fim,
        /** Whether its lines can be read: not compressed, and with the rights of this user. */
        public bool $legivel = true,
        /** Whether a blank line was seen. */
        public bool $emBranco = false,
    ) {
    }

    /**
     * Those of a directory that the consolidation looks at.
     *
     * @param ?string $desde logs that end on this day or later are read whole; null for heads and tails only
     * @return list<self>
     * @throws NaoConsolidado when it cannot be listed
     */
    public static function de(string $diretorio, \DateTimeZone $fuso, ?string $desde = null): array
    {
        $nomes = is_dir($diretorio) ? @scandir($diretorio) : null;
        if ($nomes === null || $nomes === false || !is_executable($diretorio)) {
            throw $nomes === null ? NaoConsolidado::semLog($diretorio) : NaoConsolidado::logIlegivel($diretorio);
        }
        $registros = [];
        foreach ($nomes as $nome) {
            $arquivo = "$diretorio/$nome";
            if (strncasecmp($nome, Logs::VIVO, strlen(Logs::VIVO)) === 0 && is_file($arquivo)) {
                $registros[] = self::um($arquivo, $fuso, $desde);
            }
        }
        return $registros;
    }

    private static function um(string $arquivo, \DateTimeZone $fuso, ?string $desde): self
    {
        $nome = basename($arquivo);
        $escrito = (new \DateTimeImmutable('@' . (int) @filemtime($arquivo)))->setTimezone($fuso)->format('Y-m-d H:i:s');
        $tamanho = (int) @filesize($arquivo);
        $f = is_readable($arquivo) ? @fopen($arquivo, 'rb') : false;
        if ($f === false) {
            return new self($nome, $nome === Logs::VIVO, $tamanho, null, $escrito, false);
        }
        $cabeca = (string) fread($f, self::PONTA);
        fseek($f, max(0, $tamanho - self::PONTA));
        $cauda = (string) stream_get_contents($f);
        fclose($f);
        if (str_starts_with($cabeca, "\x1F\x8B")) {
            return new self($nome, false, $tamanho, Logs::quando(self::descomprimido($arquivo)), $escrito, false);
        }
        $inicio = Logs::quando($cabeca);
        $fim = self::ultimo($cauda) ?? $inicio ?? $escrito;
        return new self(
            $nome,
            $nome === Logs::VIVO,
            $tamanho,
            $inicio,
            $fim,
            $inicio !== null || $tamanho === 0,
            self::emBranco("\n$cabeca") || self::emBranco($cauda)
                || ($desde !== null && substr($fim, 0, 10) >= $desde && self::emBrancoDentro($arquivo)),
        );
    }

    private static function emBranco(string $texto): bool
    {
        return str_contains($texto, "\n\n") || str_contains($texto, "\n\r\n");
    }

    private static function emBrancoDentro(string $arquivo): bool
    {
        foreach (Compacto::blocos($arquivo) as $bloco) {
            if (self::emBranco("\n$bloco")) {
                return true;
            }
        }
        return false;
    }

    private static function descomprimido(string $arquivo): string
    {
        if (!function_exists('gzopen')) {
            return '';
        }
        $f = @gzopen($arquivo, 'rb');
        $linha = $f ? (string) @gzread($f, 40) : '';
        $f && gzclose($f);
        return $linha;
    }

    private static function ultimo(string $cauda): ?string
    {
        foreach (array_reverse(explode("\n", $cauda)) as $linha) {
            if (($quando = Logs::quando($linha)) !== null) {
                return $quando;
            }
        }
        return null;
    }
}
