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
}
