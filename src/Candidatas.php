<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/**
 * The lines of a block of compact lines whose time and id a row of a search may have: submissions by the
 * sender asked for, acceptances by the recipient.
 */
final class Candidatas
{
    /** From about so many places of the text on, one pattern over all lines is faster. */
    private const MUITOS = 100;
    /** What that pattern costs, in blocks searched for a text; and so many lines that it finds as much as one. */
    private const CUSTO = 4;
    private const POR_CUSTO = 300;

    /** Blocks searched for a text, or as much work. */
    public int $trabalho = 0;

    private readonly ?string $texto;
    private readonly string $linha;
    /** For the days before the period: an acceptance there makes no row. */
    private readonly string $submissao;
    /** @var array<int, bool> quarters of an hour by UTC: whether they lie in the hour asked for */
    private array $quartos = [];

    public function __construct(private readonly Filtro $filtro, private readonly \DateTimeZone $fuso)
    {
        $de = $filtro->usuario ?? $filtro->remetente;
        $para = $filtro->remetente ? null : $filtro->usuario ?? $filtro->destinatario;
        $nome = ($de ?? $para)?->bytes;
        $this->texto = ($nome ?? '') === '' ? null : self::padrao($de ?? $para) . 'i';
        $submissao = '1 ([^ \n]+) [^ \n]*' . self::nome($de) . '(?: ([^ \n]*))?';
        $this->submissao = "/^([0-9a-f]+) \\d+ $submissao/m";
        $aceite = '2 ([^ \n]+)' . self::nome($para);
        $this->linha = !$para ? $this->submissao
            : '/^([0-9a-f]+) \d+ (?|' . ($de ? "$submissao|" : '') . "$aceite)/m";
    }

    private static function padrao(Nome $nome): string
    {
        return '/ ' . preg_quote($nome->bytes ?? "\n", '/') . ($nome->comeco ? '' : '(?=[ \n]|\z)') . '/';
    }

    private static function nome(?Nome $nome): string
    {
        return $nome === null ? ' [^ \n]*'
            : ' (?i:' . preg_quote($nome->bytes ?? "\n", '/') . ')' . ($nome->comeco ? '[^ \n]*' : '(?=[ \n]|\z)');
    }

    /** @return list<array{int, string}> times and ids, newest first */
    public function de(string $bloco, bool $noPeriodo): array
    {
        $padrao = $noPeriodo ? $this->linha : $this->submissao;
        $achadas = [];
        foreach ($this->campos($bloco, $padrao) as [$tempo, $id, $bytes]) {
            $quando = (int) hexdec($tempo);
            $cabe = $bytes === null || $this->filtro->cabe((int) $bytes & 0xFFFFFFFF);
            if ($cabe && ($this->filtro->hora === null || $this->naHora($quando))) {
                $achadas["$tempo $id"] = [$quando, $id];
            }
        }
        usort($achadas, static fn (array $a, array $b): int => $b[0] <=> $a[0] ?: strcmp($b[1], $a[1]));
        return $achadas;
    }

    /** @return iterable<array{string, string, ?string}> time, id, of submissions the size */
    private function campos(string $bloco, string $padrao): iterable
    {
        ++$this->trabalho;
        $lugares = $this->texto === null ? null : preg_match_all($this->texto, $bloco, $textos, PREG_OFFSET_CAPTURE);
        if ($lugares === null || $lugares > self::MUITOS) {
            $linhas = preg_match_all($padrao, $bloco, $m, PREG_SET_ORDER | PREG_UNMATCHED_AS_NULL);
            $this->trabalho += self::CUSTO + intdiv($linhas, self::POR_CUSTO);
            foreach ($m as $campos) {
                yield [$campos[1], $campos[2], $campos[3] ?? null];
            }
            return;
        }
        foreach ($textos[0] as [, $lugar]) {
            $inicio = strrpos($bloco, "\n", $lugar - strlen($bloco));
            $inicio = $inicio === false ? 0 : $inicio + 1;
            if (preg_match($padrao, substr($bloco, $inicio, strcspn($bloco, "\n", $inicio)), $m)) {
                yield [$m[1], $m[2], $m[3] ?? null];
            }
        }
    }

    private function naHora(int $quando): bool
    {
        $momento = static fn (): \DateTimeImmutable => new \DateTimeImmutable("@$quando");
        return $this->quartos[intdiv($quando, 900)] ??= $this->filtro->naHora($momento()->setTimezone($this->fuso));
    }
}
