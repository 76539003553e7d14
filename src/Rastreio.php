<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Linha\Destinatario;
use Vorna\Mrel\Linha\Rastro;

/** Follows one message through the compact files, by the extension's trace. */
final readonly class Rastreio
{
    private const TAMANHO_DO_ID = 23;  // what a record keeps of an id
    private const DIAS_ANTES = 7;      // between a submission and the verdict of the antivirus
    private const A_FRENTE = [0, 1, 7, 31, PHP_INT_MAX];

    public function __construct(private Motor $motor, private \DateTimeZone $fuso)
    {
    }

    /** As far as the events of the period tell it. */
    public function no(Periodo $periodo, string $id): ?Rastro
    {
        $procurado = Texto::latin1($id);
        if ($procurado === null) {
            return null;  // a character that no log can hold
        }
        $itr = $this->motor->pergunta('msg_trace', $procurado, ...$periodo->eventos());
        $itr->fetch();
        // By the id alone "0" would always be found, and a long one never.
        $achada = $itr->msg_id === substr($procurado, 0, self::TAMANHO_DO_ID) && ($itr->msg_time || $itr->virus);
        return $achada ? $this->rastro($itr, $id) : null;
    }

    /**
     * The newest message of that id.
     *
     * @param list<string> $dias that have files, oldest first
     */
    public function emTodos(array $dias, string $id): ?Rastro
    {
        $soVirus = null;
        for ($i = count($dias) - 1; $i >= 0; --$i) {
            $rastro = $this->no(Periodo::dia($dias[$i], $this->fuso), $id);
            if ($rastro?->submetida) {
                return $this->ateOFim($rastro, array_slice($dias, $i), $id);
            }
            // The verdict of the antivirus may be of a later day than the submission.
            $soVirus ??= $rastro ? $i : null;
            if ($soVirus !== null && $i <= $soVirus - self::DIAS_ANTES) {
                break;
            }
        }
        return $soVirus === null ? null : $this->no(Periodo::de($dias[$soVirus], end($dias), $this->fuso), $id);
    }

    /** A message submitted on the first of these days, followed until its end. */
    private function ateOFim(Rastro $rastro, array $dias, string $id): Rastro
    {
        foreach (self::A_FRENTE as $n) {
            $ultimo = $dias[min($n, count($dias) - 1)];
            $rastro = $n === 0 ? $rastro : $this->no(Periodo::de($dias[0], $ultimo, $this->fuso), $id);
            if ($rastro->encerrada || $ultimo === end($dias)) {
                break;
            }
        }
        return $rastro;
    }

    private function rastro(\vt_mrel_itr $itr, string $id): Rastro
    {
        $submetida = $itr->msg_time !== 0;
        $virus = (bool) $itr->virus;
        $desistiu = (bool) $itr->fatal_error;
        $estado = match (true) {
            $virus => Estado::Virus,
            $itr->error || $itr->fatal_error => Estado::ComErro,
            $itr->msg_end_time === 0 => Estado::EmCurso,
            default => Estado::Entregue,
        };
        return new Rastro(
            $id,
            $submetida ? Texto::utf8($itr->msg_sendername) : null,
            $submetida ? $itr->msg_size : null,
            $this->quando($itr->msg_time),
            $this->quando($itr->msg_end_time),
            $estado,
            $virus,
            Texto::utf8($itr->str_error),
            $this->destinatarios($itr),  // after the state: they overwrite the message's "error"
            $desistiu,
        );
    }

    /** @return list<Destinatario> */
    private function destinatarios(\vt_mrel_itr $itr): array
    {
        $lista = [];
        while ($itr->fetch_recipient()) {
            $lista[] = new Destinatario(
                Texto::utf8($itr->recipient_name),
                $this->quando($itr->recipient_time),
                $itr->error ? Estado::Recusado : Estado::Entregue,
                Texto::utf8($itr->recipient_status_msg),
            );
        }
        return $lista;
    }

    private function quando(int $segundos): ?\DateTimeImmutable
    {
        return $segundos === 0 ? null : (new \DateTimeImmutable("@$segundos"))->setTimezone($this->fuso);
    }
}
