<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Linha\DiaDeUsuario;
use Vorna\Mrel\Linha\HoraDeUsuario;

/**
 * One user under the names that the log has for him: with his domain and, where exactly one domain is local,
 * without it. With several local domains nobody can tell whose a bare name is, so it stays for itself.
 */
final readonly class Grafias
{
    /** @var non-empty-list<string> the names that are counted together, the one asked for first */
    public array $nomes;
    /** A name that may be his as well, but need not; null when there is none. */
    public ?string $outra;

    private Relatorios $relatorios;

    public function __construct(Relay $relay, string $usuario)
    {
        // Without local domains a name finds itself only.
        $this->relatorios = new Relatorios(new Relay($relay->dados, fuso: $relay->fuso));
        $arroba = strrpos($usuario, '@');
        $unico = count($relay->dominios) === 1 ? $relay->dominios[0] : null;
        $dominio = $arroba === false ? null : substr($usuario, $arroba + 1);
        $nu = $arroba === false ? null : substr($usuario, 0, $arroba);
        $seu = match (true) {
            $unico === null => null,
            $arroba === false => "$usuario@$unico",
            strcasecmp($dominio, $unico) === 0 && $nu !== '' => $nu,
            default => null,
        };
        $this->nomes = $seu === null ? [$usuario] : [$usuario, $seu];
        $local = $dominio !== null && in_array(strtolower($dominio), array_map('strtolower', $relay->dominios), true);
        $this->outra = $seu === null && $local && $nu !== '' ? $nu : null;
    }

    /** @return list<DiaDeUsuario> a row for each day with mail under any of the names, oldest first */
    public function dias(Periodo $periodo): array
    {
        $dias = [];
        foreach ($this->relatorios->porUsuario($periodo, $this->nomes) as $d) {
            $o = $dias[$d->dia] ?? null;
            $dias[$d->dia] = new DiaDeUsuario(
                $this->nomes[0],
                $d->dia,
                $d->enviadas + ($o->enviadas ?? 0),
                $d->bytesEnviados + ($o->bytesEnviados ?? 0),
                $d->recebidas + ($o->recebidas ?? 0),
                $d->bytesRecebidos + ($o->bytesRecebidos ?? 0),
                $d->spam + ($o->spam ?? 0),
                $d->virus + ($o->virus ?? 0),
                $d->comErro + ($o->comErro ?? 0),
                $d->bytesIncertos(...)
            );
        }
        ksort($dias);
        return array_values($dias);
    }

    /** @return list<HoraDeUsuario> 24 for each day that has files, under all of the names together */
    public function horas(Periodo $periodo): array
    {
        $horas = [];
        foreach ($this->nomes as $nome) {
            foreach ($this->relatorios->horasDe($periodo, $nome) as $i => $h) {
                $o = $horas[$i] ?? null;
                $horas[$i] = new HoraDeUsuario(
                    $this->nomes[0],
                    $h->dia,
                    $h->inicio,
                    $h->hora,
                    $h->enviadas + ($o->enviadas ?? 0),
                    $h->bytesEnviados + ($o->bytesEnviados ?? 0),
                    $h->recebidas + ($o->recebidas ?? 0),
                    $h->bytesRecebidos + ($o->bytesRecebidos ?? 0),
                    $h->spam + ($o->spam ?? 0),
                    $h->virus + ($o->virus ?? 0),
                    $h->comErro + ($o->comErro ?? 0),
                    $h->bytesIncertos(...)
                );
            }
        }
        return $horas;
    }
}
