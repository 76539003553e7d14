<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\DadosInacessiveis;

/**
 * Days that have files but are not over yet, and until when these tell: what whoever shows figures of such
 * a day says beside them ("até 14:32").
 *
 * A day before the recorded point is over. Of the others the files' own time decides: written before the
 * day ended, they cannot hold all of it. So it also works for who may not read the point.
 */
final readonly class EmAberto
{
    private Dias $arquivos;
    private ?string $ponto;
    private int $agora;

    public function __construct(private Relay $relay, ?\DateTimeImmutable $agora = null)
    {
        $this->arquivos = new Dias($relay->dados);
        $this->agora = $agora?->getTimestamp() ?? time();
        try {
            $this->ponto = Ponto::dia($relay->ponto);
        } catch (DadosInacessiveis) {
            $this->ponto = null;
        }
    }

    /**
     * Until when the files of a day tell, in the relay's zone; null for a day that is over or has no file.
     *
     * @param string $dia "2026-03-10"
     */
    public function ate(string $dia): ?\DateTimeImmutable
    {
        if ($this->ponto !== null && $dia < $this->ponto) {
            return null;
        }
        $ate = null;
        foreach ([Dias::ESTATISTICA, Dias::COMPACTO] as $tipo) {
            $arquivo = $this->arquivos->caminho($tipo, $dia);
            clearstatcache(false, $arquivo);
            $escrito = @filemtime($arquivo);
            // The two follow each other within a moment; what both of them tell is the older one's.
            $ate = $escrito === false ? $ate : min($ate ?? $this->agora, $escrito);
        }
        if ($ate === null || $ate >= Periodo::dia($dia, $this->relay->fuso)->fim()->getTimestamp()) {
            return null;
        }
        return (new \DateTimeImmutable("@$ate"))->setTimezone($this->relay->fuso);
    }

    /**
     * Those of a period. Ask before the figures are read: then they may tell more than is said, never less.
     *
     * @return array<string, \DateTimeImmutable> until when, by day
     */
    public function dias(Periodo $periodo): array
    {
        $dias = $meses = [];
        foreach ($periodo->cadaDia() as $um) {
            $dia = $um->primeiro;
            if ($meses[substr($dia, 0, 7)] ??= is_dir(dirname($this->arquivos->caminho(Dias::COMPACTO, $dia)))) {
                $dias[$dia] = $this->ate($dia);
            }
        }
        return array_filter($dias);
    }
}
