<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Linha\Consolidado;
use Vorna\Mrel\Linha\ContasDeUsuario;
use Vorna\Mrel\Linha\Destinatario;
use Vorna\Mrel\Linha\DiaDeUsuario;
use Vorna\Mrel\Linha\Enviado;
use Vorna\Mrel\Linha\Evento;
use Vorna\Mrel\Linha\Hora;
use Vorna\Mrel\Linha\HoraDeUsuario;
use Vorna\Mrel\Linha\Mensagem;
use Vorna\Mrel\Linha\Posicao;
use Vorna\Mrel\Linha\Rastro;
use Vorna\Mrel\Linha\Totais;
use Vorna\Mrel\Saude\Resultado;

/** From the rows of the reports to tables: which figure stands in which column. */
final class Tabelas
{
    /** Kinds of events whose bare name is a user; of the others it is a host. */
    private const NOMEIAM_USUARIO = ['submetida' => 1, 'aceita' => 1, 'erro_remetente' => 1, 'erro_destinatario' => 1];

    /** @param iterable<Totais> $linhas */
    public static function dias(iterable $linhas): Tabela
    {
        return new Tabela('dias', self::cada($linhas, self::totaisDe(...)), true);
    }

    /** @param iterable<DiaDeUsuario> $linhas */
    public static function diasDeUsuario(iterable $linhas): Tabela
    {
        return new Tabela('dias_usuario', self::cada($linhas, static fn (DiaDeUsuario $l): array => [
            $l->usuario, $l->dia, ...self::contasDe($l),
        ]), true);
    }

    /** @param iterable<Hora> $linhas */
    public static function horas(iterable $linhas): Tabela
    {
        return new Tabela('horas', self::cada($linhas, static fn (Hora $l): array => [
            $l->hora,
            $l->internas,
            new Bytes($l->bytesInternas, $l->bytesIncertos(...)),
            $l->externas,
            new Bytes($l->bytesExternas, $l->bytesIncertos(...)),
            $l->spamOcorrencias,
            $l->virusOcorrencias,
            $l->comErro,
        ]), true);
    }

    /** @param iterable<HoraDeUsuario> $linhas */
    public static function horasDeUsuario(iterable $linhas): Tabela
    {
        return new Tabela('horas_usuario', self::cada($linhas, static fn (HoraDeUsuario $l): array => [
            $l->dia, $l->inicio->format(DATE_ATOM), $l->hora, ...self::contasDe($l),
        ]), true);
    }

    /**
     * The hours of all days added up: 24 rows, by the clock.
     *
     * @param iterable<HoraDeUsuario> $linhas
     */
    public static function horasDoUsuario(iterable $linhas): Tabela
    {
        $horas = array_map(static fn (int $hora): array => [$hora, 0, 0, 0, 0, 0, 0, 0], range(0, 23));
        $incertos = [];
        foreach ($linhas as $l) {
            $contas = [$l->enviadas, $l->bytesEnviados, $l->recebidas, $l->bytesRecebidos, $l->spam, $l->virus,
                $l->comErro];
            foreach ($contas as $i => $n) {
                $horas[$l->hora][$i + 1] += $n;
            }
            $incertos[$l->hora][] = $l->bytesIncertos(...);
        }
        foreach ($horas as $hora => &$linha) {
            $duvidas = $incertos[$hora] ?? [];
            $incerto = static function () use ($duvidas): bool {
                foreach ($duvidas as $duvida) {
                    if ($duvida()) {
                        return true;
                    }
                }
                return false;
            };
            $linha[2] = new Bytes($linha[2], $incerto);
            $linha[4] = new Bytes($linha[4], $incerto);
        }
        return new Tabela('horas_do_usuario', $horas, true);
    }

    /** @param iterable<Posicao> $linhas */
    public static function topo(iterable $linhas, Contador $por, bool $dominios): Tabela
    {
        $bytes = $por->deBytes();
        return new Tabela($dominios ? 'topo_dominios' : 'topo', self::cada($linhas, static fn (Posicao $l): array => [
            $l->posicao, $l->nome, $bytes ? new Bytes($l->valor, $l->bytesIncertos(...)) : $l->valor,
        ]));
    }

    /** @param iterable<Mensagem> $linhas */
    public static function mensagens(iterable $linhas): Tabela
    {
        return new Tabela('mensagens', self::cada($linhas, static fn (Mensagem $l): array => [
            $l->id, $l->sentido->value, $l->quando?->format(DATE_ATOM), $l->remetente, $l->bytes, $l->estado->value,
        ]));
    }

    /** A row a recipient; one without a recipient when there is none. */
    public static function rastro(Rastro $r): Tabela
    {
        $mensagem = [
            $r->id, $r->remetente, $r->bytes, $r->submetida?->format(DATE_ATOM), $r->encerrada?->format(DATE_ATOM),
            $r->estado->value, (int) $r->virus,
        ];
        $linhas = array_map(static fn (Destinatario $d): array => [
            ...$mensagem, $d->nome, $d->quando?->format(DATE_ATOM), $d->estado->value,
            $d->texto === '' ? $r->texto : $d->texto,
        ], $r->destinatarios);
        return new Tabela('rastro', $linhas ?: [[...$mensagem, null, null, null, $r->texto]]);
    }

    /**
     * A trace with its recipients within it, for formats that can nest.
     *
     * @return array<string, mixed>
     */
    public static function arvoreDoRastro(Rastro $r): array
    {
        return [
            'id' => $r->id,
            'remetente' => $r->remetente,
            'bytes' => $r->bytes,
            'submetida' => $r->submetida?->format(DATE_ATOM),
            'encerrada' => $r->encerrada?->format(DATE_ATOM),
            'estado' => $r->estado->value,
            'virus' => $r->virus,
            'texto' => $r->texto,
            'destinatarios' => array_map(static fn (Destinatario $d): array => [
                'nome' => $d->nome,
                'quando' => $d->quando?->format(DATE_ATOM),
                'estado' => $d->estado->value,
                'texto' => $d->texto,
            ], $r->destinatarios),
        ];
    }

    /** @param iterable<Totais> $linhas */
    public static function totais(string $relay, iterable $linhas): Tabela
    {
        return new Tabela('totais', self::cada($linhas, static fn (Totais $l): array => [
            $relay, ...self::totaisDe($l),
        ]));
    }

    /** @param iterable<ContasDeUsuario> $linhas */
    public static function usuarios(string $relay, iterable $linhas, ?Anonimo $anonimo = null): Tabela
    {
        return new Tabela('usuarios', self::linhasDeUsuarios($relay, $linhas, $anonimo));
    }

    /** @param iterable<Evento> $linhas */
    public static function eventos(
        string $relay,
        iterable $linhas,
        \DateTimeZone $fuso,
        ?Anonimo $anonimo = null,
    ): Tabela {
        return new Tabela('eventos', self::linhasDeEventos($relay, $linhas, new Instantes($fuso), $anonimo));
    }

    /** @param iterable<Enviado> $linhas */
    public static function envios(iterable $linhas): Tabela
    {
        return new Tabela('envios', self::cada($linhas, static fn (Enviado $l): array => [
            $l->relay, $l->dia, $l->usuarios, $l->eventos,
        ]), true);
    }

    public static function consolidado(Consolidado $c): Tabela
    {
        $arvore = self::arvoreDoConsolidado($c);
        return new Tabela('consolidado', [[implode(' ', $arvore['dias']), $arvore['linhas'], $arvore['ponto'],
            $arvore['motivo']]]);
    }

    /** @return array{dias: list<string>, linhas: int, ponto: ?string, motivo: ?string} */
    public static function arvoreDoConsolidado(Consolidado $c): array
    {
        return [
            'dias' => $c->dias,
            'linhas' => $c->linhas,
            'ponto' => $c->ponto?->format(DATE_ATOM),
            'motivo' => $c->motivo?->getMessage(),
        ];
    }

    /** @param list<Resultado> $resultados of one relay each */
    public static function saude(array $resultados, string $lingua): Tabela
    {
        $linhas = [];
        foreach ($resultados as $r) {
            foreach ($r->verificacoes as $v) {
                $linhas[] = [$r->relay, $v->nome, $v->nivel->value, $v->texto($lingua), $v->conselho($lingua)];
            }
        }
        return new Tabela('saude', $linhas);
    }

    private static function totaisDe(Totais $l): array
    {
        return [
            $l->dia,
            $l->internas,
            new Bytes($l->bytesInternas, $l->bytesIncertos(...)),
            $l->externas,
            new Bytes($l->bytesExternas, $l->bytesIncertos(...)),
            $l->spam,
            $l->virus,
            $l->comErro,
        ];
    }

    private static function contasDe(DiaDeUsuario|HoraDeUsuario $l): array
    {
        return [
            $l->enviadas,
            new Bytes($l->bytesEnviados, $l->bytesIncertos(...)),
            $l->recebidas,
            new Bytes($l->bytesRecebidos, $l->bytesIncertos(...)),
            $l->spam,
            $l->virus,
            $l->comErro,
        ];
    }

    private static function cada(iterable $linhas, \Closure $faz): \Generator
    {
        foreach ($linhas as $linha) {
            yield $faz($linha);
        }
    }

    // The next two go over millions of rows: no call a row that is not needed.

    private static function linhasDeUsuarios(string $relay, iterable $linhas, ?Anonimo $anonimo): \Generator
    {
        foreach ($linhas as $l) {
            yield [$relay, $l->dia, $l->hora, $anonimo === null ? $l->usuario : $anonimo->nome($l->usuario),
                $l->enviadas, $l->recebidas, $l->bytesEnviados, $l->bytesRecebidos, $l->virus, $l->spam, $l->erros,
                $l->bloqueados];
        }
    }

    private static function linhasDeEventos(
        string $relay,
        iterable $linhas,
        Instantes $instantes,
        ?Anonimo $anonimo,
    ): \Generator {
        foreach ($linhas as $l) {
            [$nome, $texto] = [$l->nome, $l->texto];
            if ($anonimo !== null) {
                [$nome, $texto] = [$anonimo->nome($nome, isset(self::NOMEIAM_USUARIO[$l->tipo])), ''];
            }
            yield [$relay, $l->dia, $l->n, $instantes->texto($l->segundos), $l->tipo, $l->mensagem, $nome, $l->classe,
                $l->bytes, $texto];
        }
    }
}
