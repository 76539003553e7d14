<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Filtro;
use Vorna\Mrel\Paginas\Conteudo;
use Vorna\Mrel\Paginas\Pagina;
use Vorna\Mrel\Paginas\ParametroInvalido;
use Vorna\Mrel\Paginas\Pedido;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** A search for messages, a page of rows at a time. */
final class Mensagens extends Pagina
{
    public const NOME = 'mensagens';
    public const CAMPOS = ['usuario', 'remetente', 'destinatario', 'id', 'min_kb', 'max_kb', 'hora'];
    public const MAXIMO = 92;

    private const POR_PAGINA = 200;

    public function responde(Pedido $pedido): Conteudo
    {
        $filtro = $this->filtro($pedido);
        $periodo = $pedido->periodo();
        $hora = $this->hora($pedido);
        $cursor = $pedido->parametros->numero('cursor') ?? 0;
        if ($periodo === null || $filtro === null || !$pedido->entendido()) {
            return new Conteudo();
        }
        $linhas = [];
        $proximo = null;
        $n = 0;
        foreach ($this->mensagens($pedido, $filtro, $hora) as $m) {
            if ($n++ < $cursor) {
                continue;
            }
            if (count($linhas) === self::POR_PAGINA) {
                $proximo = $cursor + self::POR_PAGINA;
                break;
            }
            $linhas[] = $m;
        }
        $enderecos = $pedido->enderecos;
        return new Conteudo([
            'tabela' => $pedido->html(Tabelas::mensagens($linhas), [
                'id' => static fn (array $l): string => $enderecos->de('rastro', ['id' => $l[0]]),
            ]),
            'proximo' => $proximo,
            'continua' => $cursor > 0,
        ]);
    }

    public function tabela(Pedido $pedido): ?Tabela
    {
        $filtro = $this->filtro($pedido);
        $hora = $this->hora($pedido);
        if ($pedido->periodo() === null || $filtro === null || !$pedido->entendido()) {
            return null;
        }
        return Tabelas::mensagens($this->mensagens($pedido, $filtro, $hora));
    }

    /** Null when nothing was asked for, or what cannot be. */
    private function filtro(Pedido $pedido): ?Filtro
    {
        $p = $pedido->parametros;
        [$usuario, $de, $para, $id] = array_map($p->texto(...), ['usuario', 'remetente', 'destinatario', 'id']);
        [$min, $max, $hora] = [$p->numero('min_kb'), $p->numero('max_kb'), $this->hora($pedido)];
        if (!$pedido->entendido() || [$usuario, $de, $para, $id, $min, $max, $hora] === array_fill(0, 7, null)) {
            return null;
        }
        try {
            $filtro = new Filtro($usuario, $de, $para, $id, $min ?? 0, $max ?? 0, true);
        } catch (EntradaInvalida $e) {
            return $p->recusa('usuario', $e);
        }
        $alguns = [$usuario, $de, $para, $id] === [null, null, null, null];
        return $alguns && !$pedido->permissao->tudo() ? $p->recusa('usuario', ParametroInvalido::soComDominio()) : $filtro;
    }

    private function hora(Pedido $pedido): ?int
    {
        $hora = $pedido->parametros->escolha('hora', array_map('strval', range(0, 23)));
        return $hora === null ? null : (int) $hora;
    }

    private function mensagens(Pedido $pedido, Filtro $filtro, ?int $hora): iterable
    {
        foreach ($pedido->relatorios->mensagens($pedido->periodo(), $filtro) as $m) {
            if ($hora === null || (int) $m->quando?->format('G') === $hora) {
                yield $m;
            }
        }
    }
}
