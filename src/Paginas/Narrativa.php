<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Estado;
use Vorna\Mrel\Linha\Destinatario;
use Vorna\Mrel\Linha\Rastro;
use Vorna\Mrel\Visivel;

/**
 * The history of a message as somebody tells it at the telephone: the answer first, then what happened, in
 * order.
 */
final readonly class Narrativa
{
    /** Recipients named in one line of the story; more are counted. */
    private const NOMEADOS = 3;
    /** With more recipients than these, all who fared alike are one step. */
    private const POUCOS = 6;

    /** What is answered to "did it arrive?": sim, parte, nao, virus, curso, tenta, saiu, erro. */
    public string $resposta;
    /** Why it did not arrive, in the words of the other side; "" when that is not the question. */
    public string $motivo;
    public int $entregues;
    public int $recusados;
    /** When the last recipient accepted it. */
    public ?\DateTimeImmutable $entregue;
    /** @var list<array<string, mixed>> first and last time, kind, names, how many more, what the other side said */
    public array $passos;

    public function __construct(public Rastro $rastro)
    {
        $entregues = self::com($rastro, Estado::Entregue);
        $this->entregues = count($entregues);
        $this->recusados = count(self::com($rastro, Estado::Recusado));
        $this->entregue = $entregues ? max(array_map(static fn (Destinatario $d) => $d->quando, $entregues)) : null;
        $erro = $rastro->estado === Estado::ComErro || $this->recusados > 0;
        $this->resposta = match (true) {
            $rastro->estado === Estado::Virus && !$entregues => 'virus',
            !$rastro->encerrada && !$rastro->desistiu && !$rastro->virus => $erro ? 'tenta' : 'curso',
            $entregues && ($this->recusados || $rastro->desistiu) => 'parte',
            $this->recusados > 0 => 'nao',
            $erro => $entregues ? 'erro' : 'nao',
            $entregues !== [] => 'sim',
            default => 'saiu',
        };
        $this->passos = $this->passos();
        $recusa = self::com($rastro, Estado::Recusado)[0] ?? null;
        $textos = self::linhas($recusa->texto ?? '') ?: $this->texto();
        $this->motivo = in_array($this->resposta, ['nao', 'tenta', 'parte'], true) ? (string) end($textos) : '';
    }

    /** The name of the answer's text. */
    public function titulo(): string
    {
        return 'resposta.' . ($this->resposta === 'tenta' && $this->entregues === 0 ? 'ainda' : $this->resposta);
    }

    /**
     * The engine's own text of the message, a line each.
     *
     * @return list<string>
     */
    public function texto(): array
    {
        return self::linhas($this->rastro->texto);
    }

    /** @return list<string> */
    public static function linhas(string $texto): array
    {
        $linhas = array_map(static fn (string $l): string => Visivel::texto(rtrim($l)), explode("\n", $texto));
        return array_values(array_filter($linhas, static fn (string $l): bool => trim($l) !== ''));
    }

    /** @return list<Destinatario> */
    private static function com(Rastro $rastro, Estado $estado): array
    {
        return array_values(array_filter(
            $rastro->destinatarios,
            static fn (Destinatario $d): bool => $d->estado === $estado
        ));
    }

    /** What happened to several recipients in the same second is one step; of many recipients, at any time. */
    private function passos(): array
    {
        $r = $this->rastro;
        $passos = [];
        foreach ($r->destinatarios as $d) {
            $recusado = $d->estado === Estado::Recusado;
            $texto = $recusado ? implode(' ', self::linhas($d->texto)) : '';
            $chave = (count($r->destinatarios) > self::POUCOS ? '' : $d->quando->getTimestamp()) . ($recusado ? "-$texto" : '+');
            $passos[$chave] ??= ['quando' => $d->quando, 'ate' => $d->quando, 'tipo' => $d->estado->value, 'nomes' => [],
                'mais' => 0, 'texto' => $texto];
            $passos[$chave]['quando'] = min($passos[$chave]['quando'], $d->quando);
            $passos[$chave]['ate'] = max($passos[$chave]['ate'], $d->quando);
            if (count($passos[$chave]['nomes']) < self::NOMEADOS) {
                $passos[$chave]['nomes'][] = Visivel::texto($d->nome);
            } else {
                ++$passos[$chave]['mais'];
            }
        }
        $passos = array_values($passos);
        usort($passos, static fn (array $a, array $b): int => $a['quando'] <=> $b['quando']);
        $ponta = static fn (string $tipo, ?\DateTimeImmutable $quando): array =>
            [['quando' => $quando, 'ate' => $quando, 'tipo' => $tipo, 'nomes' => [], 'mais' => 0, 'texto' => '']];
        return [
            ...($r->submetida ? $ponta('submetida', $r->submetida) : []),
            ...$passos,
            ...($r->virus ? $ponta('virus', null) : []),
            ...($r->desistiu ? $ponta('desistiu', null) : []),
            ...($r->encerrada ? $ponta('encerrada', $r->encerrada) : []),
            ...(in_array($this->resposta, ['curso', 'tenta'], true) ? $ponta('curso', null) : []),
        ];
    }
}
