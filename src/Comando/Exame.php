<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Relay;
use Vorna\Mrel\Saude\Examinador;
use Vorna\Mrel\Saude\Verificador;

/** Whether the day files are right, by counting all of them over again: for when there is a doubt. */
final class Exame extends Checagem
{
    protected function configure(): void
    {
        $this->descreve(
            'exame',
            'doctor',
            'Lê todos os arquivos e conta tudo de novo; cada diferença com a regra que a faz, ou como dano',
            'Reads all files and counts all over again; each difference with the rule that makes it, or as damage',
            ['vtmrel exame', 'vtmrel exame --lingua en --json']
        );
    }

    protected function verificador(Relay $relay, int $porHora): Verificador
    {
        return new Examinador($relay, porHora: $porHora);
    }

    protected function nomes(): array
    {
        return Examinador::TODAS;
    }
}
