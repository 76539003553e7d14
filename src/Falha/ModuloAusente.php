<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** The extension is not loaded, so no report can be asked. */
final class ModuloAusente extends Falha
{
    public static function agora(): self
    {
        return new self(
            "A extensão vt_mrel não está carregada: ponha extension=vt_mrel na configuração do PHP.",
            "The extension vt_mrel is not loaded: put extension=vt_mrel into the configuration of PHP."
        );
    }
}
