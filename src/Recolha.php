<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/**
 * Gathers all lines of a few messages out of compact files: from where a message was met back to its
 * submission and on to its end.
 */
final class Recolha
{
    /** Ids that are looked for together. */
    private const JUNTOS = 250;
    /** So many of them cost as much again as one. */
    private const POR_CUSTO = 50;

    /** Events after which a search follows a message no further than that day: final error, size, virus. */
    private const FINAIS = ['10', '13', Compacto::VIRUS];

    /** Blocks searched for a text, or as much work. */
    public int $trabalho = 0;

    /** @var array<int, array<int, string>> lines by block and place */
    private array $linhas = [];

    /** @param list<array{string, Blocos, int}> $blocos day, file and number of each block, oldest first */
    public function __construct(private readonly array $blocos)
    {
    }

    /**
     * @param array<int, array<string, true>> $ids by block
     * @return array<string, string> the lines by day, in their order
     */
    public function recolhe(array $ids): array
    {
        $this->linhas = $antes = $depois = [];
        foreach ($ids as $i => $seus) {
            foreach ($this->eventos($i, $seus) as $id => $status) {
                if ($status[0] !== Compacto::SUBMISSAO) {
                    $antes[$i][$id] = true;
                }
                if (end($status) !== Compacto::FIM) {
                    $depois[$i][$id] = self::decidida($status);
                }
            }
        }
        $this->recua($antes);
        $this->avanca($depois);
        ksort($this->linhas);
        $textos = [];
        foreach ($this->linhas as $i => $linhas) {
            ksort($linhas);
            $dia = $this->blocos[$i][0];
            $textos[$dia] = ($textos[$dia] ?? '') . implode("\n", $linhas) . "\n";
        }
        return $textos;
    }

    /** @param array<int, array<string, true>> $antes before which block */
    private function recua(array $antes): void
    {
        $faltam = [];
        for ($i = max([0, ...array_keys($antes)]); $i >= 0; --$i) {
            foreach ($faltam ? $this->eventos($i, $faltam) : [] as $id => $status) {
                if (in_array(Compacto::SUBMISSAO, $status, true)) {
                    unset($faltam[$id]);
                }
            }
            $faltam += $antes[$i] ?? [];
        }
    }

    /** @param array<int, array<string, bool>> $depois behind which block; whether it ends with that day */
    private function avanca(array $depois): void
    {
        $faltam = [];
        $fim = $depois ? count($this->blocos) : 0;
        for ($i = $fim ? min(array_keys($depois)) : 0; $i < $fim; ++$i) {
            if ($this->blocos[$i][2] === 0) {
                $faltam = array_filter($faltam, static fn (bool $decidida): bool => !$decidida);
            }
            foreach ($faltam ? $this->eventos($i, $faltam) : [] as $id => $status) {
                if (end($status) === Compacto::FIM || $status[0] === Compacto::SUBMISSAO) {
                    unset($faltam[$id]);
                } else {
                    $faltam[$id] = $faltam[$id] || self::decidida($status);
                }
            }
            $faltam += $depois[$i] ?? [];
        }
    }

    /** Whether nothing that matters comes on a later day, though the end has not been met. */
    private static function decidida(array $status): bool
    {
        $desde = array_keys($status, Compacto::SUBMISSAO);
        return array_intersect(array_slice($status, $desde ? end($desde) : 0), self::FINAIS) !== [];
    }

    /**
     * The events of messages in a block, which are kept.
     *
     * @param array<string, mixed> $ids
     * @return array<string, non-empty-list<string>> status numbers by id
     */
    private function eventos(int $i, array $ids): array
    {
        $bloco = $this->blocos[$i][1]->texto($this->blocos[$i][2]);
        $linhas = [];
        // One pattern of many ids takes little longer than one of a single id.
        foreach (array_chunk($ids, self::JUNTOS, true) as $parte) {
            $this->trabalho += 1 + intdiv(count($parte), self::POR_CUSTO);
            $seus = array_map(static fn ($id): string => preg_quote((string) $id, '/'), array_keys($parte));
            $padrao = implode('|', $seus);
            preg_match_all("/ (?:$padrao)(?=[ \\n]|\\z)/", $bloco, $lugares, PREG_OFFSET_CAPTURE);
            foreach ($lugares[0] as [, $lugar]) {
                $inicio = strrpos($bloco, "\n", $lugar - strlen($bloco));
                $inicio = $inicio === false ? 0 : $inicio + 1;
                $linhas[$inicio] ??= substr($bloco, $inicio, strcspn($bloco, "\n", $inicio));
            }
        }
        ksort($linhas);
        $eventos = [];
        foreach ($linhas as $inicio => $linha) {
            $campos = explode(' ', $linha, 5);
            if (isset($ids[$campos[3] ?? ''])) {
                $this->linhas[$i][$inicio] = $linha;
                $eventos[$campos[3]][] = $campos[2];
            }
        }
        return $eventos;
    }
}
