<?php

declare(strict_types=1);

namespace Vorna\Mrel;

use Vorna\Mrel\Falha\NaoConsolidado;

/** One log written from several, from a moment on. */
final class EscritaDeLog
{
    /** @var resource */
    private $f;
    private bool $pula;
    private int $escritos = 0;
    /** What was read and not written yet: the end of a line may be missing from it. */
    private string $resto = '';
    private string $ultimo = "\n";

    /** @param ?string $desde "2026-03-12 00:00:00": lines before the first of this time or later are left out */
    public function __construct(private readonly string $arquivo, private readonly ?string $desde)
    {
        $this->f = @fopen($arquivo, 'wb') ?: throw NaoConsolidado::semEscrita(dirname($arquivo));
        $this->pula = $desde !== null;
    }

    public function acrescenta(LogBruto $log): void
    {
        $inicio = true;
        foreach ($log->blocos() as $bloco) {
            // A line that a rotation cut through goes on; one that was never ended does not.
            if ($inicio && $this->ultimo !== "\n" && Logs::quando($bloco) !== null) {
                $this->leva("\n");
            }
            $inicio = false;
            $this->leva($bloco);
        }
    }

    /** @return int bytes written */
    public function termina(): int
    {
        $this->pula && $this->procura($this->resto);
        fclose($this->f);
        return $this->escritos;
    }

    private function leva(string $bloco): void
    {
        $this->ultimo = $bloco === '' ? $this->ultimo : substr($bloco, -1);
        if (!$this->pula) {
            $this->escreve($bloco);
            return;
        }
        $bloco = $this->resto . $bloco;
        $corte = (int) strrpos("\n$bloco", "\n");
        $this->resto = substr($bloco, $corte);
        $this->procura(substr($bloco, 0, $corte));
        if (!$this->pula) {
            $this->escreve($this->resto);
            $this->resto = '';
        }
    }

    /** Writes lines from the first one that belongs here; nothing when none does. */
    private function procura(string $linhas): void
    {
        // Most blocks are of one earlier day throughout.
        $dia = substr($linhas, 0, 10);
        $quando = Logs::quando($linhas);
        if (
            $quando !== null && substr($quando, 0, 10) < substr($this->desde, 0, 10)
            && substr_count("\n$linhas", "\n$dia") === substr_count($linhas, "\n")
        ) {
            return;
        }
        for ($lugar = 0; $lugar < strlen($linhas); $lugar += strcspn($linhas, "\n", $lugar) + 1) {
            $quando = Logs::quando(substr($linhas, $lugar, 40));
            if ($quando !== null && $quando >= $this->desde) {
                $this->pula = false;
                $this->escreve(substr($linhas, $lugar));
                return;
            }
        }
    }

    private function escreve(string $texto): void
    {
        if ($texto !== '' && @fwrite($this->f, $texto) !== strlen($texto)) {
            throw NaoConsolidado::semEspaco(dirname($this->arquivo), strlen($texto), 0);
        }
        $this->escritos += strlen($texto);
    }
}
