<?php

// What the fleet's tests have in common: the generated month, a server, senders.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Relay;

abstract class Caso extends TestCase
{
    protected const DIAS = ['2026-03-05', '2026-04-04'];

    protected static ?Cluster $cluster = null;

    public static function setUpBeforeClass(): void
    {
        self::$cluster = (new Cluster())->com('pgsql');
    }

    public static function tearDownAfterClass(): void
    {
        self::$cluster = null;
    }

    protected function setUp(): void
    {
        foreach (self::$cluster->sql("SELECT c.oid::regclass FROM pg_inherits JOIN pg_class c ON c.oid = inhrelid WHERE c.relkind = 'r'") as [$parte]) {
            self::$cluster->sql("DROP TABLE $parte");
        }
        self::$cluster->sql('DROP FUNCTION IF EXISTS espera CASCADE; TRUNCATE relays, envios');
    }

    /** The relay of the generated month. */
    protected static function mes(): Relay
    {
        return new Relay(
            getenv('VT_FROTA') . '/dat',
            'matriz',
            ponto: getenv('VT_FROTA') . '/ponto',
            dominios: ['metalurgica.example'],
            fuso: new \DateTimeZone('Atlantic/Azores')
        );
    }

    protected static function periodo(): Periodo
    {
        return Periodo::de(...[...self::DIAS, new \DateTimeZone('Atlantic/Azores')]);
    }

    /** @return list<string> a command line that sends */
    protected static function envia(Relay $relay, string ...$mais): array
    {
        return ['envia', '--para=' . self::$cluster->dsn(), "--relay=$relay->nome", "--dados=$relay->dados",
            '--fuso=' . $relay->fuso->getName(), '--dominios-locais=' . implode(';', $relay->dominios),
            "--ponto=$relay->ponto", ...$mais];
    }

    /** What is in the tables, as the server counts it. */
    protected static function contagem(): array
    {
        return self::$cluster->sql('SELECT relay, dia, internas, (SELECT count(*) FROM usuarios u WHERE (u.relay, u.dia) = (t.relay, t.dia)),
            (SELECT count(*) FROM eventos e WHERE (e.relay, e.dia) = (t.relay, t.dia)) FROM totais t ORDER BY 1, 2');
    }

    /** Starts a command without waiting for it: the process and its outputs. */
    protected static function comeca(array $argumentos): array
    {
        $erros = tmpfile();
        $p = proc_open([Vtmrel::PROGRAMA, ...$argumentos], [['file', '/dev/null', 'r'], ['file', '/dev/null', 'w'], $erros], $canos);
        return [$p, $erros];
    }

    /** @return array{int, string} how it ended, and what it said */
    protected static function espera(array $comecado): array
    {
        $codigo = proc_close($comecado[0]);
        rewind($comecado[1]);
        return [$codigo, stream_get_contents($comecado[1])];
    }

    /** Waits until a query answers something. */
    protected static function ate(string $sql): void
    {
        for ($i = 0; self::$cluster->sql($sql) === []; ++$i) {
            $i < 600 || self::fail("never: $sql");
            usleep(50000);
        }
    }
}
