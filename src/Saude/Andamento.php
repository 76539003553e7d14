<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Periodo;

/** How far the consolidation has come: the point, the days before it, the zone they were written in. */
final class Andamento
{
    /** When the run of the morning, the second of the two, is over. */
    private const HORA = '07:00';

    /** @param ?string $ponto its day; null for none */
    public static function ponto(?string $ponto, \DateTimeImmutable $agora): Verificacao
    {
        $hoje = $agora->format('Y-m-d');
        if ($ponto === null) {
            return new Verificacao('ponto', Nivel::Critico, [
                'Nenhum ponto registrado: nada foi consolidado, ou o arquivo do ponto se perdeu.',
                'No point is recorded: nothing was consolidated, or the point\'s file is lost.',
            ], [
                'Rode vtmrel consolida; se já havia dias, antes devolva o arquivo do ponto.',
                'Run vtmrel consolidate; if there were days before, put the point\'s file back first.',
            ]);
        }
        if ($ponto > $hoje) {
            return new Verificacao('ponto', Nivel::Critico, [
                "O ponto é $ponto, que ainda não chegou: até lá nada se consolida.",
                "The point is $ponto, which is yet to come: nothing is consolidated until then.",
            ], [
                'Acerte o relógio ou o arquivo do ponto.', 'Set the clock or the point\'s file right.',
            ]);
        }
        $atraso = Periodo::de($ponto, $hoje)->quantosDias() - 1;
        if ($atraso === 0 || ($atraso === 1 && $agora->format('H:i') < self::HORA)) {
            return Verificacao::ok(
                'ponto',
                "Os dias antes de $ponto estão completos.",
                "The days before $ponto are complete."
            );
        }
        $dias = $atraso === 1 ? ['um dia', 'one day'] : ["$atraso dias", "$atraso days"];
        return new Verificacao('ponto', $atraso === 1 ? Nivel::Aviso : Nivel::Critico, [
            "O ponto é $ponto, $dias[0] atrás.", "The point is $ponto, $dias[1] behind.",
        ], [
            'Veja o que vtmrel consolida diz, e se o timer roda.',
            'See what vtmrel consolidate says, and whether the timer runs.',
        ]);
    }

    /**
     * @param ?string $primeiro the first day that has a file; null when none has
     * @param list<string> $faltam the days since then that lack one
     * @param string $fim the first day that need not be there: the point
     */
    public static function dias(?string $primeiro, array $faltam, string $fim): Verificacao
    {
        if ($primeiro === null) {
            return new Verificacao('dias', Nivel::Desconhecido, [
                "Não há nenhum dia antes de $fim.", "There is no day before $fim.",
            ], ['Confira o diretório de dados.', 'Check the data directory.']);
        }
        if (!$faltam) {
            return Verificacao::ok('dias', "Nenhum dia falta desde $primeiro.", "No day is missing since $primeiro.");
        }
        $lista = self::lista($faltam);
        return new Verificacao('dias', Nivel::Critico, ["Faltam dias: $lista[0].", "Days are missing: $lista[1]."], [
            'Devolva-os do backup; ou, se ainda há os logs deles, recue o ponto e consolide.',
            'Put them back from the backup; or, while their logs are there, put the point back and consolidate.',
        ]);
    }

    /**
     * The days from the first one to the one before $fim that are not among those that are there.
     *
     * @param list<string> $inteiros
     * @return list<string>
     */
    public static function faltam(string $primeiro, string $fim, array $inteiros): array
    {
        $inteiros = array_flip($inteiros);
        $faltam = [];
        for ($dia = $primeiro; $dia < $fim; $dia = Situacao::dia($dia, 1)) {
            isset($inteiros[$dia]) || $faltam[] = $dia;
        }
        return $faltam;
    }

    /** @param array<string, int> $inicios when the first hour of each day begins, as its file says */
    public static function fuso(array $inicios, \DateTimeZone $fuso): Verificacao
    {
        $outros = array_filter(
            $inicios,
            static fn (int $inicio, string $dia): bool => !self::comeca($inicio, Periodo::dia($dia, $fuso)),
            ARRAY_FILTER_USE_BOTH
        );
        $nome = $fuso->getName();
        if (!$outros) {
            return Verificacao::ok('fuso', "Os dias são do fuso $nome.", "The days are of the zone $nome.");
        }
        [$lista, $dia] = [self::lista(array_keys($outros)), array_key_first($outros)];
        $hora = (new \DateTimeImmutable("@$outros[$dia]"))->setTimezone($fuso)->format('Y-m-d H:i');
        return new Verificacao('fuso', Nivel::Aviso, [
            "Dias escritos em outro fuso que $nome: $lista[0]; $dia começa aqui em $hora.",
            "Days written in another zone than $nome: $lista[1]; $dia begins here at $hora.",
        ], [
            'Dê na configuração (fuso) o fuso em que a consolidação roda.',
            'Give in the configuration (fuso) the zone in which the consolidation runs.',
        ]);
    }

    /** Whether a day's first hour may begin there: its midnight, also one that a change of clocks skips or repeats. */
    private static function comeca(int $inicio, Periodo $dia): bool
    {
        $dif = $inicio - $dia->inicio()->getTimestamp();
        $muda = $dia->fim()->getTimestamp() - $dia->inicio()->getTimestamp() !== 86400
            || $dia->inicio()->format('H:i') !== '00:00';
        return $dif === 0 || ($muda && abs($dif) <= 3600);
    }

    /**
     * Days as a sentence names them: not more than three of many.
     *
     * @param list<string> $dias
     * @return array{string, string}
     */
    public static function lista(array $dias): array
    {
        $texto = implode(', ', array_slice($dias, 0, 3));
        $mais = count($dias) - 3;
        return $mais > 0 ? ["$texto e mais $mais", "$texto and $mais more"] : [$texto, $texto];
    }
}
