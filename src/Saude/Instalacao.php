<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Falha;

/** What must be right on the machine: the extension, the lock, room on the disk. */
final class Instalacao
{
    /** Seconds; a day of a large relay takes minutes. */
    private const LONGA = 3600;
    private const POUCOS_DIAS = 14;

    /**
     * @param ?string $modulo version of the extension; "" when it names none, null when it is not loaded
     * @param string $pacote that of the library
     */
    public static function modulo(?string $modulo, string $pacote): Verificacao
    {
        if ($modulo === null) {
            return new Verificacao('modulo', Nivel::Critico, [
                'A extensão vt_mrel não está carregada.', 'The extension vt_mrel is not loaded.',
            ], [
                'Ponha extension=vt_mrel na configuração do PHP.', 'Put extension=vt_mrel into the configuration of PHP.',
            ]);
        }
        $m = $modulo === '' ? ['sem versão', 'without a version'] : [$modulo, $modulo];
        return $modulo === $pacote
            ? Verificacao::ok('modulo', "A extensão é a do pacote, $pacote.", "The extension is the package's, $pacote.")
            : new Verificacao('modulo', Nivel::Aviso, [
                "A extensão é $m[0], e o pacote $pacote.", "The extension is $m[1], and the package $pacote.",
            ], [
                'Instale as duas partes da mesma versão e recarregue o PHP.',
                'Install both parts of one version, and reload PHP.',
            ]);
    }

    /**
     * @param ?array{int, int, string} $dono process, its age in seconds, its name; null when nobody holds it
     * @param ?array{bool, int} $arquivo whether it is a plain file, its owner; null when it is not there
     * @param ?int $usuario who consolidates; null when that is not known
     */
    public static function trava(?array $dono, ?array $arquivo, ?int $usuario, string $caminho): Verificacao
    {
        if ($dono !== null && $dono[1] > self::LONGA) {
            $horas = intdiv($dono[1], 3600);
            return new Verificacao('trava', Nivel::Critico, [
                "O processo $dono[2] tem a trava e roda há mais de $horas h: ninguém mais consolida.",
                "The process $dono[2] holds the lock and has run for more than $horas h: nobody else consolidates.",
            ], [
                'Veja o que ele faz; quem consolida deve terminar em seguida, e nunca ser uma página.',
                'See what it does; who consolidates must end then, and never be a page.',
            ]);
        }
        $estranha = $arquivo !== null && !$arquivo[0];
        if ($estranha || ($arquivo !== null && $usuario !== null && $usuario !== 0 && $arquivo[1] !== $usuario)) {
            return new Verificacao('trava', Nivel::Critico, $estranha
                ? ["A trava $caminho não é um arquivo comum.", "The lock $caminho is no plain file."]
                : [
                    "A trava $caminho é do usuário $arquivo[1], e quem consolida é $usuario.",
                    "The lock $caminho is of user $arquivo[1], and the one who consolidates is $usuario.",
                ], [
                    'Como root, veja com fuser que ninguém a usa e remova-a; consolide sempre com o mesmo usuário.',
                    'As root, see with fuser that nobody uses it, and remove it; consolidate always as the same user.',
                ]);
        }
        return $dono === null
            ? Verificacao::ok('trava', 'Ninguém tem a trava.', 'Nobody holds the lock.')
            : Verificacao::ok('trava', "$dono[2] consolida agora.", "$dono[2] consolidates now.");
    }

    /**
     * @param int $livre bytes
     * @param ?int $porDia bytes that the data grow by a day; null when there is no day to tell
     */
    public static function espaco(int $livre, ?int $porDia, string $onde): Verificacao
    {
        $l = self::mib($livre);
        $onde = Falha::cita($onde);
        if ($porDia === null) {
            return Verificacao::ok(
                'espaco',
                "Livres $l MiB em $onde; ainda não há dias por que medir.",
                "$l MiB are free in $onde; there are no days yet to measure by."
            );
        }
        $dias = intdiv($livre, max(1, $porDia));
        $d = self::mib($porDia);
        $texto = [
            "Livres $l MiB em $onde, $dias dias de $d MiB.", "$l MiB are free in $onde, $dias days of $d MiB.",
        ];
        if ($dias >= self::POUCOS_DIAS) {
            return Verificacao::ok('espaco', ...$texto);
        }
        return new Verificacao('espaco', $dias < 1 ? Nivel::Critico : Nivel::Aviso, $texto, [
            'Abra espaço: sem ele o dia fica cortado e o ponto não anda.',
            'Make room: without it the day is cut short and the point does not move.',
        ]);
    }

    private static function mib(int $bytes): string
    {
        return (string) ($bytes < 10 << 20 ? round($bytes / (1 << 20), 1) : $bytes >> 20);
    }
}
