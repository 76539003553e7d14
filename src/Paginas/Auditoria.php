<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Texto;
use Vorna\Mrel\Visivel;

/** One line a query in the system's log: who looked at what. */
final readonly class Auditoria
{
    private const MAIOR = 120;

    /** @param ?\Closure(string): void $escreve where lines go; null for syslog, as authpriv.info */
    public function __construct(private ?\Closure $escreve = null)
    {
    }

    /** @param array<string, string> $pedido what was asked for, by parameter */
    public function anota(string $quem, string $pagina, string $relay, array $pedido, int $estado): void
    {
        $linha = 'quem=' . self::valor($quem) . ' pagina=' . self::valor($pagina) . ' relay=' . self::valor($relay);
        foreach ($pedido as $nome => $valor) {
            $linha .= " $nome=" . self::valor($valor);
        }
        $linha .= " estado=$estado";
        if ($this->escreve !== null) {
            ($this->escreve)($linha);
            return;
        }
        openlog('vtmrel-paginas', LOG_PID, LOG_AUTHPRIV);
        syslog(LOG_INFO, $linha);
        closelog();
    }

    /** Between quotes, on one line, whatever is in it. */
    private static function valor(string $texto): string
    {
        $texto = preg_match('//u', $texto) ? $texto : Texto::utf8($texto);
        $texto = preg_replace('/^(.{' . self::MAIOR . '}).+$/us', '$1...', $texto);
        return '"' . addcslashes(Visivel::texto($texto), '"\\') . '"';
    }
}
