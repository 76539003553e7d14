<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\DadosInacessiveis;
use Vorna\Mrel\Falha\ModuloAusente;

/**
 * One question to the extension, with a parser and an iterator of its own: rows and messages that an
 * earlier report left behind would show in a later one.
 */
final readonly class Motor
{
    public function __construct(private Relay $relay)
    {
    }

    /** @throws ModuloAusente */
    public static function exige(): void
    {
        if (!class_exists('vt_mrel', false)) {
            throw ModuloAusente::agora();
        }
    }

    /**
     * @param 'msgs_per_day'|'msgs_per_hour'|'msg_trace' $metodo
     * @param mixed ...$argumentos those before the handle
     */
    public function pergunta(string $metodo, mixed ...$argumentos): \vt_mrel_itr
    {
        return $this->perguntaA($this->objeto(), $metodo, ...$argumentos);
    }

    /** An object for several questions, of which each knows the messages that those before it met. */
    public function objeto(): \vt_mrel
    {
        self::exige();
        $mrel = new \vt_mrel();
        if (!$mrel->setDataDir($this->relay->dados)) {
            throw DadosInacessiveis::recusado($this->relay->dados);
        }
        foreach ($this->relay->dominios as $dominio) {
            $mrel->add_domain($dominio);
        }
        return $mrel;
    }

    public function perguntaA(\vt_mrel $mrel, string $metodo, mixed ...$argumentos): \vt_mrel_itr
    {
        $itr = new \vt_mrel_itr();
        // The extension asks the C library for local time, which may know another zone than the relay's.
        $tz = getenv('TZ', true);
        putenv('TZ=' . $this->relay->fuso->getName());
        try {
            $mrel->$metodo(...[...$argumentos, $itr->getHandle()]);
        } finally {
            putenv($tz === false ? 'TZ' : "TZ=$tz");
        }
        return $itr;
    }
}
