<?php

// A PostgreSQL server of a test's own: a cluster in a temporary directory, reached by its socket alone, run by a
// user without rights.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

final class Cluster
{
    private const DONO = 'nobody';

    /** An empty cluster that others are copies of. */
    private static ?string $modelo = null;

    public readonly string $dir;

    public function __construct()
    {
        if (self::$modelo === null) {
            self::$modelo = self::pasta();
            self::roda('initdb', '-D', self::$modelo . '/d', '-U', 'frota', '-A', 'trust', '-E', 'UTF8', '--locale=C', '--no-sync');
            register_shutdown_function(static fn () => Arvore::apaga(self::$modelo));
        }
        $this->dir = self::pasta();
        Vtmrel::executa(['cp', '-a', self::$modelo . '/d', $this->dir]);
        $this->liga();
        $this->sql('CREATE DATABASE frota', 'postgres');
    }

    public function __destruct()
    {
        $this->desliga('immediate');
        Arvore::apaga($this->dir);
    }

    public function liga(): void
    {
        $opcoes = "-k $this->dir -c listen_addresses='' -c fsync=off -c max_connections=40 -c shared_buffers=16MB";
        self::roda('pg_ctl', '-D', "$this->dir/d", '-w', '-l', "$this->dir/log", '-o', $opcoes, 'start');
    }

    public function desliga(string $como): void
    {
        self::roda('pg_ctl', '-D', "$this->dir/d", '-w', '-m', $como, 'stop');
    }

    public function dsn(string $banco = 'frota'): string
    {
        return "host=$this->dir dbname=$banco user=frota";
    }

    public function conecta(string $banco = 'frota'): \PgSql\Connection
    {
        return pg_connect($this->dsn($banco) . ' options=-csearch_path=vtmrel', PGSQL_CONNECT_FORCE_NEW);
    }

    /** @return list<list<?string>> */
    public function sql(string $sql, string $banco = 'frota'): array
    {
        $conexao = $this->conecta($banco);
        $r = pg_query($conexao, $sql);
        $linhas = pg_fetch_all($r, PGSQL_NUM);
        pg_close($conexao);
        return $linhas;
    }

    /** The cluster with this schema in its database. */
    public function com(string $esquema, string $banco = 'frota'): self
    {
        $r = Vtmrel::roda(['esquema', $esquema]);
        $r->codigo === 0 || throw new \RuntimeException($r->erros);
        $this->sql($r->saida, $banco);
        return $this;
    }

    private static function pasta(): string
    {
        $pasta = sys_get_temp_dir() . '/vt_pg_' . bin2hex(random_bytes(4));
        mkdir($pasta, 0755);
        posix_getuid() === 0 && chown($pasta, self::DONO);
        return $pasta;
    }

    private static function roda(string $programa, string ...$argumentos): void
    {
        $pastas = glob('/usr/lib/postgresql/*/bin');
        natsort($pastas);
        $como = posix_getuid() === 0 ? ['setpriv', '--reuid=' . self::DONO, '--regid=nogroup', '--clear-groups'] : [];
        $r = Vtmrel::executa([...$como, end($pastas) . "/$programa", ...$argumentos]);
        $r->codigo === 0 || throw new \RuntimeException("$programa: $r->saida$r->erros");
    }
}
