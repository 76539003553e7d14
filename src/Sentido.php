<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** Which way a message went, seen from those who were asked for. */
enum Sentido: string
{
    case Enviada = 'enviada';
    case Recebida = 'recebida';
    /** To oneself. */
    case Ambos = 'ambos';
}
