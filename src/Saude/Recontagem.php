<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Compacto;

/**
 * Counts a day over again from its compact lines, as the consolidation counted it from the log: messages
 * in flight, totals, counters by user and hour, in as many bits as they need. The messages of earlier days
 * are another object's: what became of them at midnight cannot be read anywhere, so they are counted apart.
 */
final class Recontagem
{
    public const ENVIADAS = 0;
    public const BYTES_ENVIADOS = 1;
    public const RECEBIDAS = 2;
    public const BYTES_RECEBIDOS = 3;
    public const VIRUS = 4;
    public const SPAM = 5;
    public const ERROS = 6;

    /** Marks of a message: the low bits of one number, above which its size stands. */
    private const M_LOCAL = 1;
    private const M_ACEITA = 2;
    private const M_SPAM = 4;
    private const M_VIRUS = 8;
    private const M_ERRO = 16;
    private const M_FATAL = 32;
    private const M_FIM = 64;
    private const M_TENTADA = 128;
    /** An attempt or a failed connection on any day. */
    private const M_ULTIMA = 256;
    private const M_SEM_REMETENTE = 512;
    /** Its submission is in no file that was read. */
    private const M_DESCONHECIDA = 1024;
    /** Errors that no acceptance has settled. */
    private const M_PENDENTE = 2048;
    private const MARCAS = 12;
    /** In place of marks: its lines are only collected. */
    private const APARTE = -2;

    /** By status: itself; and this much more where something stands behind the id. */
    private const COM_TEXTO = 32;
    private const TIPOS = [1 => 33, 2 => 34, 3 => 3, 4 => 4, 5 => 37, 7 => 7, 8 => 40, 9 => 41, 10 => 42, 11 => 11, 12 => 44,
        13 => 13, 14 => 46, 15 => 15, 17 => 49, 18 => 18];
    private const SUBMISSAO = 33;
    private const ACEITE = 34;
    private const LEITURA = 3;
    private const FIM = 4;
    private const TENTATIVA = 7;
    /** What a message keeps that is submitted again. */
    private const SUBMETIDA = (1 << self::MARCAS) - 1 & ~(self::M_SEM_REMETENTE | self::M_DESCONHECIDA);
    /** An acceptance changes nothing of a message where, of these, only the first two are set. */
    private const JA_ACEITA = self::M_ACEITA | self::M_TENTADA | self::M_DESCONHECIDA | self::M_PENDENTE;
    private const AGENTES = ['1' => 1, '2' => 1, '3' => 1];
    private const HORAS = 24;
    /** An id is kept so long, and looked for whole: a longer one is never found again. */
    private const ID = 23;

    /** @var list<array<int, array<string, int>>> counters by hour and user; hour -1 for what counts nowhere */
    public array $contas;
    /** @var list<int> spam, virus, error, blocked, messages and bytes of local senders, of others; see fecha() */
    public array $totais = [0, 0, 0, 0, 0, 0, 0, 0];
    /** Lines of the messages that are counted apart. */
    public string $aparte = '';
    /** Lines that the consolidation does not write; and lines of another day. */
    public int $estranhas = 0;
    public int $deOutroDia = 0;
    /** @var array<int, array<string, true>> recipients by hour of messages whose submission is in no file */
    public array $semSubmissao = [];
    /** @var array<int, int> ends and errors of those by hour */
    public array $finsSemSubmissao = [];
    /** With how many messages of earlier days it began, and their bytes. */
    public int $quantas = 0;
    public int $tamanhoInicial = 0;
    private int $longas = 0;

    /** @var array<string, int> marks and size by id */
    private array $marcas = [];
    /** @var array<string, string> local senders by id */
    private array $remetentes = [];
    /** @var array<string, list<array{int, string}>> errors that no acceptance has settled, by id: status, text */
    private array $pendentes = [];
    /** @var list<string> the local sender of each submission */
    private array $submetidas = [];

    /** @param int $inicio when the day's first hour begins */
    public function __construct(private readonly int $inicio)
    {
        $this->contas = array_fill(0, 7, array_fill(-1, self::HORAS + 1, []));
    }

    /** Those of another one, whose lines this one only collects. */
    public function separa(self $outra): void
    {
        $this->marcas += array_fill_keys(array_keys($outra->marcas), self::APARTE);
    }

    /** How many messages it holds, and their bytes. */
    public function emCurso(): array
    {
        return [count($this->marcas), array_sum(array_map(static fn (int $m): int => $m >> self::MARCAS, $this->marcas))];
    }

    /** Counts whole lines. In one piece, since a call for each of millions of lines would double the time. */
    public function conta(string $linhas): void
    {
        $marcas = &$this->marcas;
        $remetentes = &$this->remetentes;
        [$tipos, $agentes, $classes] = [self::TIPOS, self::AGENTES, ['INTERNO' => self::M_LOCAL]];
        [$tempo, $hora, $de, $ate] = ['', -1, 1, 0];
        foreach (explode("\n", $linhas) as $linha) {
            $c = explode(' ', $linha, 5);
            $tipo = $tipos[$c[2] ?? ''] ?? 0;
            if (!isset($c[3], $agentes[$c[1]]) || isset($c[4]) !== ($tipo >= self::COM_TEXTO)) {
                $this->estranhas += $linha === '' || Arquivos::evento($linha) ? 0 : 1;
                continue;
            }
            if ($c[0] !== $tempo) {
                $segundos = intval($tempo = $c[0], 16);
                if ($segundos < $de || $segundos >= $ate) {
                    $hora = $this->hora($segundos);
                    [$de, $ate] = $hora < 0 ? [1, 0] : [$this->inicio + 3600 * $hora, $this->inicio + 3600 * ($hora + 1)];
                    $recebidas = &$this->contas[self::RECEBIDAS][$hora];
                    $recebidos = &$this->contas[self::BYTES_RECEBIDOS][$hora];
                    $enviadas = &$this->contas[self::ENVIADAS][$hora];
                    $enviados = &$this->contas[self::BYTES_ENVIADOS][$hora];
                }
            }
            $id = $c[3];
            $m = $marcas[$id] ?? -1;
            if ($m < 0) {
                if ($m === self::APARTE) {
                    $this->aparte .= "$linha\n";
                    continue;
                }
                isset($id[self::ID]) && $id = substr($id, 0, self::ID) . "\0" . ++$this->longas;
            }
            if ($tipo === self::ACEITE) {
                if (($m & self::JA_ACEITA) !== self::M_ACEITA + self::M_TENTADA) {
                    $marcas[$id] = $m = $this->aceite($id, $m, $c, $hora) | self::M_ACEITA | self::M_TENTADA;
                }
                if (isset($recebidas[$c[4]])) {
                    ++$recebidas[$c[4]];
                    $recebidos[$c[4]] += $m >> self::MARCAS;
                } else {
                    $recebidas[$c[4]] = 1;
                    $recebidos[$c[4]] = $m >> self::MARCAS;
                }
            } elseif ($tipo === self::TENTATIVA) {
                $marcas[$id] = ($m < 0 ? self::M_DESCONHECIDA : $m) | self::M_TENTADA | self::M_ULTIMA;
            } elseif ($tipo === self::SUBMISSAO) {
                $s = explode(' ', $c[4]);
                if (count($s) !== 3) {
                    ++$this->estranhas;
                    continue;
                }
                $local = $classes[$s[0]] ??= Compacto::local($s[0]) ? self::M_LOCAL : 0;
                if ($local !== 0) {
                    $this->submetidas[] = $remetentes[$id] = $s[1];
                } elseif ($m >= 0) {
                    unset($remetentes[$id]);
                }
                $m = ($m < 0 ? 0 : $m & self::SUBMETIDA) | $local | ($s[1] === '' ? self::M_SEM_REMETENTE : 0);
                $marcas[$id] = $m | ((int) $s[2] & 0xFFFFFFFF) << self::MARCAS;
            } elseif ($tipo === self::FIM) {
                $m = $m < 0 ? self::M_DESCONHECIDA : $m;
                if ($c[1] === '2') {
                    $m = $m & self::M_PENDENTE ? $m | self::M_ERRO : $m & ~self::M_ERRO;
                }
                $marcas[$id] = $hora < 0 ? $m & ~self::M_FIM : $m | self::M_FIM;
                if ($m & self::M_LOCAL && isset($remetentes[$id])) {
                    $enviadas[$remetentes[$id]] = ($enviadas[$remetentes[$id]] ?? 0) + 1;
                    $enviados[$remetentes[$id]] = ($enviados[$remetentes[$id]] ?? 0) + ($m >> self::MARCAS);
                } elseif ($m & self::M_DESCONHECIDA) {
                    $this->fimSemSubmissao($hora);
                }
            } elseif ($tipo !== self::LEITURA) {
                $this->excecao($tipo & 31, $id, $m, $hora, $c[4] ?? '');
            }
        }
    }

    /** What an acceptance finds of a message that is not as usual. */
    private function aceite(string $id, int $m, array $c, int $hora): int
    {
        $m = $m < 0 ? self::M_DESCONHECIDA : $m;
        if ($m & self::M_DESCONHECIDA) {
            $this->semSubmissao[$hora][$c[4]] = true;
        }
        return $m & self::M_PENDENTE && $c[1] === '2' ? $this->resolve($id, $m, $c[4]) : $m;
    }

    /** A verdict counts it for its local sender too. */
    private function envia(string $id, int $m, int $hora, int $tambem): void
    {
        if ($m & self::M_LOCAL && isset($this->remetentes[$id])) {
            $de = $this->remetentes[$id];
            $this->mais(self::ENVIADAS, $hora, $de, 1);
            $this->mais(self::BYTES_ENVIADOS, $hora, $de, $m >> self::MARCAS);
            $this->mais($tambem, $hora, $de, 1);
        } elseif ($m & self::M_DESCONHECIDA) {
            $this->fimSemSubmissao($hora);
        }
    }

    private function fimSemSubmissao(int $hora): void
    {
        $this->finsSemSubmissao[$hora] = ($this->finsSemSubmissao[$hora] ?? 0) + 1;
    }

    /** Spam, virus, and the errors, which are no news of a message that is not known. */
    private function excecao(int $status, string $id, int $m, int $hora, string $texto): void
    {
        if ($status === 18) {
            $this->marcas[$id] = $m = ($m < 0 ? self::M_DESCONHECIDA : $m) | self::M_SPAM;
            $this->envia($id, $m, $hora, self::SPAM);
        } elseif ($m < 0) {
            $this->fimSemSubmissao($hora);
        } elseif ($status === 15) {
            $m |= self::M_VIRUS;
            $this->marcas[$id] = $hora < 0 ? $m & ~self::M_FIM : $m | self::M_FIM;
            $this->envia($id, $m, $hora, self::VIRUS);
        } else {
            $this->erro($status, $id, $m, $hora, $texto);
        }
    }

    private function erro(int $status, string $id, int $m, int $hora, string $texto): void
    {
        if ($status !== 14 && $status !== 17) {
            isset($this->remetentes[$id]) && $this->mais(self::ERROS, $hora, $this->remetentes[$id], 1);
        }
        $this->marcas[$id] = $m | match ($status) {
            5, 8 => self::M_ERRO | self::M_ULTIMA | self::M_PENDENTE,
            10 => self::M_FATAL | self::M_TENTADA,
            13 => self::M_FATAL,
            default => self::M_ERRO | self::M_PENDENTE,
        };
        if ($status === 10 || $status === 13) {
            return;
        }
        // One refused recipient is as good as another, and no acceptance settles it.
        $texto = match ($status) {
            9 => 'dest',
            11 => "\0",
            default => $texto,
        };
        $pendentes = $this->pendentes[$id] ?? [];
        if ($status === 11 || !in_array($texto, array_column($pendentes, 1), true)) {
            $this->pendentes[$id] = [[$status, $texto], ...$pendentes];
        }
    }

    /** An acceptance settles the errors of its domain, and a broken transfer or two. */
    private function resolve(string $id, int $m, string $para): int
    {
        $arroba = strpos($para, '@');
        $dominio = $arroba === false ? null : substr($para, $arroba + 1);
        $procurados = $dominio === null ? [] : [[8, $dominio], [12, $dominio], [5, $dominio], [14, $dominio], [11, "\0"]];
        foreach ([...$procurados, [11, "\0"]] as $procurado) {
            $lugar = array_search($procurado, $this->pendentes[$id], true);
            if ($lugar !== false) {
                array_splice($this->pendentes[$id], $lugar, 1);
            }
        }
        if ($this->pendentes[$id]) {
            return $m;
        }
        unset($this->pendentes[$id]);
        return $m & ~self::M_PENDENTE;
    }

    private function mais(int $conta, int $hora, string $nome, int $n): void
    {
        $this->contas[$conta][$hora][$nome] = ($this->contas[$conta][$hora][$nome] ?? 0) + $n;
    }

    /** The period of a time; -1 for one that could not be read. */
    private function hora(int $s): int
    {
        if ($s === 0) {
            return -1;
        }
        $hora = intdiv($s - $this->inicio + 86400, 3600) - 24;
        $this->deOutroDia += $hora < -1 || $hora > self::HORAS ? 1 : 0;
        return max(0, min(self::HORAS - 1, $hora));
    }

    /** Ends the day: the totals, and who stays. */
    public function fecha(): void
    {
        $t = &$this->totais;
        foreach ($this->marcas as $id => $m) {
            if ($m === self::APARTE) {
                unset($this->marcas[$id]);
                continue;
            }
            $tentada = ($m & self::M_TENTADA) !== 0;
            $terminada = ($m & (self::M_FIM | self::M_FATAL)) !== 0;
            $falhou = $terminada ? ($m & (self::M_ERRO | self::M_FATAL)) !== 0 : ($m & self::M_ERRO) !== 0;
            if ($tentada && ($terminada || $falhou)) {
                $t[2] += $falhou ? 1 : 0;
                if ($terminada ? !$falhou || $m & self::M_ACEITA : $m & self::M_ACEITA) {
                    $de = $m & self::M_LOCAL ? 4 : 6;
                    ++$t[$de];
                    $t[$de + 1] += $m >> self::MARCAS;
                }
                $t[0] += $terminada && $m & self::M_SPAM ? 1 : 0;
            }
            $t[1] += $terminada && $m & self::M_VIRUS ? 1 : 0;
            if ($terminada || ($falhou && !$tentada)) {
                unset($this->marcas[$id]);
            }
        }
    }

    /**
     * The messages that stay at the end of the day, for the next one; $carregadas those of earlier days.
     *
     * @param bool $outra whether another run does the next day: it learns of them by the last-consolidation file
     */
    public function proxima(self $carregadas, int $inicio, bool $outra): self
    {
        $nova = new self($inicio);
        $marcas = $carregadas->marcas + $this->marcas;
        $referencias = $outra ? [] : $this->referencias($carregadas);
        $perdida = false;
        // The file has the latest first.
        foreach (array_reverse($marcas, true) as $id => $m) {
            $de = isset($carregadas->marcas[$id]) ? $carregadas : $this;
            if (!$outra) {
                $nova->fica((string) $id, $m & ~(self::M_TENTADA | self::M_ERRO), $de, $referencias);
                continue;
            }
            // The reader takes the id behind a sender that the log left out for that sender.
            if (!$perdida) {
                $fim = $m & self::M_ULTIMA ? self::M_FIM | self::M_ULTIMA : 0;
                $fica = -1 << self::MARCAS | self::M_LOCAL | self::M_SPAM | self::M_VIRUS;
                $nova->marcas[$id] = $m & $fica | $fim;
            }
            $perdida = !$perdida && ($m & self::M_SEM_REMETENTE) !== 0;
        }
        $nova->marcas = array_reverse($nova->marcas, true);
        [$nova->quantas, $nova->tamanhoInicial] = $nova->emCurso();
        return $nova;
    }

    /**
     * What the engine holds of messages in flight by sender: a submission adds one, an end or a virus takes one.
     *
     * @return array<string, int>
     */
    private function referencias(self $carregadas): array
    {
        $n = array_count_values([...$this->submetidas, ...$carregadas->submetidas]);
        foreach ([$this->contas, $carregadas->contas] as $contas) {
            foreach ([self::ENVIADAS => -1, self::SPAM => 1] as $conta => $vezes) {
                foreach ($contas[$conta] as $nomes) {
                    foreach ($nomes as $nome => $quantas) {
                        $n[$nome] = ($n[$nome] ?? 0) + $vezes * $quantas;
                    }
                }
            }
        }
        return $n;
    }

    private function fica(string $id, int $marcas, self $de, array $referencias): void
    {
        $this->marcas[$id] = $marcas;
        if (isset($de->pendentes[$id])) {
            $this->pendentes[$id] = $de->pendentes[$id];
        }
        // A sender for whom nothing is awaited is forgotten at midnight.
        if (isset($de->remetentes[$id]) && ($referencias[$de->remetentes[$id]] ?? 0) !== 0) {
            $this->remetentes[$id] = $de->remetentes[$id];
        }
    }
}
