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
    private Dias $dias;
    private Motor $motor;
    private Transbordo $transbordo;
    private Horario $horario;

    public function __construct(private Relay $relay)
    {
        $this->dias = new Dias($relay->dados);
        $this->motor = new Motor($relay);
        $this->transbordo = new Transbordo($this->dias, $this->motor);
        $this->horario = new Horario($this->motor, $this->transbordo);
    }

    /** @return list<string> the days of a period that have files, "2026-03-10", oldest first */
    public function dias(Periodo $periodo): array
    {
        return array_map('strval', array_keys($this->arquivos(Dias::ESTATISTICA, $periodo)));
    }

    /**
     * All users together, a row for each day that has files, oldest first.
     *
     * @return \Generator<int, Totais>
     */
    public function totais(Periodo $periodo): \Generator
    {
        $this->arquivos(Dias::ESTATISTICA, $periodo);
        return $this->linhasDeTotais($this->motor->pergunta('msgs_per_day', ...[...$periodo->dias(), ' ']));
    }

    /**
     * The days of each user named, in the order asked, of each the oldest first; a user without mail has
     * no row. Names are told apart by letter case, as the day files hold them; "ana" also finds the lines of
     * ana@example.com where that domain is local. A name with a tab in it finds nothing here and in horasDe:
     * the engine ends a name of a statistics file at any white space.
     *
     * @param non-empty-list<string> $usuarios
     * @return \Generator<int, DiaDeUsuario>
     * @throws EntradaInvalida for a name that cannot be
     */
    public function porUsuario(Periodo $periodo, array $usuarios): \Generator
    {
        array_map(Nome::verifica(...), $usuarios ?: ['']);
        $this->arquivos(Dias::ESTATISTICA, $periodo);
        return $this->linhasDeUsuarios($periodo, array_unique($usuarios));
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
        return $this->somaDasHoras($periodo, $this->horasPorDia($periodo));
    }

    /**
     * The same, each day for itself: a message submitted on one day of the period counts on the day of its end.
     *
     * @return array<string, list<list<int>>> by day that has files, of each hour the counters of a Hora
     */
    public function horasPorDia(Periodo $periodo): array
    {
        $arquivos = $this->arquivos(Dias::COMPACTO, $periodo);
        return $this->horario->porDia($periodo, array_keys($arquivos));
    }

    /**
     * @param array<string, list<list<int>>> $dias as horasPorDia answers for that period
     * @return list<Hora> 24
     */
    public function somaDasHoras(Periodo $periodo, array $dias): array
    {
        return $this->horario->soma($periodo, $dias);
    }

    /**
     * One user, 24 rows for each day that has files, oldest first.
     *
     * @return \Generator<int, HoraDeUsuario>
     * @throws EntradaInvalida for a name that cannot be
     */
    public function horasDe(Periodo $periodo, string $usuario): \Generator
    {
        Nome::verifica($usuario);
        $dias = array_keys($this->arquivos(Dias::ESTATISTICA, $periodo));
        return $this->linhasDeHoras($periodo, $dias, $usuario);
    }

    /**
     * All users of some domains together, 24 rows for each day that has files, oldest first.
     *
     * @param non-empty-list<string> $dominios
     * @param bool $semDominio whether names without a domain are theirs too
     * @return \Generator<int, HoraDeUsuario> whose user is the list of the domains
     */
    public function horasDosDominios(Periodo $periodo, array $dominios, bool $semDominio): \Generator
    {
        $arquivos = $this->arquivos(Dias::ESTATISTICA, $periodo);
        $soma = new PorDominio($dominios, $semDominio);
        return $soma->linhas($periodo->fuso, $arquivos, $this->transbordo);
    }

    /**
     * The messages that a filter finds, each once, by `quando`, then id.
     *
     * @return \Generator<int, Mensagem>
     */
    public function mensagens(Periodo $periodo, Filtro $filtro): \Generator
    {
        return (new Busca(...[...$this->compactos($periodo), $periodo, $filtro]))->mensagens();
    }

    /**
     * The same messages a page at a time, newest first. A page costs what it shows, not what the period holds;
     * where a search finds little it may pause and be resumed by the next page.
     *
     * @param ?string $cursor of the page before, with the same period and filter; null for the first page
     * @throws EntradaInvalida for a cursor that is none
     */
    public function pagina(Periodo $periodo, Filtro $filtro, ?string $cursor = null, int $n = 200): Pagina
    {
        $cursor = $cursor === null ? null : Cursor::le($cursor);
        $folheio = new Folheio(...[...$this->compactos($periodo), $periodo, $filtro]);
        return $folheio->pagina($cursor, $n);
    }

    /**
     * The history of one message; null when it is not known. Without a period all days, newest first.
     *
     * @throws EntradaInvalida for an id that cannot be
     */
    public function rastro(string $id, ?Periodo $periodo = null): ?Rastro
    {
        Filtro::verificaId($id);
        $todos = $periodo ?? $this->todosOsDias();
        $dias = array_keys($this->arquivos(Dias::COMPACTO, $todos));
        $rastreio = new Rastreio($this->motor, $todos->fuso);
        return $periodo ? $rastreio->no($periodo, $id) : $rastreio->emTodos($dias, $id);
    }

    /**
     * The $n largest users, or domains, by a counter; those with 0 are left out, and so is mail without a
     * sender. Names fold in ASCII letter case and show in the spelling met most often. A bare name is its
     * address when exactly one local domain is given; of domains it is "(local)" otherwise.
     *
     * @param ?\Closure(string): bool $so whether a name, in UTF-8 and as the day file has it, counts; null for all
     * @return list<Posicao> largest first, ties by name
     * @throws EntradaInvalida for $n below 1
     */
    public function topo(
        Periodo $periodo,
        Contador $por = Contador::Enviadas,
        int $n = 20,
        bool $dominios = false,
        ?\Closure $so = null,
    ): array {
        if ($n < 1) {
            throw EntradaInvalida::quantidade($n);
        }
        $arquivos = $this->arquivos(Dias::ESTATISTICA, $periodo);
        $maiores = new Maiores($this->relay->dominios, $por, $dominios, $so);
        array_map($maiores->soma(...), $arquivos);
        $incertos = $por->deBytes() ? $this->transbordo->dosDias($periodo) : static fn (): bool => false;
        $posicoes = [];
        foreach ($maiores->primeiros($n) as $nome => $valor) {
            $posicoes[] = new Posicao(count($posicoes) + 1, Texto::utf8((string) $nome), $valor, $incertos);
        }
        return $posicoes;
    }

    /** @return array{array<string, string>, array<string, string>} compact files of the period and of the days before */
    private function compactos(Periodo $periodo): array
    {
        $arquivos = $this->arquivos(Dias::COMPACTO, $periodo);
        $anteriores = $this->dias->legiveis(Dias::COMPACTO, $periodo->alargado(Busca::DIAS_ANTES));
        return [$arquivos, array_diff_key($anteriores, $arquivos)];
    }

    /** @throws NenhumDia */
    private function todosOsDias(): Periodo
    {
        $dias = $this->dias->todos() ?: throw NenhumDia::em($this->relay->dados);
        return Periodo::de($dias[0], end($dias), $this->relay->fuso);
    }

    /**
     * @return array<string, string> by day
     * @throws ModuloAusente
     * @throws DadosInacessiveis
     * @throws NenhumDia
     * @throws DiaIlegivel
     */
    private function arquivos(string $tipo, Periodo $periodo): array
    {
        Motor::exige();
        return $this->dias->arquivos($tipo, $periodo);
    }

    private function linhasDeTotais(\vt_mrel_itr $itr): \Generator
    {
        while ($itr->fetch()) {
            $dia = gmdate('Y-m-d', $itr->timestamp);
            yield new Totais(
                $dia,
                $itr->msgs_int,
                $itr->bytes_int,
                $itr->msgs_ext,
                $itr->bytes_ext,
                $itr->spam,
                $itr->virus,
                $itr->error,
                $this->transbordo->doDia($dia)
            );
        }
    }

    /** A question a name: asked together, a name and its address would share their lines out. */
    private function linhasDeUsuarios(Periodo $periodo, array $usuarios): \Generator
    {
        foreach ($usuarios as $usuario) {
            $nome = Texto::latin1($usuario);
            if ($nome === null) {
                continue;  // a character that no log can hold
            }
            $itr = $this->motor->pergunta('msgs_per_day', ...[...$periodo->dias(), $nome]);
            $itr->fetch();
            while ($itr->fetch_msgs_per_day()) {
                $dia = gmdate('Y-m-d', $itr->timestamp);
                // Of a user "ext" is what he sent and "int" what he received; spam and error are crossed.
                yield new DiaDeUsuario(
                    $usuario,
                    $dia,
                    $itr->msgs_ext,
                    $itr->bytes_ext,
                    $itr->msgs_int,
                    $itr->bytes_int,
                    $itr->error,
                    $itr->virus,
                    $itr->spam,
                    $this->transbordo->doDia($dia)
                );
            }
        }
    }

    private function linhasDeHoras(Periodo $periodo, array $dias, string $usuario): \Generator
    {
        $nome = Texto::latin1($usuario) ?? "\x01";  // nobody's: all the hours come, empty
        $itr = $this->motor->pergunta('msgs_per_hour', ...[...$periodo->dias(), $nome]);
        for ($n = 0; $itr->fetch(); ++$n) {
            $dia = $dias[intdiv($n, 24)];
            $inicio = (new \DateTimeImmutable("@$itr->timestamp"))->setTimezone($periodo->fuso);
            yield new HoraDeUsuario(
                $usuario,
                $dia,
                $inicio,
                (int) $inicio->format('G'),
                $itr->msgs_ext,
                $itr->bytes_ext,
                $itr->msgs_int,
                $itr->bytes_int,
                $itr->error,
                $itr->virus,
                $itr->spam,
                $this->transbordo->doDia($dia)
            );
        }
    }
}
