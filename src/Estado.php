<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/** How it went: with a message, with a traced message, with one of its recipients. */
enum Estado: string
{
    case SemErro = 'sem_erro';
    case ComErro = 'com_erro';
    case Virus = 'virus';
    case EmCurso = 'em_curso';
    case Entregue = 'entregue';
    case Recusado = 'recusado';
}
