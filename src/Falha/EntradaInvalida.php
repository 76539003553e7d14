<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** A date, a period, a name, a number that was asked for and that cannot be. */
final class EntradaInvalida extends Falha
{
    public static function data(string $texto): self
    {
        $t = self::cita($texto);
        return new self(
            "\"$t\" não é uma data: escreva ano, mês e dia como 2026-03-10, de 2000 a 2099.",
            "\"$t\" is not a date: write year, month and day as 2026-03-10, from 2000 to 2099."
        );
    }

    public static function mes(string $texto): self
    {
        $t = self::cita($texto);
        return new self(
            "\"$t\" não é um mês: escreva ano e mês como 2026-03, de 2000 a 2099.",
            "\"$t\" is not a month: write year and month as 2026-03, from 2000 to 2099."
        );
    }

    public static function periodo(string $texto): self
    {
        $t = self::cita($texto);
        return new self(
            "\"$t\" não é uma data nem um período: escreva 2026-03-10, hoje, ontem, ultimos-7, este-mes ou "
                . "mes-passado.",
            "\"$t\" is neither a date nor a period: write 2026-03-10, today, yesterday, last-7, this-month "
                . "or last-month."
        );
    }

    public static function invertido(string $de, string $ate): self
    {
        return new self(
            "O período está invertido: $de vem depois de $ate. Troque as duas datas.",
            "The period is inverted: $de is after $ate. Exchange the two dates."
        );
    }

    public static function quantidade(int $n): self
    {
        return new self(
            "$n não serve de quantidade: escreva um número a partir de 1.",
            "$n cannot be a number of them: write a number from 1 on."
        );
    }

    public static function nome(string $texto, string $porque, string $why): self
    {
        $t = self::cita($texto);
        return new self(
            "O nome \"$t\" não serve: $porque Escreva um endereço inteiro por vez.",
            "The name \"$t\" cannot be: $why Write one whole address at a time."
        );
    }

    public static function endereco(string $texto): self
    {
        $t = self::cita($texto);
        return new self(
            "\"$t\" não é um endereço de correio: escreva-o como ana@example.com.",
            "\"$t\" is no mail address: write it as ana@example.com."
        );
    }

    public static function texto(string $texto): self
    {
        $t = self::cita($texto);
        return new self(
            "\"$t\" não é texto em UTF-8: escreva-o de novo.",
            "\"$t\" is not UTF-8 text: write it again."
        );
    }

    public static function cursor(string $texto): self
    {
        $t = self::cita($texto);
        return new self(
            "O cursor \"$t\" não é de uma página: recomece da primeira.",
            "The cursor \"$t\" is no page's: begin at the first one again."
        );
    }

    public static function hora(int $hora): self
    {
        return new self(
            "$hora não é uma hora do dia: escreva um número de 0 a 23.",
            "$hora is not an hour of the day: write a number from 0 to 23."
        );
    }

    public static function naoConfigurado(string $chave): self
    {
        return new self(
            "A configuração não diz \"$chave\": acrescente-o, ou deixe esta verificação de fora com --sem.",
            "The configuration does not say \"$chave\": add it, or leave this check out with --without."
        );
    }

    public static function filtro(string $frase, string $emIngles): self
    {
        return new self($frase, $emIngles);
    }
}
