<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Linha\Mensagem;

/**
 * The messages that a filter finds in the compact files, in order and each once.
 *
 * Reads the files itself. The extension's rows tell neither which recipient a row is for nor whether the
 * message has ended, so a whole address could not be told from a longer one, and a message that crosses
 * midnight would come on each of its days unless a whole period were asked for at once, which costs 400
 * bytes a message.
 *
 * A day is read, its rows are sorted and given out. Where a message is still on its way at the end of a
 * day, the next days are looked through for it alone, until it ends, before its row is given out: a later
 * acceptance may move the row, and a later error or virus marks it.
 */
final class Busca
{
    /** How long before the period a submission is still looked for. */
    public const DIAS_ANTES = 7;

    /** Events that mark a row "com_erro": connection, sender, recipient, final, size, recipient put off. */
    private const ERROS = [5 => true, 8 => true, 9 => true, 10 => true, 13 => true, 17 => true];

    /** Events after which the queue lets go of a message: end, virus, final error, size. */
    private const FINAIS = [4 => true, 15 => true, 10 => true, 13 => true];

    /** Later than every day. */
    private const SEM_FIM = '9999';

    private readonly \Closure $blocos;
    private readonly Selecao $selecao;
    private readonly Selecao $antes;
    private readonly ?Nome $de;
    private readonly ?Nome $para;
    private readonly ?string $id;
    /** Both ends were asked for: from the one to the other. */
    private readonly bool $entre;
    /** Whether the period has begun; before it only submissions count. */
    private bool $noPeriodo = false;

    /** @var array<string, Achada> rows of the day that is being read */
    private array $linhas = [];
    /** @var array<string, Achada> those of them still on their way */
    private array $abertas = [];
    /** @var list<Achada> rows whose id was submitted anew */
    private array $refeitas = [];
    /** @var list<Achada> rows that a later acceptance moved to a later day */
    private array $adiadas = [];
    /** @var array<string, string> ids whose row is settled, with the day of their last event */
    private array $resolvidas = [];
    /** @var array<string, array{string, string, bool}> submissions met of messages still on their way */
    private array $origens = [];

    /**
     * @param array<string, string> $arquivos compact files of the period, by day
     * @param array<string, string> $anteriores those of the DIAS_ANTES days before it
     * @param ?\Closure(string): iterable<string> $blocos reads one of them in blocks of whole lines; null to read
     *     the newest day, which may be replaced meanwhile, from one opening
     */
    public function __construct(
        private readonly array $arquivos,
        private readonly array $anteriores,
        private readonly Periodo $periodo,
        private readonly Filtro $filtro,
        ?\Closure $blocos = null,
    ) {
        $this->blocos = $blocos ?? Compacto::leitor($arquivos ? end($arquivos) : null);
        $this->de = $filtro->usuario ?? $filtro->remetente;
        $this->para = $filtro->usuario ?? $filtro->destinatario;
        $this->id = $filtro->id === null ? null : Texto::latin1($filtro->id) ?? '';
        $this->entre = $filtro->remetente && $filtro->destinatario;
        $agulhas = $this->agulhas();
        // Who sent a message received is looked for among all submissions.
        $de = $this->para && !$this->entre ? null : $this->de;
        $this->selecao = new Selecao(...[...$agulhas, $de, $this->para, !$this->para && $this->id !== null]);
        $this->antes = new Selecao(...[...$agulhas, $this->de, null, false]);
    }

    /** @return \Generator<int, Mensagem> */
    public function mensagens(): \Generator
    {
        yield from $this->emOrdem($this->deAntes());
        $this->noPeriodo = true;
        $resta = $this->arquivos;
        foreach ($this->arquivos as $dia => $arquivo) {
            unset($resta[$dia]);
            $this->le($arquivo);
            $this->acompanha($resta);
            yield from $this->emOrdem($this->colhe($dia));
        }
        yield from $this->emOrdem($this->adiadas);
    }

    /**
     * What stands on the lines that can make a row. Without a text that they share, null: every line is looked at.
     *
     * @return array{?string, bool} the text behind a blank, and whether more may follow it
     */
    private function agulhas(): array
    {
        if ($this->id !== null) {
            return [$this->id, false];
        }
        $nome = $this->de ?? $this->para;
        return [$nome === null ? null : $nome->bytes ?? '', $nome?->comeco ?? false];
    }

    /**
     * Messages submitted before the period and accepted within it, where that makes a row as of a message sent.
     *
     * @return list<Achada>
     */
    private function deAntes(): array
    {
        if (!$this->para && $this->id === null || $this->para && !$this->de) {
            return [];
        }
        foreach ($this->anteriores as $arquivo) {
            $this->le($arquivo);
            $this->linhas = $this->abertas;
            $this->refeitas = [];
        }
        $this->noPeriodo = true;
        $this->acompanha($this->arquivos);
        $achadas = array_filter($this->linhas, static fn (Achada $a): bool => $a->aceita !== null);
        $this->linhas = [];
        return array_values($achadas);
    }

    private function le(string $arquivo): void
    {
        $guarda = $this->noPeriodo && $this->para && !$this->entre;
        $selecao = $this->noPeriodo ? $this->selecao : $this->antes;
        $nome = $this->de ? $this->de->bytes ?? "\n" : ($this->para ? "\n" : '');
        foreach (($this->blocos)($arquivo) as $bloco) {
            [$tempos, $status, $ids, $restos] = $selecao->eventos($bloco, $this->abertas, $this->faz(...));
            foreach ($ids as $i => $id) {
                // Most lines of a block are ends and submissions of messages that nobody asked for.
                if ($status[$i] === Compacto::FIM) {
                    unset($this->abertas[$id], $this->origens[$id]);
                    if (isset($this->linhas[$id])) {
                        $this->linhas[$id]->encerrada = true;
                    }
                } elseif (
                    $status[$i] === Compacto::SUBMISSAO && !isset($this->linhas[$id])
                    && stripos($restos[$i], $nome) === false
                ) {
                    if ($guarda) {
                        $this->origens[$id] = [$tempos[$i], $restos[$i], false];
                    }
                    unset($this->resolvidas[$id]);
                } else {
                    $this->trata($status[$i], $id, $tempos[$i], $restos[$i]);
                }
            }
        }
    }

    /** Follows the messages still on their way through later days, until they end. */
    private function acompanha(array $depois): void
    {
        $abertas = array_filter($this->abertas, static fn (Achada $a): bool => !$a->encerrada);
        foreach (array_diff_key($this->abertas, $abertas) as $id => $_) {
            $this->resolvidas[$id] = self::SEM_FIM;  // an acceptance that comes all the same makes no second row
        }
        $this->abertas = [];
        foreach ($depois as $dia => $arquivo) {
            if (!$abertas) {
                break;
            }
            foreach (($this->blocos)($arquivo) as $bloco) {
                [$tempos, $status, $ids, $restos] = $this->selecao->eventosDe($bloco, $abertas);
                foreach ($ids as $i => $id) {
                    $a = $abertas[$id] ?? null;
                    if (!$a) {
                        continue;
                    }
                    $outra = $status[$i] === Compacto::SUBMISSAO;  // another message of the same id
                    if (!$outra) {
                        $this->evento($a, $status[$i], $tempos[$i], $restos[$i]);
                        $this->resolvidas[$id] = $dia;
                    }
                    if ($outra || $a->encerrada) {
                        unset($abertas[$id]);
                    }
                }
            }
        }
    }

    /** Whether a line makes a row, or would if its row were not settled. */
    private function faz(string $status, string $id, string $resto): bool
    {
        return match ($status) {
            Compacto::SUBMISSAO => $this->enviada($id, explode(' ', $resto, 3)[1] ?? null),
            Compacto::ACEITE => $this->noPeriodo && !$this->entre && $this->aceita($id, $resto),
            default => false,
        };
    }

    private function enviada(string $id, ?string $remetente): bool
    {
        if ($remetente === null || ($this->id !== null && $id !== $this->id)) {
            return false;
        }
        return $this->de ? $this->de->nomeia($remetente) : !$this->para;
    }

    /** Whether an acceptance makes or changes a row. */
    private function aceita(string $id, string $resto): bool
    {
        if ($this->id !== null && $id !== $this->id) {
            return false;
        }
        return $this->para ? $this->para->nomeia(explode(' ', $resto, 2)[0]) : !$this->de && $this->id !== null;
    }

    private function trata(string $status, string $id, string $tempo, string $resto): void
    {
        if ($status === Compacto::SUBMISSAO) {
            $this->submetida($id, [$tempo, $resto, false]);
            return;
        }
        $a = $this->linhas[$id] ?? null;
        if (!$a && $status === Compacto::ACEITE && $this->cria($id, $resto)) {
            $a = $this->linhas[$id] = $this->abertas[$id] = new Achada($id);
            $a->define($this->origens[$id] ?? null);
        }
        if ($a) {
            $this->evento($a, $status, $tempo, $resto);
        } elseif ($status === Compacto::VIRUS && isset($this->origens[$id])) {
            $this->origens[$id][2] = true;
        }
    }

    /** @param array{string, string, bool} $origem */
    private function submetida(string $id, array $origem): void
    {
        if (isset($this->linhas[$id])) {
            $this->refeitas[] = $this->linhas[$id];
        }
        unset($this->resolvidas[$id], $this->linhas[$id], $this->abertas[$id]);
        if ($this->enviada($id, explode(' ', $origem[1], 3)[1] ?? null)) {
            $a = $this->linhas[$id] = $this->abertas[$id] = new Achada($id);
            $a->define($origem);
            $a->enviada = true;
        } elseif ($this->para && !$this->entre) {
            $this->origens[$id] = $origem;
        }
    }

    /** Whether an acceptance makes a row of its own: nobody's submission had made one. */
    private function cria(string $id, string $resto): bool
    {
        return $this->noPeriodo && !$this->entre && !isset($this->resolvidas[$id]) && $this->aceita($id, $resto);
    }

    /** An event of a message that has a row. */
    private function evento(Achada $a, string $status, string $tempo, string $resto): void
    {
        if ($status === Compacto::ACEITE) {
            if ($this->aceita($a->id, $resto)) {
                $a->erro = false;  // what went wrong before has been overcome
                $a->aceita = $this->noPeriodo ? (int) hexdec($tempo) : null;
            }
        } elseif ($status === Compacto::VIRUS) {
            $a->virus = true;
        } elseif (isset(self::ERROS[$status])) {
            $a->erro = true;
        }
        $a->encerrada = $a->encerrada || isset(self::FINAIS[$status]);
    }

    /**
     * The rows of the day that was read, and those that others had moved to it.
     *
     * @return list<Achada>
     */
    private function colhe(string $dia): array
    {
        $this->procuraOrigens($dia);
        $fim = Periodo::dia($dia, $this->periodo->fuso)->fim()->getTimestamp();
        $linhas = [];
        foreach ([...$this->refeitas, ...array_values($this->linhas), ...$this->adiadas] as $a) {
            if (!$this->entre || $a->aceita !== null) {
                $this->quando($a) < $fim ? $linhas[] = $a : $adiadas[] = $a;
            }
        }
        $this->adiadas = $adiadas ?? [];
        $this->linhas = $this->refeitas = [];
        $this->resolvidas = array_filter($this->resolvidas, static fn (string $ultimo): bool => $ultimo > $dia);
        return $linhas;
    }

    /** Looks backwards for the submissions of messages received, day by day, until none is missing. */
    private function procuraOrigens(string $dia): void
    {
        $semOrigem = array_filter($this->linhas, static fn (Achada $a): bool => $a->remetente === null);
        $dias = array_reverse([...$this->anteriores, ...$this->arquivos], true);
        foreach ($dias as $outro => $arquivo) {
            if (!$semOrigem) {
                return;
            }
            if ($outro > $dia) {
                continue;
            }
            foreach (($this->blocos)($arquivo) as $bloco) {
                [$tempos, $status, $ids, $restos] = $this->selecao->eventosDe($bloco, $semOrigem);
                foreach ($ids as $i => $id) {
                    $a = $semOrigem[$id] ?? null;
                    if ($a && $status[$i] === Compacto::SUBMISSAO) {
                        $a->define([$tempos[$i], $restos[$i], false]);
                    } elseif ($a && $status[$i] === Compacto::VIRUS) {
                        $a->virus = true;
                    }
                }
            }
            $semOrigem = array_filter($semOrigem, static fn (Achada $a): bool => $a->remetente === null);
        }
    }

    private function sentido(Achada $a): Sentido
    {
        return match (true) {
            $this->entre || !$this->para => Sentido::Enviada,
            !$a->enviada => Sentido::Recebida,
            $a->aceita !== null => Sentido::Ambos,
            default => Sentido::Enviada,
        };
    }

    /** Unix seconds; 0 when it is not known. */
    private function quando(Achada $a): int
    {
        return $this->sentido($a) === Sentido::Recebida ? $a->aceita ?? 0 : $a->submetida ?? 0;
    }

    /**
     * @param list<Achada> $achadas
     * @return \Generator<int, Mensagem>
     */
    private function emOrdem(array $achadas): \Generator
    {
        $quandos = array_map($this->quando(...), $achadas);
        $ids = array_column($achadas, 'id');
        $ordem = array_keys($achadas);
        array_multisort($quandos, SORT_ASC, SORT_NUMERIC, $ids, SORT_ASC, SORT_STRING, $ordem);
        foreach ($ordem as $i) {
            $a = $achadas[$i];
            if (!$this->filtro->cabe($a->bytes)) {
                continue;
            }
            $quando = $this->quando($a);
            $quando = $quando === 0 ? null : (new \DateTimeImmutable("@$quando"))->setTimezone($this->periodo->fuso);
            if (!$this->filtro->naHora($quando)) {
                continue;
            }
            yield new Mensagem(
                Texto::utf8($a->id),
                $this->sentido($a),
                $quando,
                $a->remetente === null ? null : Texto::utf8($a->remetente),
                $a->bytes,
                $a->virus ? Estado::Virus : ($a->erro ? Estado::ComErro : Estado::SemErro),
            );
        }
    }
}
