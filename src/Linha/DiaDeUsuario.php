<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

/** What one user sent and received on one day. */
final readonly class DiaDeUsuario
{
    /** @param \Closure(): bool $incertos */
    public function __construct(
        public string $usuario,
        /** "2026-03-10" */
        public string $dia,
        public int $enviadas,
        public int $bytesEnviados,
        public int $recebidas,
        public int $bytesRecebidos,
        public int $spam,
        public int $virus,
        public int $comErro,
        private \Closure $incertos,
    ) {
    }

    /**
     * The days of rows by hour.
     *
     * @param iterable<HoraDeUsuario> $horas
     * @return list<self> in the order of the rows
     */
    public static function somados(iterable $horas): array
    {
        $dias = [];
        foreach ($horas as $h) {
            $o = $dias[$h->dia] ?? null;
            $dias[$h->dia] = new self(
                $h->usuario,
                $h->dia,
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
        return array_values($dias);
    }

    /** Whether the bytes may have begun again at 0: the counters are of 32 bits. Reads the day's events. */
    public function bytesIncertos(): bool
    {
        return ($this->incertos)();
    }
}
