<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** A row of a search while its message is being followed. */
final class Achada
{
    /** Unix seconds. */
    public ?int $submetida = null;
    /** ISO-8859-1; null while the submission is not known. */
    public ?string $remetente = null;
    public ?int $bytes = null;
    /** Submitted within the period by somebody asked for. */
    public bool $enviada = false;
    /** Its last acceptance, within the period, by somebody asked for. */
    public ?int $aceita = null;
    public bool $erro = false;
    public bool $virus = false;
    public bool $encerrada = false;

    public function __construct(public readonly string $id)
    {
    }

    /**
     * @param ?array{string, string, bool} $submissao time, what stands behind the id, whether a virus was
     *     found since
     */
    public function define(?array $submissao): void
    {
        $campos = explode(' ', $submissao[1] ?? '', 4);  // class, sender, size
        if (isset($campos[1])) {
            $this->submetida = (int) hexdec($submissao[0]);
            $this->remetente = $campos[1];
            $this->bytes = (int) ($campos[2] ?? 0) & 0xFFFFFFFF;
            $this->virus = $this->virus || $submissao[2];
        }
    }
}
