<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Contador;
use Vorna\Mrel\EmAberto;
use Vorna\Mrel\Formato\Humano;
use Vorna\Mrel\Linha\Totais;
use Vorna\Mrel\Paginas\Conteudo;
use Vorna\Mrel\Paginas\Farol;
use Vorna\Mrel\Paginas\Lacunas;
use Vorna\Mrel\Paginas\Pagina;
use Vorna\Mrel\Paginas\Pedido;
use Vorna\Mrel\Paginas\Situacao;
use Vorna\Mrel\Paginas\TabelaHtml;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Tabelas;

/** The last complete day beside those before it: is all well? */
final class Resumo extends Pagina
{
    public const NOME = '';
    public const DIAS = 1;
    public const MAXIMO = 36525;

    private const GRAFICO = 30;
    private const MAIORES = 5;
    private const CONTADORES = ['internas' => 'internas', 'externas' => 'externas', 'spam' => 'spam',
        'virus' => 'virus', 'com_erro' => 'comErro'];

    public function responde(Pedido $pedido): Conteudo
    {
        $pedido->exigeTudo();
        $periodo = $pedido->periodo();
        if ($periodo === null) {
            return new Conteudo();
        }
        $dia = $periodo->ultimo;
        $mes = Periodo::ultimos(self::GRAFICO, $dia, $periodo->fuso);
        $abertos = (new EmAberto($pedido->relay, $pedido->agora))->dias($mes);
        $totais = iterator_to_array($pedido->relatorios->totais($mes), false);
        $humano = new Humano($pedido->lingua);
        $doDia = array_values(array_filter($totais, static fn (Totais $t): bool => $t->dia === $dia));
        $antes = array_slice(array_filter($totais, static fn (Totais $t): bool => $t->dia < $dia), -Farol::DIAS);
        return new Conteudo([
            'dia_mostrado' => $dia,
            'farol' => new Farol(
                new Situacao($pedido->relay, $pedido->agora),
                $humano->dia(...),
                $doDia ? $totais : null,
                $pedido->lingua
            ),
            'contadores' => $doDia ? self::contadores($doDia[0], array_values($antes), $humano) : [],
            'comparados' => count($antes),
            'tabela' => $pedido->html(Tabelas::dias($totais)->comAbertos($abertos), [
                'dia' => static fn (array $l): string => $pedido->enderecos->de('horas', ['de' => $l[0], 'ate' => $l[0]]),
            ]),
            'faltam' => $totais ? Lacunas::em(
                Periodo::de($totais[0]->dia, $dia, $periodo->fuso),
                array_map(static fn (Totais $t): string => $t->dia, $totais)
            ) : [],
            'remetentes' => self::maiores($pedido, $dia, Contador::Enviadas),
            'destinatarios' => self::maiores($pedido, $dia, Contador::Recebidas),
        ]);
    }

    /** @param list<Totais> $antes */
    private static function contadores(Totais $dia, array $antes, Humano $humano): array
    {
        $contadores = [];
        foreach (self::CONTADORES as $coluna => $campo) {
            $n = $dia->$campo;
            $media = $antes ? array_sum(array_map(static fn (Totais $t): int => $t->$campo, $antes)) / count($antes) : null;
            $diferenca = $media > 0 ? 100 * ($n / $media - 1) : null;
            $contadores[$coluna] = [
                'n' => $humano->numero($n),
                'media' => $media === null ? null : $humano->numero(round($media)),
                'diferenca' => $diferenca === null
                    ? null : ($diferenca < 0 ? "\u{2212}" : '+') . $humano->numero(abs($diferenca), 1) . "\u{A0}%",
            ];
        }
        return $contadores;
    }

    private static function maiores(Pedido $pedido, string $dia, Contador $por): TabelaHtml
    {
        $periodo = Periodo::dia($dia, $pedido->relay->fuso);
        $enderecos = $pedido->enderecos;
        return $pedido->html(Tabelas::topo($pedido->relatorios->topo($periodo, $por, self::MAIORES), $por, false), [
            'usuario' => static fn (array $l): string => $enderecos->de('usuario', ['usuario' => $l[1]]),
        ]);
    }
}
