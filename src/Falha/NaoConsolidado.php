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

    /**
     * @param string $dono who holds the lock, "" when it is not known
     * @param bool $semFalta whether nothing is lost by doing nothing
     */
    public static function ocupado(string $dono, bool $semFalta = false): self
    {
        $quem = $dono === '' ? '' : ": $dono";
        return new self(
            "Outro processo consolida agora e tem a trava$quem; espere que termine e rode de novo.",
            "Another process consolidates now and holds the lock$quem; wait for its end and run again.",
            $semFalta
        );
    }

    /** What the process that did the work said of itself, in the language asked for. */
    public static function dito(string $frase, bool $semFalta): self
    {
        return new self($frase, $frase, $semFalta);
    }

    public static function comoRoot(string $dados, string $dono): self
    {
        $d = self::cita($dados);
        return new self(
            "Como root ficariam arquivos que $dono, dono de $d, não pode reescrever: rode como esse usuário.",
            "As root there would be files that $dono, who owns $d, cannot write again: run as that user."
        );
    }

    public static function discoCheio(string $diretorio): self
    {
        $d = self::cita($diretorio);
        return new self(
            "Os arquivos novos não ficaram inteiros em $d e nada foi trocado: confira o espaço em disco.",
            "The new files did not get whole in $d, and nothing was replaced: check the disk space."
        );
    }

    public static function semTroca(string $caminho): self
    {
        $c = self::cita($caminho);
        return new self(
            "$c não pode ser trocado (outro dono, outro grupo ou outro sistema de arquivos): nada mudou.",
            "$c cannot be replaced (another owner, group or file system): nothing was changed."
        );
    }

    public static function encolheria(string $dia, int $novo, int $velho): self
    {
        return new self(
            "Os logs dão menos de $dia ($novo bytes) do que já há ($velho): falta um log? Tente --juntar. Nada mudou.",
            "The logs give less of $dia ($novo bytes) than there is ($velho): is a log missing? Try --juntar. Nothing "
                . 'was changed.'
        );
    }

    public static function travaAlheia(string $arquivo): self
    {
        return new self(
            "A trava $arquivo é de outro usuário: consolide sempre com o mesmo, ou remova-a como root se não se usa.",
            "The lock $arquivo is another user's: consolidate always as the same one, or remove it as root if unused."
        );
    }

    public static function naoSeiLer(string $arquivo): self
    {
        $a = self::cita($arquivo);
        return new self(
            "O log $a não é texto nem gzip: descomprima-o ou tire-o daí, pois sem ele faltaria correio.",
            "The log $a is neither text nor gzip: uncompress it or move it away, as without it mail would be missing."
        );
    }

    public static function cortado(string $arquivo): self
    {
        $a = self::cita($arquivo);
        return new self(
            "O log $a está cortado ou danificado: se ainda está sendo comprimido, espere; senão devolva-o inteiro.",
            "The log $a is cut short or damaged: if it is still being compressed, wait; else put it back whole."
        );
    }

    public static function semEspaco(string $diretorio, int $precisa, int $ha): self
    {
        $d = self::cita($diretorio);
        return new self(
            "Falta espaço em $d para juntar os logs (precisa de $precisa bytes, há $ha): libere-o e rode de novo.",
            "There is no space in $d to join the logs ($precisa bytes needed, $ha left): make room and run again."
        );
    }

    public static function giramSempre(string $diretorio): self
    {
        $d = self::cita($diretorio);
        return new self(
            "Os logs de $d mudaram enquanto eram lidos: rode de novo quando o rodízio deles tiver terminado.",
            "The logs in $d changed while they were read: run again when their rotation has ended."
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
