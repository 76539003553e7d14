<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

/** How well something is. */
enum Nivel: string
{
    case Ok = 'ok';
    case Aviso = 'aviso';
    case Critico = 'critico';
    case Desconhecido = 'desconhecido';

    /** What a monitoring system takes for it, as an exit code and as a metric. */
    public function codigo(): int
    {
        return match ($this) {
            self::Ok => 0,
            self::Aviso => 1,
            self::Critico => 2,
            self::Desconhecido => 3,
        };
    }

    /** Its name in the first line for a monitoring system. */
    public function palavra(): string
    {
        return match ($this) {
            self::Ok => 'OK',
            self::Aviso => 'WARNING',
            self::Critico => 'CRITICAL',
            self::Desconhecido => 'UNKNOWN',
        };
    }

    /** The worst of them; what is known to be critical comes before what is not known. */
    public static function pior(self ...$niveis): self
    {
        foreach ([self::Critico, self::Desconhecido, self::Aviso] as $nivel) {
            if (in_array($nivel, $niveis, true)) {
                return $nivel;
            }
        }
        return self::Ok;
    }
}
