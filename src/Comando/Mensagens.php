<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Filtro;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** A search of messages. */
final class Mensagens extends Lista
{
    public const OPCOES = ['usuario', 'remetente', 'destinatario', 'id', 'min-kb', 'max-kb', 'limite', 'todas'];
    public const TABELAS = ['mensagens' => ''];

    protected function configure(): void
    {
        $this->descreve(
            'mensagens',
            'messages',
            'Mensagens de um usuário, ou por remetente e destinatário',
            'Messages of a user, or by sender and recipient',
            ['vtmrel mensagens --usuario ana@example.com', 'vtmrel mensagens --de ontem --remetente "vendas*" --min-kb 1024']
        );
    }

    protected function qual(Pedido $pedido): string
    {
        return 'mensagens';
    }

    protected function tabela(Pedido $pedido, Periodo $periodo): Tabela
    {
        $limite = $pedido->numero('limite');
        $filtro = new Filtro(
            $pedido->texto('usuario'),
            $pedido->texto('remetente'),
            $pedido->texto('destinatario'),
            $pedido->texto('id'),
            $pedido->numero('min-kb') ?? 0,
            $pedido->numero('max-kb') ?? 0,
            $pedido->marcada('todas'),
        );
        $mensagens = $pedido->relatorios()->mensagens($periodo, $filtro);
        return Tabelas::mensagens($limite === null ? $mensagens : self::primeiras($mensagens, $limite));
    }

    private static function primeiras(\Generator $mensagens, int $n): \Generator
    {
        for (; $n > 0 && $mensagens->valid(); --$n) {
            yield $mensagens->current();
            $n === 1 || $mensagens->next();
        }
    }
}
