<?php

declare(strict_types=1);

namespace Vorna\Mrel\Linha;

/** A line of a compact file. */
final readonly class Evento
{
    public function __construct(
        /** "2026-03-10" */
        public string $dia,
        /** The line's number within the day, from 1. */
        public int $n,
        /** Unix seconds; 0 when the log's stamp was unreadable. */
        public int $segundos,
        /** One word: submetida, tentativa, aceita, encerrada, erro_conexao ... */
        public string $tipo,
        /** The message's id; "" where the line names none. */
        public string $mensagem,
        /** The address or host that the line names. */
        public string $nome,
        /** The log's own word for the kind of user, of submissions. */
        public string $classe,
        /** Of submissions; null else. */
        public ?int $bytes,
        /** The rest of the line. */
        public string $texto,
    ) {
    }
}
