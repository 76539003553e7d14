<?php

declare(strict_types=1);

namespace Vorna\Mrel\Falha;

use Vorna\Mrel\Falha;

/** Why a consolidation did nothing, or less than it should. */
final class NaoConsolidado extends Falha
{
    private function __construct(string $frase, string $emIngles, public readonly bool $nadaAFazer = false)
    {
        parent::__construct($frase, $emIngles);
    }

    public static function emDia(string $ponto): self
    {
        return new self(
            "Nada a fazer: os dias antes de $ponto já estão completos.",
            "Nothing to do: the days before $ponto are complete already.",
            true
        );
    }

    public static function semLog(string $arquivo): self
    {
        $a = self::cita($arquivo);
        return new self(
            "Falta o log $a: confira --logs e se o despachante o escreve.",
            "The log $a is missing: check --logs, and whether the dispatcher writes it."
        );
    }

    public static function logVazio(string $arquivo): self
    {
        $a = self::cita($arquivo);
        return new self(
            "O log $a está vazio ou começa por uma linha sem data: rode de novo quando tiver a primeira linha.",
            "The log $a is empty or begins with a line without a date: run again when it has its first line."
        );
    }

    public static function logIlegivel(string $caminho): self
    {
        $c = self::cita($caminho);
        return new self(
            "O log $c não pode ser lido, e seu dia seria escrito vazio: dê a este usuário permissão de leitura.",
            "The log $c cannot be read, and its day would be written empty: give this user the right to read it."
        );
    }

    public static function ocupado(string $dono): self
    {
        return new self(
            "Outro processo consolida agora e tem a trava: $dono; espere que termine e rode de novo.",
            "Another process consolidates now and holds the lock: $dono; wait for its end and run again."
        );
    }

    public static function travaAlheia(string $arquivo): self
    {
        return new self(
            "A trava $arquivo é de outro usuário: consolide sempre com o mesmo, ou remova-a como root se não se usa.",
            "The lock $arquivo is another user's: consolidate always as the same one, or remove it as root if unused."
        );
    }

    public static function semEscrita(string $diretorio): self
    {
        $d = self::cita($diretorio);
        return new self(
            "Não há permissão para escrever em $d: consolide com o usuário que é dono dos dados.",
            "There is no permission to write to $d: consolidate as the user who owns the data."
        );
    }

    public static function interrompido(int $sinal): self
    {
        return new self(
            "A consolidação não chegou ao fim (sinal $sinal): rode de novo, ela continua do ponto.",
            "The consolidation did not come to its end (signal $sinal): run again, it goes on from the point."
        );
    }

    public static function motor(string $erros): self
    {
        $e = self::cita($erros);
        return new self(
            "O motor não conseguiu ($e): corrija e rode de novo.",
            "The engine could not ($e): mend that and run again."
        );
    }

    public static function futuro(string $ponto): self
    {
        return new self(
            "O ponto é $ponto, que ainda não chegou: acerte o relógio ou o arquivo do ponto.",
            "The point is $ponto, which is yet to come: set the clock or the point's file right."
        );
    }

    /** @param list<string> $dias */
    public static function diasVazios(array $dias): self
    {
        $d = implode(', ', $dias);
        return new self(
            "Nenhum log tem linhas de $d, escrito vazio: se houve correio, devolva o log, recue o ponto e rode de novo.",
            "No log has lines of $d, written empty: if there was mail, put the log and the point back and run again."
        );
    }

    public static function naoTerminou(string $dia): self
    {
        return new self(
            "O dia $dia não está completo, pois o log ainda não tem linha de hoje: rode de novo quando tiver.",
            "The day $dia is not complete, since the log has no line of today yet: run again when it has."
        );
    }

    public static function ficou(?string $ponto): self
    {
        return $ponto === null
            ? new self(
                'Nenhum ponto foi escrito: confira o arquivo de --ponto, o diretório dele e o espaço em disco.',
                'No point was written: check the file of --ponto, its directory and the disk space.'
            )
            : new self(
                "O ponto ficou em $ponto e não chegou a hoje: confira os logs, os dados e o espaço em disco.",
                "The point stayed at $ponto and did not reach today: check the logs, the data and the disk space."
            );
    }

    public static function nadaEscrito(): self
    {
        return new self(
            'Nada foi escrito: confira os logs, os dados e o espaço em disco.',
            'Nothing was written: check the logs, the data and the disk space.'
        );
    }
}
