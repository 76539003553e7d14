<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Filtro;
use Vorna\Mrel\Pagina as Achadas;
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

    public function responde(Pedido $pedido): Conteudo
    {
        $filtro = $this->filtro($pedido);
        $periodo = $pedido->periodo();
        $cursor = $pedido->parametros->texto('cursor');
        if ($periodo === null || $filtro === null || !$pedido->entendido()) {
            return new Conteudo();
        }
        try {
            $pagina = $this->permitido($pedido)
                ? $pedido->relatorios->pagina($periodo, $filtro, $cursor) : new Achadas([], null, null);
        } catch (EntradaInvalida $e) {
            $pedido->parametros->recusa('cursor', $e);
            return new Conteudo();
        }
        $enderecos = $pedido->enderecos;
        return new Conteudo([
            'tabela' => $pedido->html(Tabelas::mensagens($pagina->mensagens), [
                'id' => static fn (array $l): string => $enderecos->de('rastro', ['id' => $l[0]]),
            ]),
            'cursor' => $pagina->cursor,
            'pausa' => $pagina->pausa,
            'continua' => $cursor !== null,
        ]);
    }

    public function tabela(Pedido $pedido): ?Tabela
    {
        $filtro = $this->filtro($pedido);
        $periodo = $pedido->periodo();
        if ($periodo === null || $filtro === null || !$pedido->entendido()) {
            return null;
        }
        return Tabelas::mensagens(
            $this->permitido($pedido) ? $pedido->relatorios->mensagens($periodo, $filtro) : []
        );
    }

    /** Null when nothing was asked for, or what cannot be. */
    private function filtro(Pedido $pedido): ?Filtro
    {
        $p = $pedido->parametros;
        $nomes = array_map($p->nome(...), ['usuario', 'remetente', 'destinatario']);
        $id = $p->id('id');
        [$min, $max] = [$p->numero('min_kb'), $p->numero('max_kb')];
        $hora = $p->numero('hora');
        $hora > 23 && $p->recusa('hora', EntradaInvalida::hora($hora));
        if (!$pedido->entendido() || [...$nomes, $id, $min, $max, $hora] === array_fill(0, 7, null)) {
            return null;
        }
        try {
            $filtro = new Filtro(...[...$nomes, $id, $min ?? 0, $max ?? 0, true, $hora]);
        } catch (EntradaInvalida $e) {
            return $p->recusa($nomes[0] !== null && ($nomes[1] ?? $nomes[2]) !== null ? 'usuario' : 'max_kb', $e);
        }
        // A search that no whole name bounds would go through everybody's mail.
        $cabe = $pedido->permissao->tudo() || $id !== null || self::umInteiro($nomes);
        return $cabe ? $filtro : $p->recusa('usuario', ParametroInvalido::soComDominio());
    }

    /** @param list<?string> $nomes */
    private static function umInteiro(array $nomes): bool
    {
        return (bool) array_filter($nomes, static fn (?string $n): bool => $n !== null && !str_ends_with($n, '*'));
    }

    /** Whether the messages found may be seen: a name that was asked for is one's own, or the one message is. */
    private function permitido(Pedido $pedido): bool
    {
        $permissao = $pedido->permissao;
        if ($permissao->tudo()) {
            return true;
        }
        foreach (['usuario', 'remetente', 'destinatario'] as $campo) {
            $nome = $pedido->parametros->texto($campo) ?? '';
            if (!str_ends_with($nome, '*') && $permissao->ve($nome)) {
                return true;
            }
        }
        $id = $pedido->parametros->texto('id');
        return $id !== null && $permissao->rastro($pedido->relatorios->rastro($id)) !== null;
    }
}
