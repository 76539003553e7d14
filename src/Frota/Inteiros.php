<?php

declare(strict_types=1);

namespace Vorna\Mrel\Frota;

use Vorna\Mrel\Dias;
use Vorna\Mrel\Motor;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Transbordo;

/**
 * Whole sums of bytes. The day files count them in 32 bits: what they say is right but for multiples of 4 GiB, and
 * the sizes of the day's messages tell how many are missing. The two need not agree to the byte, since a message
 * may have been submitted on an earlier day; half of 4 GiB decides.
 */
final class Inteiros
{
    private const VOLTA = 0x100000000;
    /** As PostgreSQL divides it without losing the rest. */
    private const NUMERO = self::VOLTA . '.0';

    /** The largest message of the day. */
    private int $maior = 0;
    /** @var array<string, true> names whose counters of an hour may have begun again at 0 */
    private array $suspeitos = [];

    public function __construct(private readonly Relay $relay, private readonly string $dia)
    {
    }

    /** Rows of totais, with whole sums. */
    public function totais(iterable $linhas): \Generator
    {
        $transbordo = new Transbordo(new Dias($this->relay->dados), new Motor($this->relay));
        [$internas, $externas] = $transbordo->voltas($this->dia);
        foreach ($linhas as $linha) {
            $linha[3] = $linha[3]->n + $internas * self::VOLTA;
            $linha[5] = $linha[5]->n + $externas * self::VOLTA;
            yield $linha;
        }
    }

    /** Takes note of a row of eventos. */
    public function evento(array $linha): void
    {
        if ($linha[8] > $this->maior) {
            $this->maior = $linha[8];
        }
    }

    /** Takes note of a row of usuarios, after all the day's events. */
    public function usuario(array $linha): void
    {
        if (max($linha[4], $linha[5]) * $this->maior >= self::VOLTA) {
            $this->suspeitos[$linha[3]] = true;
        }
    }

    /** Mends the day's rows of usuarios, in the transaction that brought them. */
    public function conserta(Banco $banco): void
    {
        if (!$this->suspeitos) {
            return;
        }
        $nomes = json_encode(array_map('strval', array_keys($this->suspeitos)), JSON_THROW_ON_ERROR | JSON_UNESCAPED_UNICODE);
        $volta = self::NUMERO;
        foreach ([
            'bytes_recebidos' => "e.tipo = 'aceita' AND e.nome IN (SELECT nome FROM nomes)",
            'bytes_enviados' => "e.tipo IN ('encerrada', 'spam', 'virus') AND m.nome IN (SELECT nome FROM nomes)",
        ] as $coluna => $conta) {
            $nome = $coluna === 'bytes_recebidos' ? 'e.nome' : 'm.nome';
            $banco->consulta(<<<SQL
                WITH nomes AS (SELECT jsonb_array_elements_text($3::jsonb) AS nome),
                somas AS (
                    SELECT $nome AS usuario, e.hora, sum(m.bytes) AS soma
                    FROM eventos m JOIN eventos e ON e.mensagem = m.mensagem AND e.n > m.n
                    WHERE (m.relay, m.dia, m.tipo) = ($1, $2::date, 'submetida') AND (e.relay, e.dia) = ($1, $2::date) AND $conta
                    GROUP BY $nome, e.hora
                ),
                -- An hour may have two rows of a name: on the long day, and where tokens stand for spellings.
                linhas AS (
                    SELECT ctid AS lugar, usuario, hora, sum($coluna) OVER w AS tem, row_number() OVER w AS qual
                    FROM usuarios WHERE (relay, dia) = ($1, $2::date) WINDOW w AS (PARTITION BY usuario, hora)
                )
                UPDATE usuarios u SET $coluna = $coluna + (round((s.soma - l.tem) / $volta) * $volta)::bigint
                FROM linhas l JOIN somas s ON (s.usuario, s.hora) = (l.usuario, l.hora)
                WHERE (u.relay, u.dia) = ($1, $2::date) AND u.ctid = l.lugar AND l.qual = 1 AND s.soma - l.tem > $volta / 2
                SQL, [$this->relay->nome, $this->dia, $nomes]);
        }
    }
}
