<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/**
 * Picks from a block of compact lines the events that a search needs, in their order. Few names and ids
 * are found as texts, which is many times faster than taking every line apart; where there are many, one
 * pattern goes over all lines.
 *
 * Events come as columns: times (hexadecimal), status numbers, ids, and what stands behind the id.
 */
final readonly class Selecao
{
    /** From about so many ids on, looking through a block for each costs more than the pattern. */
    private const MUITOS = 8;
    /** Likewise for ids that were met in the block: their events are near to each other. */
    private const MUITOS_ACHADOS = 200;

    /** The end, and what marks a row: errors, virus. */
    private const SEMPRE = '4|5|8|9|10|13|15|17';

    /** Finds the text that the lines which make a row share; null when they share none. */
    private ?string $texto;
    /** All events of a message that a search may need. */
    private string $seus;
    /** Those of all messages, but of submissions and acceptances only those by the names looked for. */
    private string $todos;

    /**
     * @param ?string $texto a field of the lines that make a row, ASCII letter case aside; null if there is none
     * @param bool $comeco whether the field may go on behind it
     * @param ?Nome $de whose submissions count; null for everybody's
     * @param ?Nome $para whose acceptances count; null for nobody's
     * @param bool $deTodos whether all acceptances count
     */
    public function __construct(?string $texto, bool $comeco, ?Nome $de, ?Nome $para, bool $deTodos)
    {
        $this->texto = $texto === null || ($comeco && strlen($texto) < 3) ? null
            : '/ ' . preg_quote($texto, '/') . ($comeco ? '' : '(?=[ \n]|\z)') . '/i';
        $this->seus = self::padrao('1|2');
        $submissoes = $de ? '1(?= [^ \n]+ [^ \n]+' . self::nome($de) . ')' : '1';
        $aceites = $para ? '2(?= [^ \n]+' . self::nome($para) . ')' : '2';
        $this->todos = self::padrao($para || $deTodos ? "$submissoes|$aceites" : $submissoes);
    }

    private static function nome(Nome $nome): string
    {
        return ' (?i:' . preg_quote($nome->bytes ?? "\n", '/') . ')' . ($nome->comeco ? '' : '(?:[ \n]|\z)');
    }

    private static function padrao(string $nomes): string
    {
        return "/^([0-9a-f]+) \\d+ ($nomes|" . self::SEMPRE . ") ([^ \\n]+)(?: (.*))?$/m";
    }

    /**
     * The events that $faz takes, and all events of their messages and of those given; maybe others too.
     *
     * @param array<string, mixed> $abertas by id
     * @param \Closure(string, string, string): bool $faz whether a status, id and rest of a line make a row
     * @return array{list<string>, list<string>, list<string>, list<string>}
     */
    public function eventos(string $bloco, array $abertas, \Closure $faz): array
    {
        if (
            $this->texto === null || count($abertas) > self::MUITOS
            || preg_match_all($this->texto, $bloco, $achados, PREG_OFFSET_CAPTURE) > self::MUITOS_ACHADOS
        ) {
            return self::colunas($this->todos, $bloco);
        }
        $linhas = [];
        foreach ($abertas as $id => $_) {
            self::avanca($bloco, (string) $id, 0, $linhas);
        }
        foreach ($achados[0] as [, $lugar]) {
            $inicio = self::inicio($bloco, $lugar);
            $linha = self::linha($bloco, $inicio);
            if (preg_match($this->seus, $linha, $m) !== 1 || !$faz($m[2], $m[3], $m[4] ?? '')) {
                continue;
            }
            $linhas[$inicio] = $linha;
            if ($m[2] !== Compacto::SUBMISSAO) {
                self::recua($bloco, $m[3], $inicio, $linhas);
            }
            self::avanca($bloco, $m[3], $inicio, $linhas);
        }
        ksort($linhas);
        return self::colunas($this->seus, implode("\n", $linhas));
    }

    /**
     * The events of the messages given, to their end; where they are many, of others too.
     *
     * @param array<string, mixed> $ids by id
     * @return array{list<string>, list<string>, list<string>, list<string>}
     */
    public function eventosDe(string $bloco, array $ids): array
    {
        if (count($ids) > self::MUITOS) {
            return self::colunas($this->todos, $bloco);
        }
        $linhas = [];
        foreach ($ids as $id => $_) {
            self::avanca($bloco, (string) $id, 0, $linhas);
        }
        ksort($linhas);
        return self::colunas($this->seus, implode("\n", $linhas));
    }

    /** The lines of a message from a place on, to its end. */
    private static function avanca(string $bloco, string $id, int $lugar, array &$linhas): void
    {
        while (($lugar = strpos($bloco, " $id", $lugar)) !== false) {
            $inicio = self::inicio($bloco, $lugar++);
            $linhas[$inicio] ??= self::linha($bloco, $inicio);
            if (str_ends_with($linhas[$inicio], ' ' . Compacto::FIM . " $id")) {
                return;
            }
        }
    }

    /** The lines of a message before a place, back to its submission. */
    private static function recua(string $bloco, string $id, int $lugar, array &$linhas): void
    {
        while ($lugar > 0 && ($lugar = strrpos($bloco, " $id", $lugar - 1 - strlen($bloco))) !== false) {
            $lugar = self::inicio($bloco, $lugar);
            if (isset($linhas[$lugar])) {
                return;
            }
            $linhas[$lugar] = self::linha($bloco, $lugar);
            if (preg_match('/^\S+ \S+ ' . Compacto::SUBMISSAO . ' /', $linhas[$lugar])) {
                return;
            }
        }
    }

    private static function colunas(string $padrao, string $texto): array
    {
        preg_match_all($padrao, $texto, $m);
        return [$m[1], $m[2], $m[3], $m[4]];
    }

    private static function inicio(string $bloco, int $lugar): int
    {
        $fim = strrpos($bloco, "\n", $lugar - strlen($bloco));
        return $fim === false ? 0 : $fim + 1;
    }

    private static function linha(string $bloco, int $inicio): string
    {
        $fim = strpos($bloco, "\n", $inicio);
        return substr($bloco, $inicio, ($fim === false ? strlen($bloco) : $fim) - $inicio);
    }
}
