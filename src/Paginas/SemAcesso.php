<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Falha;

/** The administrator may not see what was asked for, whatever it is. */
final class SemAcesso extends Falha
{
    public static function nenhum(): self
    {
        return new self(
            'Seu acesso não inclui nenhum domínio deste relay: peça-o a quem administra os acessos.',
            'Your access includes no domain of this relay: ask whoever manages access for it.'
        );
    }

    public static function deTodos(): self
    {
        return new self(
            'Esta página soma o correio de todos os domínios, e seu acesso é a alguns: veja Usuário, Maiores ou Mensagens.',
            'This page adds up the mail of all domains, and your access is to some: see User, Top or Messages.'
        );
    }
}
