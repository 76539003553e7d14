<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** The data directory, or one of its folders, or the point file, cannot be read. */
final class DadosInacessiveis extends Falha
{
    public static function ausente(string $diretorio): self
    {
        $d = self::cita($diretorio);
        return new self(
            "O diretório de dados $d não existe: confira o caminho.",
            "The data directory $d does not exist: check the path."
        );
    }

    public static function ilegivel(string $caminho): self
    {
        $c = self::cita($caminho);
        return new self(
            "Não há permissão para ler $c: dê a este usuário o grupo do diretório de dados.",
            "There is no permission to read $c: give this user the group of the data directory."
        );
    }

    public static function foraDoPermitido(string $caminho): self
    {
        $c = self::cita($caminho);
        return new self(
            "$c fica fora do que open_basedir permite: acrescente-o a open_basedir na configuração do PHP.",
            "$c lies outside of what open_basedir allows: add it to open_basedir in the configuration of PHP."
        );
    }

    public static function naoEDiretorio(string $caminho): self
    {
        $c = self::cita($caminho);
        return new self(
            "$c não é um diretório: dê o diretório de dados, o que contém as pastas rels_MM-AA.",
            "$c is not a directory: give the data directory, the one that holds the folders rels_MM-YY."
        );
    }

    public static function semResultado(string $caminho): self
    {
        $c = self::cita($caminho);
        return new self(
            "$c não é um resultado de vtmrel verifica: rode-o de novo.",
            "$c is no result of vtmrel verifica: run that again."
        );
    }

    public static function recusado(string $caminho): self
    {
        $c = self::cita($caminho);
        return new self(
            "A extensão não aceita o diretório $c: o caminho tem mais de 128 bytes ou um byte nulo. Use um "
                . "atalho mais curto.",
            "The extension does not take the directory $c: its path has more than 128 bytes or a NUL byte. "
                . "Use a shorter link."
        );
    }
}
