<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Falha;
use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Texto;

/** Messages that have been in flight for longer than any dispatcher tries. */
final class Presas
{
    private const DIAS = 5;

    /**
     * When the messages in flight were submitted, as the last-consolidation file says.
     *
     * @return array<string, int> Unix seconds by id; messages of which it is not known are left out
     */
    public static function de(string $arquivo): array
    {
        $arquivo !== '' || throw EntradaInvalida::naoConfigurado('ponto');
        $texto = is_file($arquivo) ? (string) @file_get_contents($arquivo) : '';
        preg_match_all('/\r\n(\S+) -?\d+ [SN] [SN] [SN] [SN] ([1-9]\d*) -?\d+ /', $texto, $m);
        return array_map('intval', array_combine($m[1], $m[2]));
    }

    /**
     * @param array<string, int> $submetidas by id
     * @param ?string $ponto its day
     */
    public static function presas(array $submetidas, ?string $ponto, \DateTimeZone $fuso): Verificacao
    {
        $limite = $ponto === null ? 0 : Periodo::dia($ponto, $fuso)->inicio()->getTimestamp() - self::DIAS * 86400;
        $velhas = array_filter($submetidas, static fn (int $t): bool => $t < $limite);
        $n = count($submetidas);
        if (!$velhas) {
            return Verificacao::ok(
                'presas',
                "$n mensagens em curso, nenhuma há muito.",
                "$n messages in flight, none for long."
            );
        }
        asort($velhas);
        $id = (string) array_key_first($velhas);
        $desde = (new \DateTimeImmutable("@$velhas[$id]"))->setTimezone($fuso)->format('Y-m-d');
        [$v, $id, $dias] = [count($velhas), Falha::cita(Texto::utf8($id)), self::DIAS];
        return new Verificacao('presas', Nivel::Aviso, [
            "$v mensagens em curso há mais de $dias dias; a mais antiga, $id, desde $desde.",
            "$v messages in flight for more than $dias days; the oldest, $id, since $desde.",
        ], [
            "Veja vtmrel rastro $id e a fila do despachante; uma cujo fim nunca foi escrito no log fica para sempre, "
                . 'sem dano.',
            "See vtmrel trace $id and the dispatcher's queue; one whose end was never logged stays for good, and does "
                . 'no harm.',
        ]);
    }
}
