<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** A module of the engine is not loaded: the extension, or what a command needs besides. */
final class ModuloAusente extends Falha
{
    public static function agora(): self
    {
        return new self(
            "A extensão vt_mrel não está carregada: ponha extension=vt_mrel na configuração do PHP.",
            "The extension vt_mrel is not loaded: put extension=vt_mrel into the configuration of PHP."
        );
    }

    public static function pgsql(): self
    {
        return new self(
            'Falta ao PHP o módulo pgsql: instale o pacote php-pgsql.',
            'PHP lacks the module pgsql: install the package php-pgsql.'
        );
    }
}
