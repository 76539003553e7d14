<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Consolidacao;
use Vorna\Mrel\Falha\NaoConsolidado;
use Vorna\Mrel\Formato\Humano;
use Vorna\Mrel\Formato\Json;
use Vorna\Mrel\Formato\Quadro;
use Vorna\Mrel\Juncao;
use Vorna\Mrel\Linha\Consolidado;
use Vorna\Mrel\Rascunho;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Tabelas;

/** Runs the consolidation and tells what was done. */
final class Consolida extends Comando
{
    public const OPCOES = ['forcar', 'ate-agora', 'juntar'];
    public const TABELAS = ['consolidado' => ''];

    private const OLHADA = 50000;  // microseconds from one look at the process to the next

    /** Of joined logs, while there are any. */
    private ?Rascunho $juntos = null;

    protected function configure(): void
    {
        $this->descreve(
            'consolida',
            'consolidate',
            'Consolida os logs até a meia-noite de hoje e diz o que foi feito',
            'Consolidates the logs up to today\'s midnight and tells what was done',
            ['vtmrel consolida', 'vtmrel consolida --ate-agora', 'vtmrel consolida --juntar --formato json']
        );
    }

    protected function responde(Pedido $pedido, Saida $saida): int
    {
        self::verifica($pedido);
        try {
            self::aoSinal();
            Rascunho::varre($pedido->relay->dados);
            $juntar = $pedido->marcada('juntar') ? fn (): string => $this->junta($pedido) : null;
            $consolidacao = new Consolidacao(
                $pedido->relay,
                $pedido->marcada('forcar'),
                $pedido->marcada('ate-agora'),
                $juntar
            );
            $feito = $consolidacao->vale()
                ? $consolidacao->resultado(...$this->roda($consolidacao, $pedido, $saida)) : $consolidacao->resultado();
        } finally {
            $this->juntos?->apaga();
        }
        $saida->escreve($this->textos($feito, $pedido));
        return $feito->feito() ? Aplicacao::FEITO : throw $feito->motivo;
    }

    private static function verifica(Pedido $pedido): void
    {
        ($pedido->relay->logs ?? '') !== '' || throw UsoErrado::falta(
            'logs',
            'diga onde estão os logs.',
            'say where the logs are.'
        );
        ($pedido->relay->ponto ?? '') !== '' || throw UsoErrado::falta(
            'ponto',
            'diga em que arquivo fica a última consolidação.',
            'say in which file the last consolidation is kept.'
        );
        if ($pedido->marcada('forcar') && $pedido->marcada('ate-agora')) {
            throw new UsoErrado(
                '--ate-agora já vai até este momento: não dê com ela --forcar.',
                '--ate-agora goes up to this moment already: do not give --forcar with it.'
            );
        }
    }

    /** Whoever ends this process ends it as a failure does: what it made for itself is removed. */
    private static function aoSinal(): void
    {
        pcntl_async_signals(true);
        foreach ([SIGINT, SIGTERM, SIGHUP] as $sinal) {
            pcntl_signal($sinal, static fn () => throw NaoConsolidado::interrompido($sinal));
        }
    }

    /** @return string the directory of the joined log */
    private function junta(Pedido $pedido): string
    {
        $this->juntos = Rascunho::abre($pedido->relay->dados, Rascunho::JUNTOS)
            ?? throw NaoConsolidado::ocupado('', $pedido->marcada('ate-agora'));
        $juncao = new Juncao($pedido->relay);
        $juncao->escreve($this->juntos->caminho, static function (int $arquivos, int $bytes, int $livres) use ($pedido): void {
            $humano = new Humano($pedido->lingua);
            Aplicacao::diz((new Rotulos($pedido->lingua))->juncao(
                $humano->numero($arquivos),
                $humano->tamanho($bytes),
                $humano->tamanho($livres)
            ));
        });
        return $this->juntos->caminho;
    }

    /**
     * In another process, since the engine answers only at the end.
     *
     * @return array{?int, string, bool} the signal that ended it, if one did; what it said; whether it ended well
     */
    private function roda(Consolidacao $consolidacao, Pedido $pedido, Saida $saida): array
    {
        $erros = tmpfile();
        $nada = ['file', '/dev/null', 'r+'];
        $processo = proc_open(self::comando($pedido, $consolidacao->diretorioDosLogs()), [$nada, $nada, $erros], $canos);
        $barra = stream_isatty(STDERR)
            ? new Progresso($saida->getErrorOutput(), $consolidacao->tamanhos(), $pedido->lingua) : null;
        try {
            for ($estado = proc_get_status($processo); $estado['running']; $estado = proc_get_status($processo)) {
                $barra?->olha($estado['pid']);
                usleep(self::OLHADA);
            }
        } catch (NaoConsolidado $interrompido) {
            proc_terminate($processo, SIGKILL);
            proc_close($processo);
            throw $interrompido;
        } finally {
            Rascunho::varre($pedido->relay->dados);
        }
        $barra?->acaba();
        rewind($erros);
        $texto = preg_replace('/^vtmrel: /', '', trim(stream_get_contents($erros)));
        if ($estado['exitcode'] === Aplicacao::IMPOSSIVEL) {
            throw new UsoErrado($texto, $texto);  // in the language asked for
        }
        return [$estado['signaled'] ? $estado['termsig'] : null, $texto, $estado['exitcode'] === Aplicacao::FEITO];
    }

    /** @return list<string> */
    private static function comando(Pedido $pedido, string $logs): array
    {
        $relay = $pedido->relay;
        $marcadas = array_filter(['forcar', 'ate-agora'], $pedido->marcada(...));
        return [
            dirname(__DIR__, 2) . '/bin/vtmrel', ConsolidaAqui::NOME, "--dados=$relay->dados", "--logs=$logs",
            "--ponto=$relay->ponto", '--fuso=' . $relay->fuso->getName(), "--lingua=$pedido->lingua",
            ...array_map(static fn (string $opcao): string => "--$opcao", array_values($marcadas)),
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
