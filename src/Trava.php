<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** The lock that lets one process a machine consolidate, as seen from outside. */
final class Trava
{
    public const ARQUIVO = '/tmp/vtmrel.lck';

    /** Who holds it: "1234 (php8.2, relreports)"; null when nobody is seen to. */
    public static function dono(): ?string
    {
        $pid = self::processoDono();
        return $pid === null ? null : self::processo($pid);
    }

    /** Whether it is this process's. */
    public static function minha(): bool
    {
        return self::processoDono() === getmypid();
    }

    /**
     * The same with its age: process, seconds since it began, who it is.
     *
     * @return ?array{int, int, string}
     */
    public static function donoComIdade(): ?array
    {
        $pid = self::processoDono();
        if ($pid === null) {
            return null;
        }
        // Ticks of a hundredth of a second after the machine's start, behind the name, which may hold anything.
        $campos = explode(' ', preg_replace('/^.*\) /s', '', (string) @file_get_contents("/proc/$pid/stat")));
        $ligada = (float) @file_get_contents('/proc/uptime');
        $idade = isset($campos[19]) ? (int) ($ligada - (int) $campos[19] / 100) : 0;
        return [$pid, max(0, $idade), self::processo($pid)];
    }

    /** @return ?array{bool, int} whether it is a plain file, its owner; null when it is not there */
    public static function arquivo(): ?array
    {
        clearstatcache(true, self::ARQUIVO);
        $l = @lstat(self::ARQUIVO);
        return $l === false ? null : [($l['mode'] & 0170000) === 0100000, $l['uid']];
    }

    /** Whether this user could not take it even if nobody held it. */
    public static function recusa(): bool
    {
        clearstatcache(true, self::ARQUIVO);
        return is_link(self::ARQUIVO)
            || (file_exists(self::ARQUIVO) && (!is_file(self::ARQUIVO) || !is_writable(self::ARQUIVO)));
    }

    private static function processoDono(): ?int
    {
        clearstatcache(true, self::ARQUIVO);
        $inodo = @fileinode(self::ARQUIVO);
        if ($inodo === false) {
            return null;
        }
        $disco = self::disco();
        foreach (@file('/proc/locks') ?: [] as $linha) {
            if (
                preg_match('/^\d+: POSIX .* (\d+) ([0-9a-f]+:[0-9a-f]+):(\d+) /', $linha, $m)
                && (int) $m[3] === $inodo && ($disco === null || $m[2] === $disco)
            ) {
                return (int) $m[1];
            }
        }
        return null;
    }

    /**
     * The file system that it is on, as /proc/locks names it: files of others may have the same number. Taken
     * from the mounts, since what stat tells is another one on some file systems.
     */
    private static function disco(): ?string
    {
        $disco = null;
        $maior = 0;
        foreach (@file('/proc/self/mountinfo') ?: [] as $linha) {
            [, , $numeros, , $ponto] = explode(' ', $linha) + ['', '', '', '', '-'];
            if (strlen($ponto) >= $maior && str_starts_with(self::ARQUIVO, rtrim($ponto, '/') . '/')) {
                $maior = strlen($ponto);
                $disco = vsprintf('%02x:%02x', explode(':', $numeros));
            }
        }
        return $disco;
    }

    private static function processo(int $pid): string
    {
        $nome = trim((string) @file_get_contents("/proc/$pid/comm"));
        $uid = @fileowner("/proc/$pid");
        $usuario = $uid === false ? '' : self::usuario($uid);
        $detalhes = implode(', ', array_filter([$nome, $usuario]));
        return $detalhes === '' ? "$pid" : "$pid ($detalhes)";
    }

    /** By /etc/passwd: the module that knows users may not be loaded. */
    public static function usuario(int $uid): string
    {
        $texto = (string) @file_get_contents('/etc/passwd');
        return preg_match("/^([^:\n]+):[^:\n]*:$uid:/m", $texto, $m) ? $m[1] : "uid $uid";
    }
}
