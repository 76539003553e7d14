<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\ChaveInvalida;

/**
 * Puts a token in the place of the local part of an address: with the same key the same one for the same
 * local part, letter case aside, and without the key no way back. The domain stays.
 */
final class Anonimo
{
    /** Tokens kept: a long export meets millions of names. */
    private const LEMBRADOS = 20000;

    /** @var array<string, string> token by local part */
    private array $tokens = [];

    private function __construct(private readonly string $chave)
    {
    }

    /** With a key that nobody keeps: tokens of two runs cannot be compared. */
    public static function destaVez(): self
    {
        return new self(random_bytes(32));
    }

    /**
     * With the key in that file, which is made, for its owner alone, when it is missing.
     *
     * @throws ChaveInvalida
     */
    public static function comChave(string $arquivo): self
    {
        $chave = is_file($arquivo) ? @file_get_contents($arquivo) : self::novaChave($arquivo);
        if ($chave === false) {
            throw ChaveInvalida::ilegivel($arquivo);
        }
        $chave = trim($chave);
        if (strlen($chave) < 16) {
            throw ChaveInvalida::curta($arquivo);
        }
        return new self($chave);
    }

    /**
     * @param bool $usuario whether a name without "@" is a user's
     */
    public function nome(string $nome, bool $usuario = true): string
    {
        $arroba = strrpos($nome, '@');
        if ($arroba === false) {
            return $usuario && $nome !== '' ? $this->token($nome) : $nome;
        }
        return ($arroba === 0 ? '' : $this->token(substr($nome, 0, $arroba))) . substr($nome, $arroba);
    }

    private function token(string $local): string
    {
        if (!isset($this->tokens[$local])) {
            if (count($this->tokens) >= self::LEMBRADOS) {
                $this->tokens = [];
            }
            $this->tokens[$local] = 'u' . substr(hash_hmac('sha256', strtolower($local), $this->chave), 0, 16);
        }
        return $this->tokens[$local];
    }

    private static function novaChave(string $arquivo): string
    {
        $chave = bin2hex(random_bytes(32)) . "\n";
        $mascara = umask(0077);
        $f = @fopen($arquivo, 'xb');
        umask($mascara);
        if ($f === false || @fwrite($f, $chave) !== strlen($chave) || !@fflush($f)) {
            $f === false || @unlink($arquivo);
            throw ChaveInvalida::naoFeita($arquivo);
        }
        fclose($f);
        return $chave;
    }
}
