<?php

declare(strict_types=1);

namespace Vorna\Mrel\Formato;

use Vorna\Mrel\Linha\Rastro;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Tabelas;
use Vorna\Mrel\Visivel;

/** The history of one message as a person reads it: what is known of it, then each recipient. */
final readonly class Ficha
{
    private const CAMPOS = ['id', 'remetente', 'bytes', 'submetida', 'encerrada', 'estado'];
    private const DESTINATARIO = ['destinatario', 'quando', 'estado_destinatario'];

    private Rotulos $rotulos;
    private Quadro $quadro;

    public function __construct(string $lingua)
    {
        $this->rotulos = new Rotulos($lingua);
        $this->quadro = new Quadro($lingua);
    }

    /** @return list<string> */
    public function pedacos(Rastro $rastro): array
    {
        $tabela = Tabelas::rastro($rastro);
        $linhas = array_map(static fn (array $l): array => array_combine($tabela->colunas, $l), $tabela->linhas);
        $texto = Quadro::ficha($this->campos(self::CAMPOS, $linhas[0])) . $this->frases($rastro->texto, '');
        if ($rastro->destinatarios) {
            foreach ($linhas as $i => $linha) {
                $texto .= "\n" . Quadro::ficha($this->campos(self::DESTINATARIO, $linha))
                    . $this->frases($rastro->destinatarios[$i]->texto, '  ');
            }
        }
        return [$texto];
    }

    private function campos(array $colunas, array $linha): array
    {
        $campos = [];
        foreach ($colunas as $coluna) {
            $campos[$this->rotulos->coluna('rastro', $coluna)] = $this->quadro->celula($coluna, $linha[$coluna]);
        }
        return $campos;
    }

    /** The engine's text has a sentence a line. */
    private function frases(string $texto, string $recuo): string
    {
        $frases = array_filter(explode("\n", $texto), static fn (string $f): bool => trim($f) !== '');
        return implode('', array_map(
            static fn (string $f): string => $recuo . Visivel::texto(rtrim($f)) . "\n",
            $frases
        ));
    }
}
