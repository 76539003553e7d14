<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Compacto;

/**
 * Counts a day over again from its compact lines, as the consolidation counted it from the log, in as many
 * bits as the figures need. The messages of earlier days are another object's: what became of them at
 * midnight cannot be read anywhere, so they are counted apart.
 */
final class Recontagem extends EmVoo
{
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
    /** An id is kept so long, and looked for whole: a longer one is never found again. */
    private const ID = 23;

    /** Lines of the messages that are counted apart. */
    public string $aparte = '';
    /** Lines that the consolidation does not write; and lines of another day. */
    public int $estranhas = 0;
    public int $deOutroDia = 0;
    /** @var array<int, array<string, true>> recipients by hour of messages whose submission is in no file */
    public array $semSubmissao = [];
    /** @var array<int, int> ends and errors of those by hour */
    public array $finsSemSubmissao = [];
    private int $longas = 0;
    /** @var array<string, int> the mark of a kind of user, as it was met */
    private array $classes = [];

    /** Counts whole lines. In one piece, since a call for each of millions of lines would double the time. */
    public function conta(string $linhas): void
    {
        $marcas = &$this->marcas;
        [$tipos, $agentes] = [self::TIPOS, self::AGENTES];
        [$bits, $jaAceita, $aceita] = [self::MARCAS, self::JA_ACEITA, self::M_ACEITA | self::M_TENTADA];
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
                if (($m & $jaAceita) !== $aceita) {
                    $marcas[$id] = $m = $this->aceite($id, $m, $c, $hora) | $aceita;
                }
                if (isset($recebidas[$c[4]])) {
                    ++$recebidas[$c[4]];
                    $recebidos[$c[4]] += $m >> $bits;
                } else {
                    $recebidas[$c[4]] = 1;
                    $recebidos[$c[4]] = $m >> $bits;
                }
            } elseif ($tipo === self::TENTATIVA) {
                $marcas[$id] = ($m < 0 ? self::M_DESCONHECIDA : $m) | self::M_TENTADA | self::M_ULTIMA;
            } elseif ($tipo === self::SUBMISSAO) {
                $this->submete($id, $m, explode(' ', $c[4]));
            } elseif ($tipo === self::FIM) {
                $m = $m < 0 ? self::M_DESCONHECIDA : $m;
                if ($c[1] === '2') {
                    $m = $m & self::M_PENDENTE ? $m | self::M_ERRO : $m & ~self::M_ERRO;
                }
                $this->encerra($id, $m, $hora);
            } elseif ($tipo !== self::LEITURA) {
                $this->excecao($tipo & 31, $id, $m, $hora, $c[4] ?? '');
            }
        }
    }

    /** @param list<string> $s kind of user, sender, size */
    private function submete(string $id, int $m, array $s): void
    {
        if (count($s) !== 3) {
            ++$this->estranhas;
            return;
        }
        $local = $this->classes[$s[0]] ??= Compacto::local($s[0]) ? self::M_LOCAL : 0;
        if ($local !== 0) {
            $this->submetidas[] = $this->remetentes[$id] = $s[1];
        } elseif ($m >= 0) {
            unset($this->remetentes[$id]);
        }
        $m = ($m < 0 ? 0 : $m & self::SUBMETIDA) | $local | ($s[1] === '' ? self::M_SEM_REMETENTE : 0);
        $this->marcas[$id] = $m | ((int) $s[2] & 0xFFFFFFFF) << self::MARCAS;
    }

    /** The message is over, and counts for its local sender. */
    private function encerra(string $id, int $m, int $hora, ?int $tambem = null): void
    {
        $this->marcas[$id] = $hora < 0 ? $m & ~self::M_FIM : $m | self::M_FIM;
        $this->envia($id, $m, $hora, $tambem);
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

    /** Counts it for its local sender, at its end and at each verdict. */
    private function envia(string $id, int $m, int $hora, ?int $tambem): void
    {
        if ($m & self::M_LOCAL && isset($this->remetentes[$id])) {
            $de = $this->remetentes[$id];
            $this->mais(self::ENVIADAS, $hora, $de, 1);
            $this->mais(self::BYTES_ENVIADOS, $hora, $de, $m >> self::MARCAS);
            $tambem === null || $this->mais($tambem, $hora, $de, 1);
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
            $this->encerra($id, $m | self::M_VIRUS, $hora, self::VIRUS);
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
}
