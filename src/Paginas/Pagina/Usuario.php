<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas\Pagina;

use Vorna\Mrel\Grafias;
use Vorna\Mrel\Paginas\Conteudo;
use Vorna\Mrel\Paginas\Lacunas;
use Vorna\Mrel\Paginas\Pagina;
use Vorna\Mrel\Paginas\Pedido;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

/** Days and hours of one user. */
final class Usuario extends Pagina
{
    public const NOME = 'usuario';
    public const CAMPOS = ['usuario'];

    /** Of this request: its bytes are looked into once. */
    private ?Grafias $grafias = null;

    public function responde(Pedido $pedido): Conteudo
    {
        $tabela = $this->tabela($pedido);
        $usuario = $pedido->parametros->texto('usuario');
        if ($tabela === null) {
            return new Conteudo(['usuario' => null]);
        }
        $grafias = $this->grafias($pedido, $usuario);
        $enderecos = $pedido->enderecos;
        $dias = $pedido->html($tabela, [
            'dia' => static fn (array $l): string =>
                $enderecos->de('mensagens', ['usuario' => $usuario, 'de' => $l[1], 'ate' => $l[1]]),
        ], ['usuario']);
        return new Conteudo([
            'usuario' => $usuario,
            'grafias' => $grafias->nomes,
            'outra' => $dias->linhas && $this->visivel($pedido, $grafias->outra) ? $grafias->outra : null,
            'dias' => $dias,
            'horas' => $dias->linhas
                ? $pedido->html(Tabelas::horasDoUsuario($grafias->horas($pedido->periodo()))) : null,
            'faltam' => Lacunas::em($pedido->periodo(), $pedido->relatorios->dias($pedido->periodo())),
        ]);
    }

    public function tabela(Pedido $pedido): ?Tabela
    {
        $periodo = $pedido->periodo();
        $usuario = $pedido->parametros->nome('usuario');
        if ($periodo === null || $usuario === null || !$pedido->entendido()) {
            return null;
        }
        // One whom the administrator may not see is nobody, at the same cost.
        $linhas = $this->grafias($pedido, $usuario)->dias($periodo);
        return Tabelas::diasDeUsuario($pedido->permissao->ve($usuario) ? $linhas : []);
    }

    private function grafias(Pedido $pedido, string $usuario): Grafias
    {
        return $this->grafias ??= new Grafias($pedido->relay, $usuario);
    }

    private function visivel(Pedido $pedido, ?string $nome): bool
    {
        return $nome !== null && $pedido->permissao->ve($nome);
    }
}
