<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\DadosInacessiveis;
use Vorna\Mrel\Falha\DiaIlegivel;
use Vorna\Mrel\Falha\NenhumDia;

/**
 * The day files of a data directory: rels_MM-YY/mail_stat_DD.txt and .../compact_mail_DD.txt.
 *
 * The reports themselves pass over what they cannot open, so that nothing tells an empty answer from a
 * wrong path. Whoever reads days goes through here, where each such case is an exception.
 */
final readonly class Dias
{
    public const ESTATISTICA = 'mail_stat_';
    public const COMPACTO = 'compact_mail_';

    public function __construct(private string $dados)
    {
    }

    /**
     * The days that have a file, oldest first.
     *
     * @return list<string> "2026-03-10"
     * @throws DadosInacessiveis
     */
    public function todos(): array
    {
        $dias = [];
        foreach ($this->meses() as $pasta => $mes) {
            foreach ($this->conteudo("$this->dados/$pasta") as $nome) {
                if (
                    preg_match('/^(?:mail_stat|compact_mail)_(\d\d)\.txt$/D', $nome, $d)
                    && Periodo::existe("$mes-$d[1]")
                ) {
                    $dias["$mes-$d[1]"] = true;
                }
            }
        }
        ksort($dias);
        return array_map('strval', array_keys($dias));
    }

    /**
     * The files of one kind for the days of a period, by day.
     *
     * @param self::ESTATISTICA|self::COMPACTO $tipo
     * @return array<string, string> "2026-03-10" => path; days without any file are left out
     * @throws DadosInacessiveis
     * @throws NenhumDia when there is no day file at all, in the period or out of it
     * @throws DiaIlegivel when a day of the period is there but cannot be read, or only in part
     */
    public function arquivos(string $tipo, Periodo $periodo): array
    {
        $outro = $tipo === self::ESTATISTICA ? self::COMPACTO : self::ESTATISTICA;
        $arquivos = [];
        $pastas = array_flip($this->meses());
        foreach ($periodo->cadaDia() as $um) {
            $dia = $um->primeiro;
            $pasta = $pastas[substr($dia, 0, 7)] ?? null;
            if ($pasta === null) {
                continue;
            }
            $this->conteudo("$this->dados/$pasta");
            $arquivo = $this->caminho($tipo, $dia);
            if (@file_exists($arquivo) || is_link($arquivo)) {
                if (!is_file($arquivo) || !is_readable($arquivo)) {
                    throw DiaIlegivel::arquivo($dia, $arquivo);
                }
                $arquivos[$dia] = $arquivo;
            } elseif (file_exists($this->caminho($outro, $dia))) {
                throw DiaIlegivel::falta($dia, $arquivo);
            }
        }
        if (!$arquivos && !$this->todos()) {
            throw NenhumDia::em($this->dados);
        }
        return $arquivos;
    }

    /**
     * The files of one kind that are there and can be read, by day: for what may be missing.
     *
     * @return array<string, string>
     */
    public function legiveis(string $tipo, Periodo $periodo): array
    {
        $arquivos = [];
        foreach ($periodo->cadaDia() as $dia) {
            $arquivo = $this->caminho($tipo, $dia->primeiro);
            if (is_file($arquivo) && is_readable($arquivo)) {
                $arquivos[$dia->primeiro] = $arquivo;
            }
        }
        return $arquivos;
    }

    /** Where the file of a day is, or would be. */
    public function caminho(string $tipo, string $dia): string
    {
        [$ano, $mes, $numero] = explode('-', $dia);
        return "$this->dados/rels_$mes-" . substr($ano, 2) . "/$tipo$numero.txt";
    }

    /** @return array<string, string> "rels_03-26" => "2026-03" */
    private function meses(): array
    {
        $this->verifica();
        $meses = [];
        foreach ($this->conteudo($this->dados) as $nome) {
            if (preg_match('/^rels_(0[1-9]|1[0-2])-(\d\d)$/D', $nome, $m)) {
                $meses[$nome] = "20$m[2]-$m[1]";
            }
        }
        return $meses;
    }

    private function verifica(): void
    {
        error_clear_last();
        if ($this->dados === '' || str_contains($this->dados, "\0")) {
            throw DadosInacessiveis::ausente($this->dados);
        }
        if (!@file_exists($this->dados)) {
            if (str_contains(error_get_last()['message'] ?? '', 'open_basedir')) {
                throw DadosInacessiveis::foraDoPermitido($this->dados);
            }
            // Below a folder that may not be entered everything seems to be missing.
            for ($acima = dirname($this->dados); $acima !== dirname($acima); $acima = dirname($acima)) {
                if (@is_dir($acima)) {
                    if (!is_executable($acima)) {
                        throw DadosInacessiveis::ilegivel($acima);
                    }
                    break;
                }
            }
            throw DadosInacessiveis::ausente($this->dados);
        }
        if (!is_dir($this->dados)) {
            throw DadosInacessiveis::naoEDiretorio($this->dados);
        }
    }

    /** @return list<string> */
    private function conteudo(string $pasta): array
    {
        error_clear_last();
        $nomes = @scandir($pasta);
        if ($nomes === false || !@is_executable($pasta)) {
            throw str_contains(error_get_last()['message'] ?? '', 'open_basedir')
                ? DadosInacessiveis::foraDoPermitido($pasta) : DadosInacessiveis::ilegivel($pasta);
        }
        return $nomes;
    }
}
