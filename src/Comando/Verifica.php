<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Relay;
use Vorna\Mrel\Saude\Verificador;

/** Whether all is well, by a quick look: for a timer, or a monitoring system. */
final class Verifica extends Checagem
{
    protected function configure(): void
    {
        $this->descreve(
            'verifica',
            'check',
            'Diz em meio segundo se está tudo bem: 0 ok, 1 aviso, 2 crítico, 3 desconhecido',
            'Tells in half a second whether all is well: 0 ok, 1 warning, 2 critical, 3 unknown',
            ['vtmrel verifica', 'vtmrel verifica --prom vtmrel.prom', 'vtmrel verifica --sem logs,trava --json']
        );
    }

    protected function verificador(Relay $relay, int $porHora): Verificador
    {
        return new Verificador($relay, porHora: $porHora);
    }

    protected function nomes(): array
    {
        return Verificador::CHECAGENS;
    }

    protected function guarda(): bool
    {
        return true;
    }
}
