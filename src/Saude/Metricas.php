<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Falha;
use Vorna\Mrel\Logs;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Versao;

/**
 * The figures beside the checks: as performance data on the first line for a monitoring system, and as
 * gauges in a file for Prometheus.
 */
final class Metricas
{
    /** By name: the label that tells its values apart, and what it is. */
    private const GAUGES = [
        'vtmrel_complete_until_timestamp_seconds' => ['', 'Midnight up to which all days are consolidated.'],
        'vtmrel_day_messages' => ['origin', 'Messages of the last complete day, by the kind of sender.'],
        'vtmrel_day_size_bytes' => ['origin', 'Size of the messages of the last complete day; begins again at 0 after 4 GiB.'],
        'vtmrel_day_marked_messages' => ['mark', 'Messages of the last complete day with spam, a virus or an error.'],
        'vtmrel_inflight_messages' => ['', 'Messages in flight at the recorded point.'],
        'vtmrel_day_gaps' => ['', 'Days without their files before the recorded point.'],
        'vtmrel_live_log_age_seconds' => ['', 'Time since the live log was last written to.'],
    ];
    private const CHECK = 'vtmrel_check_status';
    private const QUANDO = 'vtmrel_check_timestamp_seconds';
    private const VERSAO = 'vtmrel_build_info';

    /** @return array<string, int|float|array<string, int|float>> by name; what cannot be told is left out */
    public static function medidas(Situacao $s): array
    {
        $partes = [self::doPonto(...), self::doDia(...), self::doLog(...)];
        $medidas = [];
        foreach ($partes as $parte) {
            try {
                $medidas += $parte($s);
            } catch (Falha) {
                // The checks say why.
            }
        }
        return array_filter($medidas, static fn (mixed $m): bool => $m !== null);
    }

    private static function doPonto(Situacao $s): array
    {
        $ponto = $s->ponto();
        return [
            'vtmrel_complete_until_timestamp_seconds' =>
                $ponto === null ? null : Periodo::dia($ponto, $s->relay->fuso)->inicio()->getTimestamp(),
            'vtmrel_inflight_messages' => $s->emCurso(),
            'vtmrel_day_gaps' => $s->completos() ? count($s->faltam()) : null,
        ];
    }

    private static function doDia(Situacao $s): array
    {
        $dia = $s->ultimo();
        $t = $dia === null ? null : $s->totais($dia);
        return $t === null ? [] : [
            'vtmrel_day_messages' => ['local' => $t[4], 'other' => $t[6]],
            'vtmrel_day_size_bytes' => ['local' => $t[5], 'other' => $t[7]],
            'vtmrel_day_marked_messages' => ['spam' => $t[0], 'virus' => $t[1], 'error' => $t[2]],
        ];
    }

    private static function doLog(Situacao $s): array
    {
        $escrito = @filemtime($s->relay->logs . '/' . Logs::VIVO);
        return ($s->relay->logs ?? '') === '' || $escrito === false
            ? [] : ['vtmrel_live_log_age_seconds' => max(0, $s->agora->getTimestamp() - $escrito)];
    }

    /**
     * The text of a file for Prometheus, one gauge behind the other.
     *
     * @param list<Resultado> $resultados of different relays
     */
    public static function prometheus(array $resultados): string
    {
        $niveis = static fn (Resultado $r): array => array_column(array_map(
            static fn (Verificacao $v): array => [$v->nome, $v->nivel->codigo()],
            $r->verificacoes
        ), 1, 0);
        $quando = static fn (Resultado $r): int => $r->quando->getTimestamp();
        $versao = static fn (): array => [Versao::PACOTE => 1];
        $texto = self::gauge(
            self::CHECK,
            'Outcome of a check: 0 ok, 1 warning, 2 critical, 3 unknown.',
            $resultados,
            'check',
            $niveis
        ) . self::gauge(self::QUANDO, 'When the checks were done.', $resultados, '', $quando);
        foreach (self::GAUGES as $nome => [$rotulo, $ajuda]) {
            $medida = static fn (Resultado $r): mixed => $r->medidas[$nome] ?? null;
            $texto .= self::gauge($nome, $ajuda, $resultados, $rotulo, $medida);
        }
        $ajuda = 'The version of the library that checked; always 1.';
        return $texto . self::gauge(self::VERSAO, $ajuda, $resultados, 'version', $versao);
    }

    /** The figures of one relay as performance data: name=value;warning;critical, each a range without alarm. */
    public static function desempenho(Resultado $r, string $prefixo): string
    {
        $m = $r->medidas;
        $atraso = isset($m['vtmrel_complete_until_timestamp_seconds'])
            ? max(0, (int) round(($r->quando->setTime(0, 0)->getTimestamp()
                - $m['vtmrel_complete_until_timestamp_seconds']) / 86400)) : null;
        $dados = [
            'atraso' => $atraso === null ? null : "$atraso;0;1;0",
            'mensagens' => isset($m['vtmrel_day_messages']) ? array_sum($m['vtmrel_day_messages']) . ';;;0' : null,
            'em_curso' => isset($m['vtmrel_inflight_messages']) ? "$m[vtmrel_inflight_messages];;;0" : null,
            'lacunas' => isset($m['vtmrel_day_gaps']) ? "$m[vtmrel_day_gaps];;0;0" : null,
            'log' => isset($m['vtmrel_live_log_age_seconds']) ? "$m[vtmrel_live_log_age_seconds]s;;;0" : null,
        ];
        $textos = [];
        foreach (array_filter($dados, 'is_string') as $nome => $valor) {
            $textos[] = "'" . strtr($prefixo, "'=", '__') . "$nome'=$valor";
        }
        return implode(' ', $textos);
    }

    /** @param \Closure(Resultado): (int|float|array<string, int|float>|null) $valor */
    private static function gauge(
        string $nome,
        string $ajuda,
        array $resultados,
        string $rotulo,
        \Closure $valor,
    ): string {
        $linhas = '';
        foreach ($resultados as $r) {
            $v = $valor($r);
            foreach (is_array($v) ? $v : ['' => $v] as $qual => $n) {
                $mais = $rotulo === '' ? '' : ",$rotulo=" . self::entreAspas((string) $qual);
                $linhas .= $n === null ? '' : "{$nome}{relay=" . self::entreAspas(Falha::cita($r->relay)) . "$mais} $n\n";
            }
        }
        return $linhas === '' ? '' : "# HELP $nome $ajuda\n# TYPE $nome gauge\n$linhas";
    }

    private static function entreAspas(string $texto): string
    {
        return '"' . strtr($texto, ['\\' => '\\\\', '"' => '\\"', "\n" => '\\n']) . '"';
    }
}
