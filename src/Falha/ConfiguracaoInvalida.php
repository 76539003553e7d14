<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** A configuration file, or what stands in it, that cannot be used. */
final class ConfiguracaoInvalida extends Falha
{
    public static function arquivo(string $arquivo, string $porque, string $why): self
    {
        $a = self::cita($arquivo);
        return new self("A configuração $a $porque", "The configuration $a $why");
    }

    public static function fuso(string $nome): self
    {
        $n = self::cita($nome);
        return new self(
            "O fuso \"$n\" não é conhecido: dê o nome de uma zona, como America/Sao_Paulo, na configuração ou em TZ.",
            "The zone \"$n\" is not known: give the name of one, as America/Sao_Paulo, in the configuration or in TZ."
        );
    }
}
