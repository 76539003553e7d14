<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Calendario;
use Vorna\Mrel\EmAberto;
use Vorna\Mrel\Linha\HoraDeUsuario;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Relatorios;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Tabela;

/** What was asked for, in the library's terms. */
final class Pedido
{
    public readonly Relatorios $relatorios;
    private Periodo|false|null $periodo = false;
    /** @var array<string, \DateTimeImmutable> */
    private array $abertos = [];

    public function __construct(
        private readonly Pagina $pagina,
        public readonly Parametros $parametros,
        public readonly Relay $relay,
        public readonly Permissao $permissao,
        public readonly Enderecos $enderecos,
        public readonly string $lingua,
        public readonly \DateTimeImmutable $agora,
    ) {
        $this->relatorios = new Relatorios($relay);
    }

    /** Null when what was asked for is wrong. */
    public function periodo(): ?Periodo
    {
        if ($this->periodo === false) {
            $periodo = $this->parametros->periodo(
                new Calendario($this->relay, $this->agora),
                $this->pagina::DIAS,
                $this->pagina::MAXIMO
            );
            $this->periodo = $periodo;
            $this->abertos = $periodo === null ? [] : (new EmAberto($this->relay, $this->agora))->dias($periodo);
        }
        return $this->periodo;
    }

    /**
     * The days of the period that are not over, as they were before any figure was read.
     *
     * @return array<string, \DateTimeImmutable> until when, by day
     */
    public function abertos(): array
    {
        return $this->periodo() === null ? [] : $this->abertos;
    }

    /** The table with its days that are not over marked. */
    private function marcada(Tabela $tabela): Tabela
    {
        return $tabela->comAbertos($tabela->abertos ?: $this->abertos());
    }

    /** Whether all that was read of the parameters so far could be understood. */
    public function entendido(): bool
    {
        return !$this->parametros->erros();
    }

    /**
     * For who may see some domains: the hours of all their users together, on each day.
     *
     * @return list<HoraDeUsuario>
     */
    public function horasDosDominios(Periodo $periodo): array
    {
        $permissao = $this->permissao;
        $horas = $this->relatorios->horasDosDominios($periodo, $permissao->dominios(), $permissao->semDominio);
        return iterator_to_array($horas, false);
    }

    /**
     * @param array<string, \Closure(list<mixed>): ?string> $ligacoes address behind a cell, by column, from its row
     * @param list<string> $sem columns that the page tells otherwise
     */
    public function html(Tabela $tabela, array $ligacoes = [], array $sem = []): TabelaHtml
    {
        return new TabelaHtml($this->marcada($tabela), $this->lingua, $ligacoes, $sem);
    }

    /**
     * Periods that people ask for, besides dates.
     *
     * @return array<string, array{string, string}> first and last day by the text's name
     */
    public function atalhos(): array
    {
        $calendario = new Calendario($this->relay, $this->agora);
        $atalhos = [];
        foreach (['ultimos-1', 'ultimos-7', 'ultimos-30', 'este-mes', 'mes-passado'] as $palavra) {
            try {
                $periodo = $calendario->periodo($palavra);
                if ($periodo->quantosDias() <= $this->pagina::MAXIMO) {
                    $atalhos[$palavra] = [$periodo->primeiro, $periodo->ultimo];
                }
            } catch (\Vorna\Mrel\Falha) {
                // Without a complete day there is none; the page itself tells of data that cannot be read.
            }
        }
        return $atalhos;
    }
}
