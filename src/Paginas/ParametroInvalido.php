<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Falha;

/** A parameter of an address that asks for nothing that there is. */
final class ParametroInvalido extends Falha
{
    public static function lista(): self
    {
        return new self(
            'O valor veio como lista: dê um só.',
            'The value came as a list: give one only.'
        );
    }

    public static function longo(string $texto, int $maximo): self
    {
        $t = self::cita($texto);
        return new self(
            "\"$t\" é longo demais: o máximo são $maximo bytes.",
            "\"$t\" is too long: the most are $maximo bytes."
        );
    }

    public static function nulo(string $texto): self
    {
        $t = self::cita($texto);
        return new self(
            "\"$t\" tem um byte nulo: escreva-o de novo.",
            "\"$t\" has a NUL byte: write it again."
        );
    }

    public static function numero(string $texto): self
    {
        $t = self::cita($texto);
        return new self(
            "\"$t\" não é um número inteiro: escreva só algarismos.",
            "\"$t\" is not a whole number: write digits only."
        );
    }

    /** @param list<string> $possiveis */
    public static function valor(string $texto, array $possiveis): self
    {
        $t = self::cita($texto);
        $lista = implode(', ', $possiveis);
        return new self(
            "\"$t\" não é uma das escolhas: $lista.",
            "\"$t\" is none of the choices: $lista."
        );
    }

    public static function periodoLongo(int $dias, int $maximo): self
    {
        return new self(
            "O período tem $dias dias, e esta página responde no máximo por $maximo: escolha datas mais próximas.",
            "The period has $dias days, and this page answers for $maximo at most: choose dates closer together."
        );
    }

    public static function soComDominio(): self
    {
        return new self(
            'Seu acesso é a alguns domínios: dê um endereço inteiro de um deles, ou o identificador da mensagem.',
            'Your access is to some domains: give a whole address of one of them, or the id of the message.'
        );
    }
}
