<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\DadosInacessiveis;
use Vorna\Mrel\Falha\DiaIlegivel;
use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Falha\ModuloAusente;
use Vorna\Mrel\Falha\NenhumDia;
use Vorna\Mrel\Linha\DiaDeUsuario;
use Vorna\Mrel\Linha\Hora;
use Vorna\Mrel\Linha\HoraDeUsuario;
use Vorna\Mrel\Linha\Mensagem;
use Vorna\Mrel\Linha\Posicao;
use Vorna\Mrel\Linha\Rastro;
use Vorna\Mrel\Linha\Totais;

/**
 * The reports of one relay. Texts come and go in UTF-8, periods are whole local days.
 *
 * Every method throws at the call, not at the first row:
 * ModuloAusente without the extension; DadosInacessiveis for a data directory that cannot be read;
 * NenhumDia for one without day files; DiaIlegivel for a day of the period that is there but cannot be
 * read. A period without files within a directory that has some is an empty answer.
 * All of them are a Falha, whose message is a sentence for the user.
 */
final readonly class Relatorios
{
    public function __construct(private Relay $relay)
    {
    }

    /**
     * All users together, a row for each day that has files, oldest first.
     *
     * @return \Generator<int, Totais>
     */
    public function totais(Periodo $periodo): \Generator
    {
    }

    /**
     * The days of each user named, in the order asked, of each the oldest first; a user without mail has
     * no row. Names are told apart by letter case, as the day files hold them; "ana" also finds the lines of
     * ana@example.com where that domain is local.
     *
     * @param non-empty-list<string> $usuarios
     * @return \Generator<int, DiaDeUsuario>
     * @throws EntradaInvalida for a name that cannot be
     */
    public function porUsuario(Periodo $periodo, array $usuarios): \Generator
    {
    }

    /**
     * All users together, hour 0 to hour 23 by the clock, the same hour of all days added up. A message counts
     * in the hour of its end, when it was submitted within the period. Needs memory by the period: some 400
     * bytes a message.
     *
     * @return list<Hora> 24
     */
    public function horas(Periodo $periodo): array
    {
    }

    /**
     * One user, 24 rows for each day that has files, oldest first.
     *
     * @return \Generator<int, HoraDeUsuario>
     * @throws EntradaInvalida for a name that cannot be
     */
    public function horasDe(Periodo $periodo, string $usuario): \Generator
    {
    }

    /**
     * The messages that a filter finds, each once, by `quando`, then id.
     *
     * @return \Generator<int, Mensagem>
     */
    public function mensagens(Periodo $periodo, Filtro $filtro): \Generator
    {
    }

    /**
     * The history of one message; null when it is not known. Without a period all days, newest first.
     *
     * @throws EntradaInvalida for an id that cannot be
     */
    public function rastro(string $id, ?Periodo $periodo = null): ?Rastro
    {
    }

    /**
     * The $n largest users, or domains, by a counter; those with 0 are left out, and so is mail without a
     * sender. Names fold in ASCII letter case and show in the spelling met most often. A bare name is its
     * address when exactly one local domain is given; of domains it is "(local)" otherwise.
     *
     * @return list<Posicao> largest first, ties by name
     * @throws EntradaInvalida for $n below 1
     */
    public function topo(
        Periodo $periodo,
        Contador $por = Contador::Enviadas,
        int $n = 20,
        bool $dominios = false,
    ): array {
    }
}
