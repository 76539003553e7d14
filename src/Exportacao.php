<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Linha\ContasDeUsuario;
use Vorna\Mrel\Linha\Evento;

/**
 * The lines of the day files in bulk, a day after the other, in a few MiB however long the period.
 * Both methods throw as those of Relatorios do.
 */
final readonly class Exportacao
{
    /** The events that have a word of their own; the others are "outro". */
    private const TIPOS = [
        1 => 'submetida',
        2 => 'aceita',
        3 => 'lida',
        4 => 'encerrada',
        5 => 'erro_conexao',
        6 => 'erro_conexao',
        7 => 'tentativa',
        8 => 'erro_remetente',
        9 => 'erro_destinatario',
        10 => 'erro_final',
        11 => 'erro_dados',
        12 => 'erro_helo',
        13 => 'erro_tamanho',
        14 => 'erro_dominio',
        15 => 'virus',
        17 => 'nova_tentativa',
        18 => 'spam',
    ];

    /** Those whose field 5 is an address or a host. */
    private const COM_NOME = [2 => true, 5 => true, 6 => true, 8 => true, 9 => true, 12 => true, 14 => true];

    private Dias $dias;

    public function __construct(private Relay $relay)
    {
        $this->dias = new Dias($relay->dados);
    }

    /**
     * The words that Evento::$tipo may be.
     *
     * @return list<string>
     */
    public static function tipos(): array
    {
        return array_values(array_unique([...self::TIPOS, 'outro']));
    }

    /** @return \Generator<int, ContasDeUsuario> in the order of the statistics files */
    public function usuarios(Periodo $periodo): \Generator
    {
        return $this->contas($this->dias->arquivos(Dias::ESTATISTICA, $periodo));
    }

    /** @return \Generator<int, Evento> in the order of the compact files */
    public function eventos(Periodo $periodo): \Generator
    {
        return $this->linhas($this->dias->arquivos(Dias::COMPACTO, $periodo));
    }

    private function contas(array $arquivos): \Generator
    {
        foreach ($arquivos as $dia => $arquivo) {
            $f = fopen($arquivo, 'rb');
            fgets($f);  // the day's totals
            $inicio = $hora = 0;
            for ($periodos = 0; ($linha = fgets($f)) !== false;) {
                $c = explode(' ', rtrim($linha, "\n"));
                if (count($c) < 9) {
                    // A user's name may look like the start of a period: his figures tell.
                    if ($periodos < 24 && preg_match('/^\[(\d+)\]$/D', $c[0], $m)) {
                        ++$periodos;
                        $inicio = (int) $m[1];
                        $hora = (int) (new \DateTime("@$inicio"))->setTimezone($this->relay->fuso)->format('G');
                        continue;
                    }
                    if (count($c) < 2) {
                        continue;
                    }
                }
                $n = [];
                for ($i = 1; $i < 9; ++$i) {
                    $n[] = (int) ($c[$i] ?? 0) & 0xFFFFFFFF;  // written signed, counted without a sign
                }
                yield new ContasDeUsuario(
                    $dia,
                    $inicio,
                    $hora,
                    Texto::utf8($c[0]),
                    $n[0],
                    $n[2],
                    $n[1],
                    $n[3],
                    $n[4],
                    $n[5],
                    $n[6],
                    $n[7]
                );
            }
            fclose($f);
        }
    }

    private function linhas(array $arquivos): \Generator
    {
        foreach ($arquivos as $dia => $arquivo) {
            $f = fopen($arquivo, 'rb');
            for ($n = 1; ($linha = fgets($f)) !== false; ++$n) {
                yield self::evento($dia, $n, rtrim($linha, "\r\n"));
            }
            fclose($f);
        }
    }

    private static function evento(string $dia, int $n, string $linha): Evento
    {
        if (preg_match('/[\x80-\xFF]/', $linha)) {
            $linha = Texto::utf8($linha);
        }
        $c = explode(' ', $linha, 5);
        $segundos = (int) @hexdec($c[0]);
        $tipo = $c[2] ?? '';
        $nome = self::TIPOS[$tipo] ?? null;
        if ($nome === null || !isset($c[3])) {
            // Kept as raw text, from the log's own word on: there is no status, nor an id in its place.
            $texto = explode(' ', $linha, 3)[2] ?? '';
            return new Evento($dia, $n, $segundos, 'outro', '', '', '', null, trim($texto));
        }
        $resto = $c[4] ?? '';
        if ($tipo === '1') {
            $s = explode(' ', $resto, 4);
            return new Evento(
                $dia,
                $n,
                $segundos,
                $nome,
                $c[3],
                $s[1] ?? '',
                $s[0],
                isset($s[2]) ? (int) $s[2] & 0xFFFFFFFF : null,
                $s[3] ?? ''
            );
        }
        return isset(self::COM_NOME[$tipo])
            ? new Evento($dia, $n, $segundos, $nome, $c[3], $resto, '', null, '')
            : new Evento($dia, $n, $segundos, $nome, $c[3], '', '', null, $resto);
    }
}
