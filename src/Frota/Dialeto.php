<?php

declare(strict_types=1);

namespace Vorna\Mrel\Frota;

/** The databases that the schema is written for, and what each of them says in a way of its own. */
enum Dialeto: string
{
    case Pgsql = 'pgsql';
    case Duckdb = 'duckdb';
    case Clickhouse = 'clickhouse';

    private const GRANDES = 'ABCDEFGHIJKLMNOPQRSTUVWXYZ';

    /** A column's type. Counters have 64 bits, and texts are told apart and ordered by their bytes. */
    public function tipo(Tipo $tipo): string
    {
        return match ($this) {
            self::Pgsql => match ($tipo) {
                Tipo::Texto, Tipo::Palavra => 'text COLLATE "C" NOT NULL',
                Tipo::Dia => 'date NOT NULL',
                Tipo::Hora => 'smallint',
                Tipo::Instante => 'timestamptz',
                Tipo::Conta => 'bigint NOT NULL',
                Tipo::ContaOuNada => 'bigint',
            },
            self::Duckdb => match ($tipo) {
                Tipo::Texto, Tipo::Palavra => 'VARCHAR NOT NULL',
                Tipo::Dia => 'DATE NOT NULL',
                Tipo::Hora => 'SMALLINT',
                Tipo::Instante => 'TIMESTAMPTZ',
                Tipo::Conta => 'BIGINT NOT NULL',
                Tipo::ContaOuNada => 'BIGINT',
            },
            self::Clickhouse => match ($tipo) {
                Tipo::Texto => 'String',
                Tipo::Palavra => 'LowCardinality(String)',
                Tipo::Dia => 'Date',
                Tipo::Hora => 'Nullable(Int16)',
                Tipo::Instante => "Nullable(DateTime('UTC'))",
                Tipo::Conta => 'Int64',
                Tipo::ContaOuNada => 'Nullable(Int64)',
            },
        };
    }

    /** A text in small letters, of A to Z alone, as the reports fold names. */
    public function minusculas(string $texto): string
    {
        return $this === self::Duckdb
            ? "translate($texto, '" . self::GRANDES . "', '" . strtolower(self::GRANDES) . "')" : "lower($texto)";
    }

    /** Of a group of events `o`, the value of the last one that meets a condition. */
    public function ultimo(string $valor, string $condicao): string
    {
        return match ($this) {
            self::Pgsql => "(array_agg($valor ORDER BY o.dia DESC, o.n DESC) FILTER (WHERE $condicao))[1]",
            self::Duckdb => "last($valor ORDER BY o.dia, o.n) FILTER (WHERE $condicao)",
            self::Clickhouse => "argMaxOrNullIf($valor, (o.dia, o.n), $condicao)",
        };
    }

    /** A column with the numbers 0 to 23, as the table `t`. */
    public function vinteEQuatro(): string
    {
        return $this === self::Clickhouse
            ? '(SELECT toInt16(number) AS hora FROM numbers(24)) t' : 'generate_series(0, 23) t(hora)';
    }

    /**
     * A sum of 64 bits: of bigint PostgreSQL makes a decimal, and DuckDB 128 bits.
     *
     * @param string $sobre "OVER (...)" where it is not of a group
     */
    public function soma(string $que, string $sobre = ''): string
    {
        return $this === self::Clickhouse ? "sum($que)$sobre" : "CAST(sum($que)$sobre AS bigint)";
    }
}
