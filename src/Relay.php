<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** One mail relay: where its files are, which domains are local, in which zone its days are. */
final readonly class Relay
{
    public \DateTimeZone $fuso;

    /**
     * @param string $dados the data directory, which holds the folders rels_MM-YY
     * @param ?string $logs the dispatcher's logs
     * @param ?string $ponto the last-consolidation file
     * @param list<string> $dominios local mail domains
     * @param ?\DateTimeZone $fuso null for the C library's
     * @param ?string $saude where the last result of the checks is kept
     */
    public function __construct(
        public string $dados,
        public string $nome = 'local',
        public ?string $logs = null,
        public ?string $ponto = null,
        public array $dominios = [],
        ?\DateTimeZone $fuso = null,
        public ?string $saude = null,
    ) {
        $this->fuso = $fuso ?? Fuso::daMaquina();
    }

    /**
     * A list of domains as it is typed: parted by ";" or ",".
     *
     * @return list<string>
     */
    public static function dominios(string $lista): array
    {
        return preg_split('/[;,\s]+/', $lista, -1, PREG_SPLIT_NO_EMPTY);
    }
}
