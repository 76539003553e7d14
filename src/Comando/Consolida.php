<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Consolidacao;
use Vorna\Mrel\Formato\Humano;
use Vorna\Mrel\Formato\Json;
use Vorna\Mrel\Formato\Quadro;
use Vorna\Mrel\Linha\Consolidado;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Tabelas;

/** Runs the consolidation and tells what was done. */
final class Consolida extends Comando
{
    public const OPCOES = ['forcar'];
    public const TABELAS = ['consolidado' => ''];

    private const OLHADA = 50000;  // microseconds from one look at the process to the next

    protected function configure(): void
    {
        $this->descreve(
            'consolida',
            'consolidate',
            'Consolida os logs até a meia-noite de hoje e diz o que foi feito',
            'Consolidates the logs up to today\'s midnight and tells what was done',
            ['vtmrel consolida', 'vtmrel consolida --formato json']
        );
    }

    protected function responde(Pedido $pedido, Saida $saida): int
    {
        $relay = $pedido->relay;
        ($relay->logs ?? '') !== '' || throw UsoErrado::falta(
            'logs',
            'diga onde estão os logs.',
            'say where the logs are.'
        );
        ($relay->ponto ?? '') !== '' || throw UsoErrado::falta(
            'ponto',
            'diga em que arquivo fica a última consolidação.',
            'say in which file the last consolidation is kept.'
        );
        $consolidacao = new Consolidacao($relay, $pedido->marcada('forcar'));
        $feito = $consolidacao->vale()
            ? $consolidacao->resultado(...$this->roda($consolidacao, $pedido, $saida)) : $consolidacao->resultado();
        $saida->escreve($this->textos($feito, $pedido));
        return $feito->feito() ? Aplicacao::FEITO : throw $feito->motivo;
    }

    /**
     * In another process, since the engine answers only at the end.
     *
     * @return array{?int, string} the signal that ended it, if one did, and what it said
     */
    private function roda(Consolidacao $consolidacao, Pedido $pedido, Saida $saida): array
    {
        $erros = tmpfile();
        $nada = ['file', '/dev/null', 'r+'];
        $processo = proc_open(self::comando($pedido), [$nada, $nada, $erros], $canos);
        $barra = stream_isatty(STDERR)
            ? new Progresso($saida->getErrorOutput(), $consolidacao->tamanhos(), $pedido->lingua) : null;
        for ($estado = proc_get_status($processo); $estado['running']; $estado = proc_get_status($processo)) {
            $barra?->olha($estado['pid']);
            usleep(self::OLHADA);
        }
        $barra?->acaba();
        rewind($erros);
        $texto = preg_replace('/^vtmrel: /', '', trim(stream_get_contents($erros)));
        if ($estado['exitcode'] === Aplicacao::IMPOSSIVEL) {
            throw new UsoErrado($texto, $texto);  // in the language asked for
        }
        return [$estado['signaled'] ? $estado['termsig'] : null, $texto];
    }

    /** @return list<string> */
    private static function comando(Pedido $pedido): array
    {
        $relay = $pedido->relay;
        return [
            dirname(__DIR__, 2) . '/bin/vtmrel', ConsolidaAqui::NOME, "--dados=$relay->dados", "--logs=$relay->logs",
            "--ponto=$relay->ponto", '--fuso=' . $relay->fuso->getName(), "--lingua=$pedido->lingua",
            ...($pedido->marcada('forcar') ? ['--forcar'] : []),
        ];
    }

    /** @return iterable<string> */
    private function textos(Consolidado $feito, Pedido $pedido): iterable
    {
        if ($pedido->marcada('excel') || in_array($pedido->formato, ['csv', 'ndjson'], true)) {
            return $pedido->comoEscrever()->pedacos(Tabelas::consolidado($feito));
        }
        if ($pedido->formato === 'json') {
            return [Json::texto(Tabelas::arvoreDoConsolidado($feito)) . "\n"];
        }
        $rotulos = new Rotulos($pedido->lingua);
        $humano = new Humano($pedido->lingua);
        $dias = array_map($humano->dia(...), $feito->dias);
        $ponto = $humano->instante($feito->ponto?->format(DATE_ATOM) ?? '');
        return [Quadro::ficha(array_filter([
            $rotulos->coluna('consolidado', 'dias') => implode(', ', $dias) ?: '-',
            $rotulos->coluna('consolidado', 'linhas') => $humano->numero($feito->linhas),
            $rotulos->coluna('consolidado', 'ponto') => $ponto ?: '-',
            $rotulos->coluna('consolidado', 'motivo') => $feito->motivo?->frase($pedido->lingua),
        ], 'is_string'))];
    }
}
