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
    /** From about so many texts on, looking for each costs more than the pattern. */
    private const MUITOS = 8;

    /** Submission, end, and what marks a row: errors, virus. */
    private const SEMPRE = '1|4|5|8|9|10|13|15|17';

    /** Finds the text that the lines which make a row share; null when they share none. */
    private ?string $texto;
    /** All events of a message that a search may need. */
    private string $seus;
    /** Those of all messages, but of acceptances only those by the recipient looked for. */
    private string $todos;

    /**
     * @param ?string $texto a field of the lines that make a row, ASCII letter case aside; null if there is none
     * @param bool $comeco whether the field may go on behind it
     * @param ?Nome $para whose acceptances count; null for nobody's
     * @param bool $deTodos whether all acceptances count
     */
    public function __construct(?string $texto, bool $comeco, ?Nome $para, bool $deTodos)
    {
        $this->texto = $texto === null || ($comeco && strlen($texto) < 3) ? null
            : '/ ' . preg_quote($texto, '/') . ($comeco ? '' : '(?=[ \n]|\z)') . '/i';
        $aceites = match (true) {
            $deTodos => '|2',
            $para?->bytes === null => '',
            default => '|2(?= [^ \n]+ (?i:' . preg_quote($para->bytes, '/') . ')'
                . ($para->comeco ? ')' : '(?:[ \n]|\z))'),
        };
        $this->seus = self::padrao('|2');
        $this->todos = self::padrao($aceites);
    }

    private static function padrao(string $aceites): string
    {
        return '/^([0-9a-f]+) \d+ (' . self::SEMPRE . "$aceites) ([^ \\n]+)(?: (.*))?$/m";
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
            || preg_match_all($this->texto, $bloco, $achados, PREG_OFFSET_CAPTURE) > 3 * self::MUITOS
        ) {
            return self::colunas($this->todos, $bloco);
        }
        $linhas = [];
        foreach ($achados[0] as [, $lugar]) {
            $linhas[] = self::linha($bloco, self::inicio($bloco, $lugar));
        }
        [, $status, $ids, $restos] = self::colunas($this->seus, implode("\n", $linhas));
        foreach ($ids as $i => $id) {
            if ($faz($status[$i], $id, $restos[$i])) {
                $abertas[$id] = true;
            }
        }
        return $this->eventosDe($bloco, $abertas);
    }

    /**
     * The events of the messages given; where they are many, of others too.
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
            for ($lugar = 0; ($lugar = strpos($bloco, " $id", $lugar)) !== false; ++$lugar) {
                $inicio = self::inicio($bloco, $lugar);
                $linhas[$inicio] ??= self::linha($bloco, $inicio);
            }
        }
        ksort($linhas);
        return self::colunas($this->seus, implode("\n", $linhas));
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
