<?php

declare(strict_types=1);

namespace Vorna\Mrel\Frota;

use Vorna\Mrel\Falha\EnvioFalhou;
use Vorna\Mrel\Falha\FrotaInvalida;
use Vorna\Mrel\Falha\ModuloAusente;
use Vorna\Mrel\Formato\Csv;
use Vorna\Mrel\Tabela;

/**
 * A PostgreSQL database with the fleet's schema. Every method throws EnvioFalhou for what the server refuses,
 * and when it has gone. A transaction that is not brought to its end is undone by the server.
 */
final class Banco
{
    private function __construct(private readonly \PgSql\Connection $conexao)
    {
    }

    /**
     * @param string $dsn as libpq takes it: "host=... dbname=..." or "postgresql://...", without a password
     * @throws FrotaInvalida for a password in it, and for a database without this version's schema
     * @throws ModuloAusente
     * @throws EnvioFalhou when there is no connection
     */
    public static function abre(string $dsn): self
    {
        function_exists('pg_connect') || throw ModuloAusente::pgsql();
        // Whoever lists the processes would read it.
        if (preg_match('~^\s*postgres(?:ql)?://[^/?#@]*:|(?:^|[\s?&])(?:ssl)?password\s*=~i', $dsn)) {
            throw FrotaInvalida::comSenha();
        }
        foreach (['PGCONNECT_TIMEOUT' => '20', 'PGAPPNAME' => 'vtmrel'] as $nome => $valor) {
            getenv($nome) !== false || putenv("$nome=$valor");
        }
        error_clear_last();
        $conexao = @pg_connect($dsn, PGSQL_CONNECT_FORCE_NEW);
        if ($conexao === false) {
            $porque = preg_replace('/^pg_connect\(\): (Unable to connect to PostgreSQL server: )?/', '', error_get_last()['message'] ?? '');
            throw EnvioFalhou::semConexao($porque);
        }
        $banco = new self($conexao);
        pg_set_client_encoding($conexao, 'UTF8');
        // A sender that loses its machine must not hold a day for hours.
        $banco->consulta('SET tcp_keepalives_idle = 60; SET tcp_keepalives_interval = 10; SET tcp_keepalives_count = 6');
        $banco->consulta('SET search_path = ' . Esquema::ESPACO);
        $versao = $banco->consulta("SELECT obj_description(to_regnamespace($1), 'pg_namespace') AS v", [Esquema::ESPACO]);
        if ($versao[0]['v'] !== Esquema::ESPACO . ' ' . Esquema::VERSAO) {
            throw FrotaInvalida::esquema($versao[0]['v'], Esquema::VERSAO);
        }
        return $banco;
    }

    /**
     * @param list<string|int> $valores of $1, $2 ...
     * @return list<array<string, ?string>>
     */
    public function consulta(string $sql, array $valores = []): array
    {
        $r = $valores ? @pg_query_params($this->conexao, $sql, $valores) : @pg_query($this->conexao, $sql);
        return $r === false ? throw $this->falha() : pg_fetch_all($r);
    }

    /**
     * All or nothing of what $faz does.
     *
     * @template T
     * @param \Closure(): T $faz
     * @return T
     */
    public function transacao(\Closure $faz): mixed
    {
        $this->consulta('BEGIN');
        try {
            $feito = $faz();
            $this->consulta('COMMIT');
            return $feito;
        } catch (\Throwable $e) {
            @pg_close($this->conexao);
            throw $e;
        }
    }

    /** Adds the rows of a table to the one of that name. */
    public function copia(Tabela $tabela): void
    {
        $textos = implode(', ', array_intersect($tabela->colunas, ['usuario', 'mensagem', 'nome', 'classe', 'texto']));
        $vazios = $textos === '' ? '' : ", FORCE_NOT_NULL ($textos)";
        $this->consulta("COPY $tabela->nome (" . implode(', ', $tabela->colunas) . ") FROM STDIN WITH (FORMAT csv, HEADER$vazios)");
        try {
            foreach ((new Csv())->pedacos($tabela) as $pedaco) {
                // PostgreSQL has no text with a NUL, and nor has a log: it is the mark of a damaged file.
                if (!@pg_put_line($this->conexao, strtr($pedaco, ["\0" => "\u{2400}"]))) {
                    throw $this->falha();
                }
            }
        } catch (\Throwable $e) {
            // PHP would wait for good on closing a connection that still copies.
            @pg_end_copy($this->conexao);
            throw $e;
        }
        @pg_end_copy($this->conexao) || throw $this->falha();
    }

    private function falha(): EnvioFalhou
    {
        return EnvioFalhou::doServidor((string) pg_last_error($this->conexao));
    }
}
