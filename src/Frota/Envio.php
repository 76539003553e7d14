<?php

declare(strict_types=1);

namespace Vorna\Mrel\Frota;

use Vorna\Mrel\Anonimo;
use Vorna\Mrel\Dias;
use Vorna\Mrel\Exportacao;
use Vorna\Mrel\Falha;
use Vorna\Mrel\Falha\EnvioFalhou;
use Vorna\Mrel\Linha\Enviado;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Relatorios;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/**
 * Puts days of one relay into the fleet's database: a day is there whole or not at all, and in the place of what
 * was sent of it before.
 */
final readonly class Envio
{
    private Dias $dias;

    public function __construct(private Relay $relay, private Banco $banco, private ?Anonimo $anonimo = null)
    {
        $this->dias = new Dias($relay->dados);
        $banco->consulta(
            'INSERT INTO relays VALUES ($1, $2, $3)'
            . ' ON CONFLICT (relay) DO UPDATE SET fuso = excluded.fuso, dominio = excluded.dominio'
            . ' WHERE (relays.fuso, relays.dominio) IS DISTINCT FROM (excluded.fuso, excluded.dominio)',
            [$relay->nome, $relay->fuso->getName(), count($relay->dominios) === 1 ? $relay->dominios[0] : '']
        );
    }

    /**
     * The days of a period that have files.
     *
     * @return list<string> oldest first
     * @throws Falha as those of Relatorios
     */
    public function todos(Periodo $periodo): array
    {
        return array_keys($this->dias->arquivos(Dias::ESTATISTICA, $periodo));
    }

    /**
     * Those of the days that were not sent yet, or whose files have changed since.
     *
     * @param list<string> $dias
     * @return list<string>
     */
    public function pendentes(array $dias): array
    {
        $linhas = $this->banco->consulta('SELECT dia, arquivos FROM envios WHERE relay = $1', [$this->relay->nome]);
        $enviados = array_column($linhas, 'arquivos', 'dia');
        return array_values(array_filter(
            $dias,
            fn (string $dia): bool => ($enviados[$dia] ?? '') !== $this->arquivos($dia)
        ));
    }

    /** Sends a day. */
    public function dia(string $dia): Enviado
    {
        $periodo = Periodo::dia($dia, $this->relay->fuso);
        $arquivos = $this->arquivos($dia);
        $totais = Tabelas::totais($this->relay->nome, (new Relatorios($this->relay))->totais($periodo));
        $this->banco->consulta('SELECT prepara_dia($1)', [$dia]);
        return $this->banco->transacao(function () use ($dia, $periodo, $arquivos, $totais): Enviado {
            // Whoever else sends this day of this relay waits, and then replaces it.
            $chave = Esquema::ESPACO . " $dia {$this->relay->nome}";
            $this->banco->consulta('SELECT pg_advisory_xact_lock(hashtextextended($1, 0))', [$chave]);
            foreach (Esquema::TABELAS as $tabela) {
                $this->banco->consulta("DELETE FROM $tabela WHERE relay = $1 AND dia = $2", [$this->relay->nome, $dia]);
            }
            [$usuarios, $eventos] = [0, 0];
            $inteiros = new Inteiros($this->relay, $dia);
            $this->banco->copia(new Tabela('totais', $inteiros->totais($totais->linhas)));
            $linhas = $this->eventos($periodo, $inteiros, $eventos);
            $this->banco->copia(new Tabela('eventos', $linhas, colunas: Esquema::colunas('eventos')));
            $this->banco->copia(new Tabela('usuarios', $this->usuarios($periodo, $inteiros, $usuarios)));
            $inteiros->conserta($this->banco);
            $this->banco->consulta(
                'INSERT INTO envios (relay, dia, usuarios, eventos, arquivos) VALUES ($1, $2, $3, $4, $5)'
                . ' ON CONFLICT (relay, dia) DO UPDATE SET quando = now(), usuarios = excluded.usuarios,'
                . ' eventos = excluded.eventos, arquivos = excluded.arquivos',
                [$this->relay->nome, $dia, $usuarios, $eventos, $arquivos]
            );
            $this->arquivos($dia) === $arquivos || throw EnvioFalhou::mudou($dia);
            return new Enviado($this->relay->nome, $dia, $usuarios, $eventos);
        });
    }

    /** What tells one writing of a day from the next: sizes and times of its files, and how it is sent. */
    private function arquivos(string $dia): string
    {
        $partes = [];
        foreach ([Dias::ESTATISTICA, Dias::COMPACTO] as $tipo) {
            $arquivo = $this->dias->caminho($tipo, $dia);
            clearstatcache(true, $arquivo);
            $partes[] = (int) @filesize($arquivo) . '@' . (int) @filemtime($arquivo);
        }
        return implode(' ', $partes) . ($this->anonimo ? ' anonimo' : '');
    }

    private function usuarios(Periodo $periodo, Inteiros $inteiros, int &$quantos): \Generator
    {
        $contas = (new Exportacao($this->relay))->usuarios($periodo);
        foreach (Tabelas::usuarios($this->relay->nome, $contas, $this->anonimo)->linhas as $linha) {
            ++$quantos;
            $inteiros->usuario($linha);
            yield $linha;
        }
    }

    /** The events with their hour. One without a time counts in the reports where the clock stood at 0. */
    private function eventos(Periodo $periodo, Inteiros $inteiros, int &$quantos): \Generator
    {
        $eventos = (new Exportacao($this->relay))->eventos($periodo);
        $semTempo = null;
        foreach (Tabelas::eventos($this->relay->nome, $eventos, $this->relay->fuso, $this->anonimo)->linhas as $linha) {
            ++$quantos;
            $inteiros->evento($linha);
            if ($linha[3] !== '') {
                $linha[] = (int) substr($linha[3], 11, 2);
                $semTempo ??= (int) (new \DateTime('@0'))->setTimezone($this->relay->fuso)->format('G');
            } else {
                $linha[] = $semTempo;
            }
            yield $linha;
        }
    }
}
