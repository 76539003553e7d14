<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Contador;
use Vorna\Mrel\EmAberto;
use Vorna\Mrel\Formato\Humano;
use Vorna\Mrel\Linha\DiaDeUsuario;
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
    /** Columns that have a card, and the row's property: of all mail, and of the mail of some domains. */
    private const DE_TODOS = ['internas' => 'internas', 'externas' => 'externas', 'spam' => 'spam', 'virus' => 'virus',
        'com_erro' => 'comErro'];
    private const DE_ALGUNS = ['enviadas' => 'enviadas', 'recebidas' => 'recebidas', 'spam' => 'spam',
        'virus' => 'virus', 'com_erro' => 'comErro'];

    public function responde(Pedido $pedido): Conteudo
    {
        $periodo = $pedido->periodo();
        if ($periodo === null) {
            return new Conteudo();
        }
        $dia = $periodo->ultimo;
        $mes = Periodo::ultimos(self::GRAFICO, $dia, $periodo->fuso);
        $abertos = (new EmAberto($pedido->relay, $pedido->agora))->dias($mes);
        $tudo = $pedido->permissao->tudo();
        $dias = $tudo ? iterator_to_array($pedido->relatorios->totais($mes), false)
            : DiaDeUsuario::somados($pedido->horasDosDominios($mes));
        $com = array_column($dias, 'dia');
        $temDia = end($com) === $dia;
        $antes = array_slice($temDia ? array_slice($dias, 0, -1) : $dias, -Farol::DIAS);
        return new Conteudo([
            'dia_mostrado' => $dia,
            'farol' => self::farol($pedido, $tudo && $temDia ? $dias : null),
            'contadores' => $temDia
                ? self::contadores(end($dias), $antes, $pedido, $tudo ? self::DE_TODOS : self::DE_ALGUNS) : [],
            'comparados' => count($antes),
            'tabela' => self::doMes($pedido, $dias, $abertos),
            'faltam' => $dias ? Lacunas::em(Periodo::de($com[0], $dia, $periodo->fuso), $com) : [],
            'remetentes' => self::maiores($pedido, $dia, Contador::Enviadas),
            'destinatarios' => self::maiores($pedido, $dia, Contador::Recebidas),
        ]);
    }

    /** @param ?list<Totais> $totais to compare the last of them with those before; null when they are not all mail */
    private static function farol(Pedido $pedido, ?array $totais): Farol
    {
        $situacao = new Situacao($pedido->relay, $pedido->agora);
        return new Farol($situacao, (new Humano($pedido->lingua))->dia(...), $totais, $pedido->lingua);
    }

    /** @param list<Totais|DiaDeUsuario> $dias */
    private static function doMes(Pedido $pedido, array $dias, array $abertos): TabelaHtml
    {
        $tudo = $pedido->permissao->tudo();
        $tabela = ($tudo ? Tabelas::dias($dias) : Tabelas::diasDeUsuario($dias))->comAbertos($abertos);
        $coluna = array_search('dia', $tabela->colunas, true);
        return $pedido->html($tabela, [
            'dia' => static fn (array $l): string =>
                $pedido->enderecos->de('horas', ['de' => $l[$coluna], 'ate' => $l[$coluna]]),
        ], ['usuario']);
    }

    /**
     * @param list<Totais|DiaDeUsuario> $antes
     * @param array<string, string> $campos property by column
     */
    private static function contadores(Totais|DiaDeUsuario $dia, array $antes, Pedido $pedido, array $campos): array
    {
        $humano = new Humano($pedido->lingua);
        $contadores = [];
        foreach ($campos as $coluna => $campo) {
            $n = $dia->$campo;
            $media = $antes ? array_sum(array_column($antes, $campo)) / count($antes) : null;
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
        $so = $pedido->permissao->tudo() ? null : $pedido->permissao->ve(...);
        $posicoes = $pedido->relatorios->topo($periodo, $por, self::MAIORES, false, $so);
        return $pedido->html(Tabelas::topo($posicoes, $por, false), [
            'usuario' => static fn (array $l): string => $enderecos->de('usuario', ['usuario' => $l[1]]),
        ]);
    }
}
