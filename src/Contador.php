<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** What the largest are told by: a counter of the statistics files. */
enum Contador: string
{
    case Enviadas = 'enviadas';
    case Recebidas = 'recebidas';
    case BytesEnviados = 'bytes_enviados';
    case BytesRecebidos = 'bytes_recebidos';
    case Spam = 'spam';
    case Virus = 'virus';
    case Erros = 'erros';

    public function deBytes(): bool
    {
        return $this === self::BytesEnviados || $this === self::BytesRecebidos;
    }
}
