<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Symfony\Component\Console\Exception\ExceptionInterface;
use Vorna\Mrel\Falha;

/** A command line that asks for nothing that there is. */
final class UsoErrado extends Falha
{
    /** What the console finds wrong before a command is asked. */
    private const DO_CONSOLE = [
        '/^The "(-.*)" option does not exist/s' => [
            'A opção "%s" não existe: veja as que há com --help.',
            'There is no option "%s": see those that are with --help.',
        ],
        '/^The "(-.*)" option requires a value/s' => [
            'A opção "%s" pede um valor: escreva-o depois dela.', 'The option "%s" needs a value: write it behind it.',
        ],
        '/^The "(-.*)" option does not accept a value/s' => [
            'A opção "%s" não toma valor: escreva-a sozinha.', 'The option "%s" takes no value: write it alone.',
        ],
        '/^Command "(.*?)" is not defined/s' => [
            'O comando "%s" não existe: veja os que há com vtmrel list.',
            'There is no command "%s": see those that are with vtmrel list.',
        ],
        '/^Command "(.*?)" is ambiguous/s' => [
            'O comando "%s" pode ser mais de um: escreva o nome inteiro.',
            'The command "%s" may be several: write its whole name.',
        ],
        '/^Not enough arguments \(missing: "(.*)"\)/s' => [
            'Falta dizer: %s; veja como com --help.', 'Not said: %s; see how with --help.',
        ],
        '/^Too many arguments to "(.*?)" command/s' => [
            'O comando "%s" não toma tantos argumentos: veja quais com --help.',
            'The command "%s" takes fewer arguments: see which with --help.',
        ],
        '/^No arguments expected for .* command, got "(.*)"\.?$/s' => [
            '"%s" está a mais: veja o que o comando toma com --help.',
            '"%s" is too much: see what the command takes with --help.',
        ],
    ];

    public static function doConsole(ExceptionInterface $e): self
    {
        foreach (self::DO_CONSOLE as $padrao => [$frase, $emIngles]) {
            if (preg_match($padrao, $e->getMessage(), $m)) {
                $dito = self::cita($m[1]);
                return new self(sprintf($frase, $dito), sprintf($emIngles, $dito));
            }
        }
        $dito = self::cita($e->getMessage());
        return new self(
            "Não entendi ($dito): veja como se usa com --help.",
            "Not understood ($dito): see the use with --help."
        );
    }

    /** @param list<string> $possiveis */
    public static function valor(string $opcao, string $valor, array $possiveis): self
    {
        $v = self::cita($valor);
        $lista = implode(', ', $possiveis);
        return new self(
            "--$opcao não pode ser \"$v\": escolha um de $lista.",
            "--$opcao cannot be \"$v\": choose one of $lista."
        );
    }

    /** @param list<string> $possiveis */
    public static function exportacao(string $que, array $possiveis): self
    {
        $q = self::cita($que);
        $lista = implode(', ', $possiveis);
        return new self(
            "Não há exportação \"$q\": escolha uma de $lista.",
            "There is no export \"$q\": choose one of $lista."
        );
    }

    /** @param list<string> $possiveis */
    public static function banco(string $que, array $possiveis): self
    {
        $q = self::cita($que);
        $lista = implode(', ', $possiveis);
        return new self(
            "Não há esquema para \"$q\": escolha um de $lista.",
            "There is no schema for \"$q\": choose one of $lista."
        );
    }

    public static function numero(string $opcao, string $valor): self
    {
        $v = self::cita($valor);
        return new self(
            "--$opcao pede um número inteiro, e \"$v\" não é: escreva só algarismos.",
            "--$opcao needs a whole number, which \"$v\" is not: write digits only."
        );
    }

    public static function semDados(string $config): self
    {
        $c = self::cita($config);
        return new self(
            "Não sei onde estão os dados: dê --dados DIR, ou descreva o relay em $c.",
            "Where the data are is not known: give --dados DIR, or describe the relay in $c."
        );
    }

    public static function falta(string $opcao, string $paraQue, string $why): self
    {
        return new self("Falta --$opcao: $paraQue", "--$opcao is missing: $why");
    }
}
