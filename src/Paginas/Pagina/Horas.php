<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Linha\HoraDeUsuario;
use Vorna\Mrel\Paginas\Conteudo;
use Vorna\Mrel\Paginas\Lacunas;
use Vorna\Mrel\Paginas\MapaDeCalor;
use Vorna\Mrel\Paginas\Pagina;
use Vorna\Mrel\Paginas\Pedido;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** The 24 hours, and how they were on each day. */
final class Horas extends Pagina
{
    public const NOME = 'horas';
    /** The engine needs memory by the message. */
    public const MAXIMO = 31;

    public function responde(Pedido $pedido): Conteudo
    {
        $periodo = $pedido->periodo();
        if ($periodo === null) {
            return new Conteudo();
        }
        if (!$pedido->permissao->tudo()) {
            $horas = $pedido->horasDosDominios($periodo);
            return self::conteudo($pedido, Tabelas::horasDoUsuario($horas), self::porDia($horas), null);
        }
        $dias = $pedido->relatorios->horasPorDia($periodo);
        $tabela = Tabelas::horas($pedido->relatorios->somaDasHoras($periodo, $dias));
        $mensagens = array_map(
            static fn (array $horas): array => array_map(static fn (array $h): int => $h[0] + $h[2], $horas),
            $dias
        );
        return self::conteudo($pedido, $tabela, $mensagens, static fn (string $dia, int $hora): string =>
            $pedido->enderecos->de('mensagens', ['de' => $dia, 'ate' => $dia, 'hora' => $hora]));
    }

    public function tabela(Pedido $pedido): ?Tabela
    {
        $periodo = $pedido->periodo();
        return match (true) {
            $periodo === null => null,
            $pedido->permissao->tudo() => Tabelas::horas($pedido->relatorios->horas($periodo)),
            default => Tabelas::horasDoUsuario($pedido->horasDosDominios($periodo)),
        };
    }

    /** @param array<string, list<int>> $mensagens by day and hour */
    private static function conteudo(Pedido $pedido, Tabela $tabela, array $mensagens, ?\Closure $endereco): Conteudo
    {
        return new Conteudo([
            'tabela' => $pedido->html($tabela),
            'mapa' => new MapaDeCalor($mensagens, $endereco, $pedido->lingua),
            'faltam' => Lacunas::em($pedido->periodo(), array_map('strval', array_keys($mensagens))),
        ]);
    }

    /**
     * @param list<HoraDeUsuario> $horas
     * @return array<string, list<int>> messages sent and received, by day and hour
     */
    private static function porDia(array $horas): array
    {
        $dias = [];
        foreach ($horas as $h) {
            $dias[$h->dia] ??= array_fill(0, 24, 0);
            $dias[$h->dia][$h->hora] += $h->enviadas + $h->recebidas;
        }
        return $dias;
    }
}
