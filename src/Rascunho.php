<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\NaoConsolidado;

/**
 * A directory of work that nobody else sees, beside the data directory and on the same file system: what is
 * made in it can be renamed into place. It goes with the object; what a killed process left, the next one
 * that opens it removes. While a process works in it, it holds a lock on the directory itself.
 */
final class Rascunho
{
    /** Of a consolidation up to this moment. */
    public const AGORA = 'agora';
    /** Of logs that are joined. */
    public const JUNTOS = 'juntos';

    /** @param resource $trava */
    private function __construct(public readonly string $caminho, private $trava)
    {
    }

    /**
     * Empty and this process's own; null when another one is at work in it.
     *
     * @param self::AGORA|self::JUNTOS $nome
     */
    public static function abre(string $dados, string $nome): ?self
    {
        is_dir($dados) || @mkdir($dados, 0755);  // as the engine would make it
        $dados = realpath($dados) ?: throw NaoConsolidado::semEscrita($dados);
        for ($vez = 0; $vez < 5; ++$vez) {
            $caminho = self::lugar($dados, $nome) ?? self::cria($dados, $nome);
            $trava = $caminho === null ? false : @fopen($caminho, 'r');
            if ($trava === false) {
                continue;
            }
            if (!flock($trava, LOCK_EX | LOCK_NB)) {
                return null;
            }
            clearstatcache(true, $caminho);
            if (@fileinode($caminho) === fstat($trava)['ino']) {
                $rascunho = new self($caminho, $trava);
                $rascunho->esvazia();
                return $rascunho;
            }
        }
        throw NaoConsolidado::semEscrita($caminho ?? $dados);
    }

    /** Removes what killed processes left. */
    public static function varre(string $dados): void
    {
        $real = realpath($dados);
        foreach ($real === false ? [] : [self::AGORA, self::JUNTOS] as $nome) {
            try {
                self::lugar($real, $nome) === null || self::abre($real, $nome)?->apaga();
            } catch (NaoConsolidado) {
                // Not what such a process left; told to whoever needs the place.
            }
        }
    }

    public function esvazia(): void
    {
        self::apagaConteudo($this->caminho);
    }

    public function apaga(): void
    {
        if (is_resource($this->trava)) {
            $this->esvazia();
            @rmdir($this->caminho);  // what cannot go now goes the next time
            fclose($this->trava);
        }
    }

    public function __destruct()
    {
        $this->apaga();
    }

    /** Where it is, if it is there. */
    private static function lugar(string $dados, string $nome): ?string
    {
        foreach (self::lugares($dados, $nome) as $caminho) {
            clearstatcache(true, $caminho);
            if (is_link($caminho)) {
                throw NaoConsolidado::semEscrita($caminho);  // whatever it leads to is not ours to empty
            }
            if (is_dir($caminho)) {
                return $caminho;
            }
        }
        return null;
    }

    /** @return array{string, string} beside, and within for when that cannot be */
    private static function lugares(string $dados, string $nome): array
    {
        return ["$dados.$nome", "$dados/.$nome"];
    }

    /**
     * Made within the data directory, then moved beside it: so it has that one's group and access list, where
     * new files take them over, and is on its file system. Where it cannot be moved (the data directory is
     * mounted, or the one above belongs to somebody else) it stays within.
     */
    private static function cria(string $dados, string $nome): ?string
    {
        [$ao_lado, $dentro] = self::lugares($dados, $nome);
        if (!@mkdir($dentro, 0700)) {
            return null;
        }
        return @rename($dentro, $ao_lado) ? $ao_lado : $dentro;
    }

    private static function apagaConteudo(string $diretorio): void
    {
        foreach (array_diff(scandir($diretorio), ['.', '..']) as $nome) {
            $caminho = "$diretorio/$nome";
            if (is_dir($caminho) && !is_link($caminho)) {
                self::apagaConteudo($caminho);
                @rmdir($caminho);
            } else {
                @unlink($caminho);
            }
        }
    }
}
