<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Falha;

/** The day files as files: who may read them, and whether they were cut short. */
final class Arquivos
{
    /** Bytes looked at from the end of a file; lines are far shorter. */
    private const CAUDA = 65536;
    /** From so many bytes on a line of the log is parted, and its raw text may end without a line end. */
    private const LONGA = 1900;

    /** Fields of a compact line, by status. A refusal's text (10) may hold anything. */
    private const CAMPOS = [
        1 => 7, 2 => 5, 3 => 4, 4 => 4, 5 => 5, 7 => 4, 8 => 5, 9 => 5, 11 => 4, 12 => 5, 13 => 4, 14 => 5, 15 => 4,
        17 => 5, 18 => 4,
    ];

    /** @param array<string, array{bool, int}> $arquivos whether it can be read, and its owner, by path */
    public static function leitura(array $arquivos): Verificacao
    {
        $ilegiveis = array_keys(array_filter($arquivos, static fn (array $a): bool => !$a[0]));
        if ($ilegiveis) {
            $lista = self::lista($ilegiveis);
            return new Verificacao('leitura', Nivel::Critico, [
                "Este usuário não lê $lista[0].", "This user cannot read $lista[1].",
            ], [
                'Dê-lhe o grupo dos arquivos e ponha UMask=0027 ou 0022 na consolidação.',
                'Give him the group of the files, and put UMask=0027 or 0022 into the consolidation.',
            ]);
        }
        $donos = array_count_values(array_column($arquivos, 1));
        arsort($donos);
        $dono = array_key_first($donos);
        $alheios = array_keys(array_filter($arquivos, static fn (array $a): bool => $a[1] !== $dono));
        if (!$alheios) {
            return Verificacao::ok('leitura', 'Todos os dias podem ser lidos.', 'All days can be read.');
        }
        $lista = self::lista($alheios);
        return new Verificacao('leitura', Nivel::Aviso, [
            "De outro dono que os vizinhos ($dono): $lista[0].", "Of another owner than their neighbours ($dono): $lista[1].",
        ], [
            'Devolva-os com chown; consolide sempre com o mesmo usuário, nunca como root à mão.',
            'Give them back with chown; consolidate always as the same user, never as root by hand.',
        ]);
    }

    /** @param array<string, string> $rasgados what is wrong, "pt|en", by path */
    public static function inteiro(array $rasgados, int $quantos): Verificacao
    {
        if (!$rasgados) {
            return Verificacao::ok('inteiro', "$quantos arquivos inteiros.", "$quantos whole files.");
        }
        $lista = self::lista(array_keys($rasgados));
        [$pt, $en] = explode('|', reset($rasgados));
        return new Verificacao('inteiro', Nivel::Critico, [
            "Rasgados: $lista[0] ($pt).", "Torn: $lista[1] ($en).",
        ], [
            'Veja se o disco encheu; se ainda há os logs, recue o ponto e consolide de novo.',
            'See whether the disk was full; while the logs are there, put the point back and consolidate again.',
        ]);
    }

    /** What is wrong with the head or the tail of a statistics file, "pt|en"; null for nothing. */
    public static function estatistica(string $arquivo): ?string
    {
        $f = fopen($arquivo, 'rb');
        $cabeca = (string) fread($f, 300);
        $tamanho = fstat($f)['size'];
        if (!preg_match('/^\d+ \d+(?: -?\d+){8}\n\[(\d+)\]\n/', $cabeca, $m)) {
            fclose($f);
            return 'a primeira linha não são dez números e uma hora|the first line is not ten numbers and an hour';
        }
        // An hour of many users may be longer than the tail.
        for ($n = self::CAUDA, $horas = []; !$horas && $n < 2 * $tamanho + self::CAUDA; $n *= 8) {
            fseek($f, max(0, $tamanho - $n));
            $cauda = (string) stream_get_contents($f);
            preg_match_all('/^\[(\d+)\]$/m', $cauda, $h);
            $horas = $h[1];
        }
        fclose($f);
        if (!str_ends_with($cauda, "\n")) {
            return 'a última linha não termina|the last line does not end';
        }
        if ((int) end($horas) - (int) $m[1] !== 23 * 3600) {
            return 'não há 24 horas|there are not 24 hours';
        }
        $ultima = substr($cauda, (int) strrpos("\n" . rtrim($cauda, "\n"), "\n"));
        return self::linhaDeUsuario(rtrim($ultima, "\n")) || preg_match('/^\[\d+\]$/m', $ultima)
            ? null : 'a última linha não tem nove campos|the last line has not nine fields';
    }

    /** What is wrong with the head or the tail of a compact file, "pt|en"; null for nothing. */
    public static function compacto(string $arquivo): ?string
    {
        $f = fopen($arquivo, 'rb');
        $primeira = fgets($f);
        fseek($f, max(0, fstat($f)['size'] - self::CAUDA));
        $cauda = (string) stream_get_contents($f);
        fclose($f);
        if ($primeira === false) {
            return null;  // a day without mail
        }
        if (!self::evento(rtrim($primeira, "\r\n"))) {
            return 'a primeira linha não é um evento|the first line is no event';
        }
        $ultima = substr($cauda, (int) strrpos("\n" . rtrim($cauda, "\n"), "\n"));
        if (!str_ends_with($ultima, "\n") && strlen($ultima) < self::LONGA) {
            return 'a última linha não termina|the last line does not end';
        }
        return self::evento(rtrim($ultima, "\r\n"))
            ? null : 'a última linha não é um evento|the last line is no event';
    }

    /** What is wrong within the statistics of a day whose head and tail are right, "pt|en"; null for nothing. */
    public static function linhas(string $texto): ?string
    {
        $usuarios = preg_match_all('/^[^ \n]*(?: -?\d+){8}$/m', $texto);
        $horas = preg_match_all('/^\[\d+\]$/m', $texto);
        // The day's totals are one more.
        $outras = substr_count($texto, "\n") - $usuarios - $horas - 1;
        return match (true) {
            $horas !== 24 => "há $horas horas|there are $horas hours",
            $outras !== 0 => "$outras linhas não têm nove campos|$outras lines have not nine fields",
            default => null,
        };
    }

    public static function linhaDeUsuario(string $linha): bool
    {
        return preg_match('/^[^ ]* \d+ -?\d+ \d+ -?\d+ \d+ \d+ \d+ \d+$/D', $linha) === 1;
    }

    /** Whether a line, without its end, is as the consolidation writes one. */
    public static function evento(string $linha): bool
    {
        $c = explode(' ', $linha, 8);
        if (!preg_match('/^[0-9a-f]{1,8} [0-3](?: |$)/', $linha)) {
            return false;
        }
        // Without a status that is known it is raw text of the log.
        $campos = isset($c[2]) && (string) (int) $c[2] === $c[2] ? self::CAMPOS[(int) $c[2]] ?? null : null;
        return $campos === null || count($c) === $campos;
    }

    /**
     * Files as a sentence names them: the folder and the name, three of many.
     *
     * @param list<string> $arquivos
     * @return array{string, string}
     */
    public static function lista(array $arquivos): array
    {
        return Andamento::lista(array_map(
            static fn (string $a): string => Falha::cita(basename(dirname($a)) . '/' . basename($a)),
            array_values($arquivos)
        ));
    }
}
