<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

/** A line of a statistics file: the counters of one user in one of the day's 24 periods. */
final readonly class ContasDeUsuario
{
    public function __construct(
        /** "2026-03-10" */
        public string $dia,
        /** When the period begins, Unix seconds. */
        public int $inicio,
        /** 0 to 23, by the clock. */
        public int $hora,
        /** "" for local mail without a sender. */
        public string $usuario,
        public int $enviadas,
        public int $recebidas,
        public int $bytesEnviados,
        public int $bytesRecebidos,
        public int $virus,
        public int $spam,
        public int $erros,
        public int $bloqueados,
    ) {
    }
}
