<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Linha\Destinatario;
use Vorna\Mrel\Linha\Rastro;
use Vorna\Mrel\Relay;

/** What an Acesso means for names, messages and traces of one relay. */
final readonly class Permissao
{
    /** @var ?array<string, true> in small letters; null for all */
    private ?array $dominios;
    /** Whether names without a domain are seen: only if they are, whichever local domain they are of. */
    public bool $semDominio;

    public function __construct(Acesso $acesso, Relay $relay)
    {
        $dominios = $acesso->dominios($relay);
        $this->dominios = $dominios === null ? null : array_fill_keys(array_map('strtolower', $dominios), true);
        $locais = array_fill_keys(array_map('strtolower', $relay->dominios), true);
        $this->semDominio = $dominios === null || ($locais && !array_diff_key($locais, $this->dominios));
    }

    public function tudo(): bool
    {
        return $this->dominios === null;
    }

    public function nada(): bool
    {
        return $this->dominios === [];
    }

    /** @return list<string> those that may be seen, where they are not all */
    public function dominios(): array
    {
        return array_map('strval', array_keys($this->dominios ?? []));
    }

    /** Whether this sender's or recipient's mail may be seen. */
    public function ve(?string $nome): bool
    {
        if ($this->dominios === null) {
            return true;
        }
        if ($nome === null || $nome === '') {
            return false;  // nobody's
        }
        $arroba = strrpos($nome, '@');
        return $arroba === false
            ? $this->semDominio : isset($this->dominios[strtolower(substr($nome, $arroba + 1))]);
    }

    /**
     * A trace as far as it may be seen: all of it for the sender's side, else what happened to the recipients
     * of one's own; null when no end of it is one's own, as if it were not there.
     */
    public function rastro(?Rastro $rastro): ?Rastro
    {
        if ($rastro === null || $this->ve($rastro->remetente)) {
            return $rastro;
        }
        $seus = array_filter($rastro->destinatarios, fn (Destinatario $d): bool => $this->ve($d->nome));
        if (!$seus) {
            return null;
        }
        if (count($seus) === count($rastro->destinatarios)) {
            return $rastro;
        }
        return new Rastro(
            $rastro->id,
            $rastro->remetente,
            $rastro->bytes,
            $rastro->submetida,
            $rastro->encerrada,
            $rastro->estado,
            $rastro->virus,
            '',  // it may tell of the others
            array_values($seus),
            $rastro->desistiu,
        );
    }
}
