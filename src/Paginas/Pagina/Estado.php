<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Dias;
use Vorna\Mrel\Formato\Humano;
use Vorna\Mrel\Paginas\Conteudo;
use Vorna\Mrel\Paginas\Farol;
use Vorna\Mrel\Paginas\Pagina;
use Vorna\Mrel\Paginas\Pedido;
use Vorna\Mrel\Paginas\Situacao;
use Vorna\Mrel\Periodo;

/** What is consolidated, what is missing, since when. */
final class Estado extends Pagina
{
    public const NOME = 'estado';
    public const SEM_DADOS = true;

    public function responde(Pedido $pedido): Conteudo
    {
        $humano = new Humano($pedido->lingua);
        $situacao = new Situacao($pedido->relay, $pedido->agora);
        return new Conteudo([
            'situacao' => $situacao,
            'farol' => new Farol($situacao, $humano->dia(...), null, $pedido->lingua),
            'dias' => $situacao->falha === null ? self::dias($situacao, $pedido, $humano) : [],
        ]);
    }

    /** The last days, newest first: what there is of each. */
    private static function dias(Situacao $s, Pedido $pedido, Humano $humano): array
    {
        if (!$s->dias) {
            return [];
        }
        $arquivos = new Dias($pedido->relay->dados);
        $ultimo = max($s->ultimo ?? '', $s->dias[count($s->dias) - 1]);
        $janela = Periodo::ultimos(Situacao::JANELA, $ultimo, $pedido->relay->fuso);
        $primeiro = max($s->dias[0], $janela->primeiro);
        $linhas = [];
        foreach (Periodo::de($primeiro, $ultimo, $pedido->relay->fuso)->cadaDia() as $um) {
            $tamanhos = array_map(
                static fn (string $tipo): int|false => @filesize($arquivos->caminho($tipo, $um->primeiro)),
                [Dias::ESTATISTICA, Dias::COMPACTO]
            );
            $linhas[] = [
                'dia' => $um->primeiro,
                'estado' => match (true) {
                    $tamanhos === [false, false] => 'falta',
                    in_array(false, $tamanhos, true) => 'partido',
                    $s->ultimo !== null && $um->primeiro > $s->ultimo => 'incompleto',
                    default => 'completo',
                },
                'tamanho' => $tamanhos === [false, false] ? '' : $humano->tamanho(array_sum($tamanhos)),
                'bytes' => (int) array_sum($tamanhos),
            ];
        }
        return array_reverse($linhas);
    }
}
