<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Falha;
use Vorna\Mrel\Texto;

/** What is said of the differences between the statistics and the events. */
final class Diferencas
{
    /** Single differences that are named. */
    private const NOMEADAS = 20;

    /** @param array<string, array{list<array{string, int, int, bool}>, list<array{string, int, int}>}> $dias as in Somas */
    public static function somas(array $dias): Verificacao
    {
        $danos = $explicadas = $voltas = [];
        foreach ($dias as $dia => [$diferencas, $recomecos]) {
            foreach ($diferencas as [$onde, $noArquivo, $contado, $explicada]) {
                $frases = self::diferenca($dia, $onde, $noArquivo, $contado, $explicada);
                $explicada ? $explicadas[] = $frases : $danos[] = $frases;
            }
            foreach ($recomecos as [$onde, $noArquivo, $verdadeiro]) {
                $onde = self::cita($onde);
                $voltas[] = [
                    "$dia, $onde: $noArquivo recomeçou do zero aos 4 GiB; são $verdadeiro.",
                    "$dia, $onde: $noArquivo began again at 0 after 4 GiB; it is $verdadeiro.",
                ];
            }
        }
        $n = count($dias);
        $detalhes = self::limita([...$danos, ...$voltas, ...$explicadas]);
        $d = count($danos);
        $v = count($voltas);
        $e = count($explicadas);
        $explicado = $e === 0 ? ['', ''] : [
            " Outras $e são de mensagens em curso à meia-noite.", " Another $e are of messages in flight at midnight.",
        ];
        return match (true) {
            $d > 0 => new Verificacao('somas', Nivel::Critico, [
                "$d diferenças entre estatísticas e eventos que nenhuma regra explica.$explicado[0]",
                "$d differences between statistics and events that no rule explains.$explicado[1]",
            ], [
                'Se ainda há os logs, recue o ponto e consolide esses dias de novo; senão devolva os dois arquivos do backup.',
                'While the logs are there, put the point back and consolidate those days again; else put both files back '
                    . 'from the backup.',
            ], $detalhes),
            $v > 0 => new Verificacao('somas', Nivel::Aviso, [
                "$v contas de bytes recomeçaram do zero.$explicado[0]", "$v counts of bytes began again at 0.$explicado[1]",
            ], ['Valem os números abaixo.', 'The figures below are right.'], $detalhes),
            default => new Verificacao('somas', Nivel::Ok, [
                "As estatísticas de $n dias são as dos eventos.$explicado[0]",
                "The statistics of $n days are those of the events.$explicado[1]",
            ], ['', ''], $detalhes),
        };
    }

    /** @return array{string, string} */
    private static function diferenca(string $dia, string $onde, int $noArquivo, int $contado, bool $explicada): array
    {
        $onde = self::cita($onde);
        $regra = $explicada
            ? ['mensagem em curso à meia-noite, ou submetida antes do primeiro dia', 'a message in flight at midnight, or '
                . 'submitted before the first day'] : ['dano', 'damage'];
        return [
            "$dia, $onde: $noArquivo nas estatísticas, $contado nos eventos: $regra[0].",
            "$dia, $onde: $noArquivo in the statistics, $contado in the events: $regra[1].",
        ];
    }

    /**
     * @param list<array{string, string}> $frases
     * @return list<array{string, string}>
     */
    private static function limita(array $frases): array
    {
        $mais = count($frases) - self::NOMEADAS;
        return $mais <= 0 ? $frases
            : [...array_slice($frases, 0, self::NOMEADAS), ["... e mais $mais.", "... and $mais more."]];
    }

    private static function cita(string $onde): string
    {
        return Falha::cita(Texto::utf8($onde));
    }
}
