<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Dias;
use Vorna\Mrel\Falha;
use Vorna\Mrel\Logs;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Ponto;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Saude\Guardado;
use Vorna\Mrel\Saude\Resultado;

/** How a relay's data stand: what is consolidated, what is missing, since when. Never fails: it tells. */
final readonly class Situacao
{
    /** Days looked back over for gaps. */
    public const JANELA = 31;

    public string $hoje;
    /** Why nothing, or not all, could be found out. */
    public ?Falha $falha;
    /** @var list<string> days with files */
    public array $dias;
    public ?string $ponto;
    public ?string $ultimo;
    /** Of the last JANELA days, or since the first day: those without files, up to yesterday. */
    public array $lacunas;
    /** When the live log was last written; null when that cannot be seen. */
    public ?\DateTimeImmutable $log;
    /** The last result of the checks. */
    public ?Resultado $verificado;

    public function __construct(Relay $relay, public \DateTimeImmutable $agora)
    {
        $this->hoje = $agora->setTimezone($relay->fuso)->format('Y-m-d');
        $dias = $lacunas = [];
        $ponto = $ultimo = $falha = $verificado = null;
        try {
            $dias = (new Dias($relay->dados))->todos();
            $ponto = Ponto::dia($relay->ponto);
            $ultimo = Ponto::ultimoDiaCompleto($relay, $this->hoje);
            $lacunas = $this->procuraLacunas($dias, $relay);
            $verificado = Guardado::le($relay);
        } catch (Falha $e) {
            $falha = $e;
        }
        [$this->dias, $this->ponto, $this->ultimo, $this->lacunas] = [$dias, $ponto, $ultimo, $lacunas];
        [$this->falha, $this->verificado] = [$falha, $verificado];
        $vivo = $relay->logs === null || $relay->logs === '' ? false : @filemtime((new Logs($relay->logs))->vivo());
        $this->log = $vivo === false ? null : (new \DateTimeImmutable("@$vivo"))->setTimezone($relay->fuso);
    }

    /** How many days before today the last complete day lies: 1 is as it should be. */
    public function atraso(): ?int
    {
        return $this->ultimo === null
            ? null : intdiv(strtotime("$this->hoje 12:00 UTC") - strtotime("$this->ultimo 12:00 UTC"), 86400);
    }

    private function procuraLacunas(array $dias, Relay $relay): array
    {
        $ontem = gmdate('Y-m-d', strtotime("$this->hoje 12:00 UTC") - 86400);
        if (!$dias || $ontem < $dias[0]) {
            return [];
        }
        $janela = Periodo::ultimos(self::JANELA, $ontem, $relay->fuso);
        return Lacunas::em(Periodo::de(max($dias[0], $janela->primeiro), $ontem, $relay->fuso), $dias);
    }
}
