<?php

// A month of a relay as the engine leaves it: generated logs, rotated each midnight, consolidated to the last.

declare(strict_types=1);

namespace Vorna\Mrel\Testes\Saude;

use Vorna\Mrel\Relay;
use Vorna\Mrel\Testes\Arvore;

final class Mes
{
    public const FUSO = 'America/Sao_Paulo';
    private const PRIMEIRO = '2026-08-03';
    /** The last day of the logs, on which the checks look. */
    public const HOJE = '2026-09-03';
    public const ONTEM = '2026-09-02';

    private static ?string $modelo = null;

    private function __construct(public readonly string $raiz)
    {
    }

    /** A copy of its own, which the caller may damage. */
    public static function copia(): self
    {
        self::$modelo ??= self::gera();
        $raiz = sys_get_temp_dir() . '/vt_mes_' . getmypid() . '_' . bin2hex(random_bytes(4));
        self::roda(['cp', '-a', self::$modelo, $raiz]);
        return new self($raiz);
    }

    public function __destruct()
    {
        Arvore::apaga($this->raiz);
    }

    public function relay(string $fuso = self::FUSO): Relay
    {
        return new Relay(
            "$this->raiz/dat",
            'mes',
            "$this->raiz/logs",
            "$this->raiz/ponto",
            ['metalurgica.example'],
            new \DateTimeZone($fuso),
            "$this->raiz/saude"
        );
    }

    public function agora(string $hora = '10:00', string $dia = self::HOJE): \DateTimeImmutable
    {
        return new \DateTimeImmutable("$dia $hora", new \DateTimeZone(self::FUSO));
    }

    /** The day file whose name holds this, as "mail_stat_02". */
    public function arquivo(string $nome): string
    {
        return glob("$this->raiz/dat/rels_09-26/$nome.txt")[0];
    }

    public function log(string $sufixo = ''): string
    {
        return "$this->raiz/logs/MAIL_DISPATCHER.LOG$sufixo";
    }

    /** The rotated log of a day. */
    public function rodado(string $dia): string
    {
        return $this->log('.' . str_replace('-', '', $dia));
    }

    /** @param string ...$trocas pattern => replacement, of the file's text */
    public static function troca(string $arquivo, array $trocas): void
    {
        $antes = file_get_contents($arquivo);
        $depois = preg_replace(array_keys($trocas), array_values($trocas), $antes, 1);
        $antes !== $depois || throw new \LogicException("nothing to replace in $arquivo");
        file_put_contents($arquivo, $depois);
    }

    private static function gera(): string
    {
        $raiz = sys_get_temp_dir() . '/vt_mes_' . getmypid();
        register_shutdown_function(static fn () => is_dir($raiz) && Arvore::apaga($raiz));
        mkdir($raiz);
        $gerador = dirname(__DIR__, 3) . '/out/release/gera_logs';
        self::roda(['env', 'TZ=' . self::FUSO, $gerador, "$raiz/logs", self::PRIMEIRO, '--dias', '32', '--mensagens', '400',
            '--usuarios', '30']);
        self::consolida($raiz);
        return $raiz;
    }

    public static function consolida(string $raiz): void
    {
        $disse = Arvore::outroPhp('putenv("TZ=' . self::FUSO . '"); $m = new vt_mrel(); @mkdir("' . $raiz . '/dat");
            $m->setLogDir("' . $raiz . '/logs"); $m->setDataDir("' . $raiz . '/dat"); $m->consolidate("' . $raiz . '/ponto");');
        $disse === '' || throw new \RuntimeException($disse);
    }

    /** The same logs in a run for each night, as a relay does them: messages in flight go through the point's file. */
    public function porNoite(): self
    {
        self::roda(['rm', '-r', "$this->raiz/dat", "$this->raiz/ponto"]);
        rename("$this->raiz/logs", "$this->raiz/todos");
        mkdir("$this->raiz/logs");
        $logs = glob("$this->raiz/todos/*.2*");
        sort($logs);
        foreach ($logs as $log) {
            copy($log, "$this->raiz/logs/" . basename($log));
            $amanha = (new \DateTimeImmutable(substr($log, -8)))->modify('+1 day');
            // A line that is no message's, so that the day before it is over.
            file_put_contents($this->log(), $amanha->format('D M ') . sprintf('%2d', $amanha->format('j')) . $amanha->format(' 00:00:01 Y') . ": 01 POPSRV READ Msg x\n");
            self::consolida($this->raiz);
        }
        copy("$this->raiz/todos/MAIL_DISPATCHER.LOG", $this->log());
        return $this;
    }

    private static function roda(array $comando): void
    {
        $p = proc_open($comando, [1 => ['file', '/dev/null', 'w']], $canos);
        proc_close($p) === 0 || throw new \RuntimeException(implode(' ', $comando));
    }
}
