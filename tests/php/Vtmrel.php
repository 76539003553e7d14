<?php

// A run of bin/vtmrel, as a user starts it: exit code and both outputs.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

final readonly class Vtmrel
{
    public const PROGRAMA = __DIR__ . '/../../bin/vtmrel';

    /** Rights of root to read and write everything, which a test of permissions does without. */
    private const DIREITOS = '-dac_override,-dac_read_search,-fowner';

    private function __construct(public int $codigo, public string $saida, public string $erros)
    {
    }

    /** @param array<string, string> $ambiente */
    public static function roda(array $argumentos, array $ambiente = [], string $saida = ''): self
    {
        return self::executa([self::PROGRAMA, ...$argumentos], $ambiente, $saida);
    }

    /** With a terminal on both outputs: what it would show comes back as `saida`. */
    public static function noTerminal(array $argumentos): self
    {
        $linha = implode(' ', array_map('escapeshellarg', [self::PROGRAMA, ...$argumentos]));
        return self::executa(['script', '-qec', $linha, '/dev/null'], [], '');
    }

    /** As a user with the rights of his own only. */
    public static function semDireitos(array $argumentos): self
    {
        $sem = posix_getuid() === 0
            ? ['setpriv', '--bounding-set', self::DIREITOS, '--inh-caps', self::DIREITOS] : [];
        return self::executa([...$sem, self::PROGRAMA, ...$argumentos], [], '');
    }

    /** @param string $saida where standard output goes; "" to be read */
    public static function executa(array $comando, array $ambiente = [], string $saida = ''): self
    {
        $ambiente += ['LC_ALL' => 'C.UTF-8', 'PATH' => getenv('PATH'), 'VT_MREL_CONFIG' => '/nao/existe'];
        [$texto, $erros] = [tmpfile(), tmpfile()];
        $processo = proc_open(
            $comando,
            [['file', '/dev/null', 'r'], $saida === '' ? $texto : ['file', $saida, 'w'], $erros],
            $canos,
            null,
            $ambiente
        );
        $codigo = proc_close($processo);
        rewind($texto);
        rewind($erros);
        return new self($codigo, stream_get_contents($texto), stream_get_contents($erros));
    }

    /**
     * CSV as RFC 4180 defines it, read character by character.
     *
     * @return list<list<string>>
     */
    public static function csv(string $texto, string $separador = ',', string $fim = "\n"): array
    {
        $celula = '(?:"((?:[^"]|"")*+)"|([^"' . $separador . '\r\n]*+))';
        [$linhas, $linha] = [[], []];
        for ($lugar = 0; $lugar < strlen($texto); $lugar += strlen($m[0])) {
            if (!preg_match("/\G$celula($separador|$fim)/s", $texto, $m, 0, $lugar)) {
                throw new \RuntimeException("not RFC 4180 at byte $lugar: " . substr($texto, $lugar, 60));
            }
            $linha[] = $m[1] !== '' ? str_replace('""', '"', $m[1]) : $m[2];
            if ($m[3] === $fim) {
                $linhas[] = $linha;
                $linha = [];
            }
        }
        return $linhas;
    }
}
