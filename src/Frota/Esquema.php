<?php

declare(strict_types=1);

namespace Vorna\Mrel\Frota;

use Vorna\Mrel\Rotulos;

/**
 * The schema of a fleet's database, the same for every kind: the three exports as tables, parted by day, the
 * relays, what was sent, and the reports as views. Columns and their meaning are those of Rotulos.
 */
final readonly class Esquema
{
    /** Changes with every change of a table or view; who sends compares it. */
    public const VERSAO = 1;

    /** The name space in PostgreSQL, where others may have tables of such names. */
    public const ESPACO = 'vtmrel';

    /** The tables that the exports fill. */
    public const TABELAS = ['totais', 'usuarios', 'eventos'];

    /** The columns that hold no count. */
    private const TIPOS = [
        'relay' => Tipo::Palavra, 'dia' => Tipo::Dia, 'hora' => Tipo::Hora, 'quando' => Tipo::Instante,
        'usuario' => Tipo::Texto, 'tipo' => Tipo::Palavra, 'mensagem' => Tipo::Texto, 'nome' => Tipo::Texto,
        'classe' => Tipo::Palavra, 'texto' => Tipo::Texto,
    ];

    /** @param bool $geral of PostgreSQL: the one that asks several servers, and holds no rows itself */
    public function __construct(private Dialeto $dialeto, private bool $geral = false)
    {
    }

    /**
     * The schemas that there are, by the name that they are asked by.
     *
     * @return array<string, self>
     */
    public static function todos(): array
    {
        return [
            'pgsql' => new self(Dialeto::Pgsql),
            'pgsql-geral' => new self(Dialeto::Pgsql, true),
            'duckdb' => new self(Dialeto::Duckdb),
            'clickhouse' => new self(Dialeto::Clickhouse),
        ];
    }

    /**
     * The columns of a table in their order: those of the export. An event has its hour besides, by the clock of
     * its relay, which a database cannot tell from the instant.
     *
     * @return list<string>
     */
    public static function colunas(string $tabela): array
    {
        return [...Rotulos::colunas($tabela), ...($tabela === 'eventos' ? ['hora'] : [])];
    }

    public function sql(): string
    {
        $partes = match ($this->dialeto) {
            Dialeto::Pgsql => $this->geral ? $this->pgsqlGeral() : $this->pgsql(),
            Dialeto::Duckdb => $this->duckdb(),
            Dialeto::Clickhouse => $this->clickhouse(),
        };
        return '-- vtmrel, ' . $this->dialeto->value . ', versão / version ' . self::VERSAO . "\n"
            . implode("\n", $partes);
    }

    /** @return list<string> */
    private function pgsql(): array
    {
        $tabelas = array_map(
            fn (string $t): string => $this->tabela($t, ' PARTITION BY RANGE (dia)') . $this->comentarios($t),
            self::TABELAS
        );
        $espaco = self::ESPACO;
        return [
            "BEGIN;\nCREATE SCHEMA $espaco;\nSET LOCAL search_path = $espaco;\n",
            ...$tabelas,
            <<<'SQL'
            -- The questions of the pages: one relay's day; a user, in any letter case; a message.
            ALTER TABLE totais ADD PRIMARY KEY (relay, dia);
            CREATE INDEX ON usuarios (relay);
            CREATE INDEX ON usuarios (lower(usuario));
            CREATE INDEX ON eventos USING brin (relay) WITH (pages_per_range = 16);
            CREATE INDEX ON eventos (mensagem);
            CREATE INDEX ON eventos (lower(nome)) WHERE tipo IN ('submetida', 'aceita');

            -- What was sent: one row a relay and day, of the same transaction as its rows.
            CREATE TABLE envios (relay text COLLATE "C" NOT NULL, dia date NOT NULL, quando timestamptz NOT NULL DEFAULT now(),
                usuarios bigint NOT NULL, eventos bigint NOT NULL, arquivos text NOT NULL, PRIMARY KEY (relay, dia));

            SQL,
            $this->relays(', PRIMARY KEY (relay)'),
            $this->preparaDia(),
            ...$this->vistas(),
            "COMMENT ON SCHEMA $espaco IS 'vtmrel " . self::VERSAO . "';\nCOMMIT;\n",
        ];
    }

    /**
     * The tables are parted by relay, and each part is a table of the server that has the relay.
     *
     * @return list<string>
     */
    private function pgsqlGeral(): array
    {
        $espaco = self::ESPACO;
        $todas = [...self::TABELAS, 'relays'];
        $nomes = "'" . implode("', '", $todas) . "'";
        return [
            "BEGIN;\nCREATE EXTENSION IF NOT EXISTS postgres_fdw SCHEMA public;\nCREATE SCHEMA $espaco;\nSET LOCAL search_path = $espaco, public;\n",
            ...array_map(fn (string $t): string => $this->tabela($t, ' PARTITION BY LIST (relay)'), self::TABELAS),
            $this->relays('', ' PARTITION BY LIST (relay)'),
            <<<SQL
            -- Makes the relays of a server, which CREATE SERVER named, a part of every table.
            CREATE FUNCTION acrescenta_servidor(servidor text, quais text[]) RETURNS void LANGUAGE plpgsql
            SET search_path = $espaco, public, pg_temp AS \$\$
            DECLARE t text;
            BEGIN
                FOREACH t IN ARRAY ARRAY[$nomes] LOOP
                    EXECUTE format('CREATE FOREIGN TABLE %I PARTITION OF %I FOR VALUES IN (%s) SERVER %I'
                        || ' OPTIONS (schema_name ''$espaco'', table_name %L)', t || '_' || servidor, t,
                        (SELECT string_agg(quote_literal(r), ', ') FROM unnest(quais) r), servidor, t);
                END LOOP;
            END \$\$;

            SQL,
            ...$this->vistas(),
            "COMMIT;\n",
        ];
    }

    /** Parts are attached, not created in place, which would wait for every sender and make them wait. */
    private function preparaDia(): string
    {
        $tabelas = "'" . implode("', '", self::TABELAS) . "'";
        $espaco = self::ESPACO;
        return <<<SQL
            -- Makes the parts of a day, whoever comes first. Senders need no other right to create.
            CREATE FUNCTION prepara_dia(d date) RETURNS void LANGUAGE plpgsql SECURITY DEFINER
            SET search_path = $espaco, pg_temp AS \$\$
            DECLARE t text; parte text;
            BEGIN
                FOREACH t IN ARRAY ARRAY[$tabelas] LOOP
                    parte := t || to_char(d, '_YYYYMMDD');
                    CONTINUE WHEN to_regclass(parte) IS NOT NULL;
                    PERFORM pg_advisory_xact_lock(hashtextextended('$espaco.prepara_dia', 0));
                    -- Asked of the table: to_regclass would remember what it answered before the lock.
                    CONTINUE WHEN EXISTS (SELECT FROM pg_class WHERE relname = parte AND relnamespace = '$espaco'::regnamespace);
                    EXECUTE format('CREATE TABLE %I (LIKE %I INCLUDING ALL)', parte, t);
                    EXECUTE format('ALTER TABLE %I ATTACH PARTITION %I FOR VALUES FROM (%L) TO (%L)', t, parte, d, d + 1);
                END LOOP;
            END \$\$;

            SQL;
    }

    /** @return list<string> */
    private function duckdb(): array
    {
        return [
            "-- The questions of an analyst, over files that \"vtmrel exporta\" wrote:\n"
            . "--     INSERT INTO eventos FROM le_eventos('eventos.csv');\n"
            . "-- or as Parquet, a folder a day:\n"
            . "--     COPY (FROM le_eventos('eventos.csv')) TO 'eventos' (FORMAT parquet, PARTITION_BY (dia));\n"
            . "--     INSERT INTO eventos SELECT * FROM read_parquet('eventos/*/*.parquet');\n"
            . "BEGIN;\n",
            ...array_map(fn (string $t): string => $this->tabela($t, ''), self::TABELAS),
            ...array_map($this->leitura(...), self::TABELAS),
            $this->relays(', PRIMARY KEY (relay)'),
            ...$this->vistas(),
            "COMMIT;\n",
        ];
    }

    /** A table macro that reads a file of the export, its columns in the table's order. */
    private function leitura(string $tabela): string
    {
        $tipo = fn (string $c): string => explode(' ', $this->dialeto->tipo($this->tipoDe($tabela, $c)))[0];
        $exportadas = Rotulos::colunas($tabela);
        // Read as texts: a quoted empty one and none at all are the same to the reader.
        $lidas = implode(', ', array_map(static fn (string $c): string => "'$c': 'VARCHAR'", $exportadas));
        $colunas = array_map(fn (string $c): string => match ($tipo($c)) {
            'VARCHAR' => "coalesce($c, '') AS $c",
            default => "CAST($c AS {$tipo($c)}) AS $c",
        }, $exportadas);
        if ($tabela === 'eventos') {
            $colunas[] = 'CAST(substr(quando, 12, 2) AS SMALLINT) AS hora';
        }
        return "CREATE MACRO le_$tabela(arquivo) AS TABLE SELECT\n    " . implode(",\n    ", $colunas)
            . "\nFROM read_csv(arquivo, header = true, delim = ',', quote = '\"', escape = '\"', new_line = '\\n',\n"
            . "    auto_detect = false, nullstr = '', max_line_size = 16777216, columns = {{$lidas}});\n";
    }

    /** @return list<string> */
    private function clickhouse(): array
    {
        $ordem = ['totais' => 'relay, dia', 'usuarios' => 'relay, dia, usuario, hora', 'eventos' => 'relay, dia, n'];
        $tabelas = array_map(fn (string $t): string => $this->tabela(
            $t,
            "\nENGINE = MergeTree PARTITION BY (dia, relay) ORDER BY ($ordem[$t])",
            $t === 'eventos' ? ",\n    INDEX por_mensagem mensagem TYPE bloom_filter GRANULARITY 1,"
                . "\n    INDEX por_nome lower(nome) TYPE bloom_filter GRANULARITY 1" : ''
        ), self::TABELAS);
        $entrada = implode(', ', array_map(
            fn (string $c): string => $c . ' ' . ($c === 'quando' ? 'String' : $this->dialeto->tipo($this->tipoDe('eventos', $c))),
            Rotulos::colunas('eventos')
        ));
        $todas = implode(', ', array_map(static fn (string $c): string => match ($c) {
            'quando' => 'parseDateTimeBestEffortOrNull(quando)',
            'hora' => 'toInt16OrNull(substring(quando, 12, 2))',
            default => $c,
        }, self::colunas('eventos')));
        return [
            "-- A part a day and relay; before a day is loaded again its parts are dropped:\n"
            . "--     ALTER TABLE eventos DROP PARTITION ('2026-03-10', 'matriz');\n"
            . "-- Loading what \"vtmrel exporta\" writes; totais and usuarios likewise, without the SELECT:\n"
            . "--     INSERT INTO eventos SELECT $todas\n--     FROM input('$entrada') FORMAT CSVWithNames\n",
            ...$tabelas,
            $this->relays('', "\nENGINE = ReplacingMergeTree ORDER BY relay"),
            ...$this->vistas(),
        ];
    }

    private function relays(string $chave, string $resto = ''): string
    {
        $texto = $this->dialeto->tipo(Tipo::Texto);
        return "-- Each relay's zone, and its local domain when it has just one.\n"
            . "CREATE TABLE relays (relay $texto, fuso $texto, dominio $texto$chave)$resto;\n";
    }

    private function tabela(string $tabela, string $resto, string $indices = ''): string
    {
        $colunas = array_map(
            fn (string $c): string => "$c " . $this->dialeto->tipo($this->tipoDe($tabela, $c)),
            self::colunas($tabela)
        );
        return "CREATE TABLE $tabela (\n    " . implode(",\n    ", $colunas) . "$indices\n)$resto;\n";
    }

    private function tipoDe(string $tabela, string $coluna): Tipo
    {
        return self::TIPOS[$coluna]
            ?? ($tabela === 'eventos' && $coluna === 'bytes' ? Tipo::ContaOuNada : Tipo::Conta);
    }

    private function comentarios(string $tabela): string
    {
        $rotulos = new Rotulos();
        $texto = '';
        foreach (Rotulos::colunas($tabela) as $coluna) {
            // In the database sums of bytes are whole.
            $definicao = preg_replace('/; depois de 4 GiB [^.]*/', '', $rotulos->definicao($tabela, $coluna));
            $texto .= "COMMENT ON COLUMN $tabela.$coluna IS '" . str_replace("'", "''", $definicao) . "';\n";
        }
        return $texto;
    }

    /** @return list<string> */
    private function vistas(): array
    {
        $vistas = (new Vistas($this->dialeto))->todas();
        return array_map(
            static fn (string $nome, string $consulta): string => "CREATE VIEW $nome AS\n$consulta;\n",
            array_keys($vistas),
            $vistas
        );
    }
}
