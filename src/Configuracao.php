<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\ConfiguracaoInvalida;

/**
 * The relays of an INI file: a section is a relay, its keys are dados, logs, ponto, dominios, fuso, saude.
 *
 *     [matriz]
 *     dados = /var/lib/relay/reports
 *     dominios = example.com; example.org
 *
 * Read line by line: PHP's own reader takes ";" within a value for the start of a comment, and would
 * lose all domains but the first.
 */
final readonly class Configuracao
{
    private const PADRAO = '/etc/vt-mrel.ini';
    private const CHAVES = ['dados', 'logs', 'ponto', 'dominios', 'fuso', 'saude'];

    /** @param non-empty-array<string, Relay> $relays by name, in the order of the file */
    private function __construct(private string $arquivo, public array $relays)
    {
    }

    /** The file in use: what VT_MREL_CONFIG names, else /etc/vt-mrel.ini. */
    public static function arquivo(): string
    {
        return getenv('VT_MREL_CONFIG') ?: self::PADRAO;
    }

    /** @throws ConfiguracaoInvalida when it cannot be read, or says what cannot be */
    public static function le(string $arquivo): self
    {
        $texto = is_file($arquivo) ? @file_get_contents($arquivo) : false;
        if ($texto === false) {
            throw self::falha($arquivo, 'não pode ser lida.', 'cannot be read.');
        }
        $relays = [];
        foreach (self::secoes($arquivo, $texto) as $nome => $valores) {
            $dados = $valores['dados'] ?? '';
            if ($dados === '') {
                throw self::falha($arquivo, "não diz \"dados\" em [$nome].", "lacks \"dados\" in [$nome].");
            }
            $relays[$nome] = new Relay(
                $dados,
                (string) $nome,
                $valores['logs'] ?? null,
                $valores['ponto'] ?? null,
                Relay::dominios($valores['dominios'] ?? ''),
                isset($valores['fuso']) ? Fuso::de($valores['fuso']) : null,
                $valores['saude'] ?? null,
            );
        }
        if (!$relays) {
            throw self::falha($arquivo, 'não tem nenhuma seção [nome].', 'has no section [name].');
        }
        return new self($arquivo, $relays);
    }

    /** The relay of that name; without a name the only one. */
    public function relay(?string $nome = null): Relay
    {
        if ($nome === null && count($this->relays) === 1) {
            return array_values($this->relays)[0];
        }
        $nomes = implode(', ', array_keys($this->relays));
        if ($nome === null) {
            throw self::falha(
                $this->arquivo,
                "tem vários relays: escolha um de $nomes.",
                "has several relays: choose one of $nomes."
            );
        }
        return $this->relays[$nome] ?? throw self::falha(
            $this->arquivo,
            "não tem o relay \"$nome\": escolha um de $nomes.",
            "has no relay \"$nome\": choose one of $nomes."
        );
    }

    /** @return array<string, array<string, string>> */
    private static function secoes(string $arquivo, string $texto): array
    {
        $secoes = [];
        $secao = null;
        foreach (preg_split('/\R/', preg_replace('/^\xEF\xBB\xBF/', '', $texto)) as $i => $linha) {
            $linha = trim($linha);
            if ($linha === '' || $linha[0] === ';' || $linha[0] === '#') {
                continue;
            }
            $n = $i + 1;
            if (preg_match('/^\[\s*([^\]]+?)\s*\]$/', $linha, $m)) {
                $secao = $m[1];
                if (isset($secoes[$secao])) {
                    throw self::falha($arquivo, "repete [$secao] na linha $n.", "repeats [$secao] in line $n.");
                }
                $secoes[$secao] = [];
            } elseif (
                $secao !== null && preg_match('/^(\w+)\s*=\s*(.*)$/', $linha, $m)
                && in_array($m[1], self::CHAVES, true)
            ) {
                $secoes[$secao][$m[1]] = preg_replace('/^(["\'])(.*)\1$/', '$2', $m[2]);
            } else {
                $chaves = implode(', ', self::CHAVES);
                throw self::falha(
                    $arquivo,
                    "tem na linha $n o que não é [nome] nem um de $chaves.",
                    "has in line $n what is neither [name] nor one of $chaves."
                );
            }
        }
        return $secoes;
    }

    private static function falha(string $arquivo, string $porque, string $why): ConfiguracaoInvalida
    {
        return ConfiguracaoInvalida::arquivo($arquivo, $porque, $why);
    }
}
