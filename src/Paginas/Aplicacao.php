<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Configuracao;
use Vorna\Mrel\Falha;
use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Falha\NenhumDia;
use Vorna\Mrel\Falha\SemDiaCompleto;
use Vorna\Mrel\Formato\Csv;
use Vorna\Mrel\Relay;

/**
 * All pages: from a request to its answer. Nothing here or below writes anything but the audit line.
 */
final class Aplicacao
{
    /** By address, in the order of the menu. */
    public const PAGINAS = [
        '/' => Pagina\Resumo::class,
        '/dias' => Pagina\Dias::class,
        '/horas' => Pagina\Horas::class,
        '/usuario' => Pagina\Usuario::class,
        '/maiores' => Pagina\Maiores::class,
        '/mensagens' => Pagina\Mensagens::class,
        '/rastro' => Pagina\Rastro::class,
        '/estado' => Pagina\Estado::class,
        '/definicoes' => Pagina\Definicoes::class,
    ];
    public const LINGUAS = ['pt', 'en'];

    /**
     * @param Acesso $acesso whose mail may be seen
     * @param ?string $configuracao the file of the relays; null for the command's
     * @param ?\DateTimeImmutable $agora null for the present moment
     */
    public function __construct(
        private readonly Acesso $acesso,
        private readonly ?string $configuracao = null,
        private readonly Auditoria $auditoria = new Auditoria(),
        private readonly ?\DateTimeImmutable $agora = null,
    ) {
    }

    public function responde(Requisicao $requisicao): Resposta
    {
        $parametros = new Parametros($requisicao->parametros);
        $lingua = $parametros->escolha('lingua', self::LINGUAS) ?? 'pt';
        $classe = self::PAGINAS[$requisicao->caminho] ?? null;
        if ($classe === null) {
            return $this->aviso($requisicao, $lingua, 404, 'desconhecida');
        }
        if (!in_array($requisicao->metodo, ['GET', 'HEAD'], true)) {
            return $this->aviso($requisicao, $lingua, 405, 'metodo', ['Allow' => 'GET, HEAD']);
        }
        $pagina = new $classe();
        [$relays, $falha] = $this->relays();
        $nomes = array_map('strval', array_keys($relays));
        $nome = $relays ? $parametros->escolha('relay', $nomes) ?? $nomes[0] : '';
        $relay = $relays[$nome] ?? new Relay('', '', fuso: new \DateTimeZone('UTC'));
        $pedido = new Pedido(
            $pagina,
            $parametros,
            $relay,
            new Permissao($this->acesso, $relay),
            new Enderecos($requisicao->acima(), self::mantidos($parametros, $lingua, $nomes)),
            $lingua,
            $this->agora ?? new \DateTimeImmutable(),
        );
        $resposta = $this->daPagina($pagina, $pedido, $nomes, $falha);
        $dados = [];
        foreach (array_intersect(Parametros::TODOS, array_keys($requisicao->parametros)) as $parametro) {
            $dados[$parametro] = $parametros->dado($parametro);
        }
        $this->auditoria->anota($this->acesso->quem(), $requisicao->caminho, $relay->nome, $dados, $resposta->estado);
        return $resposta;
    }

    /** @return array{array<string, Relay>, ?Falha} those of the configuration, or why there are none */
    private function relays(): array
    {
        try {
            return [Configuracao::le($this->configuracao ?? Configuracao::arquivo())->relays, null];
        } catch (Falha $e) {
            return [[], $e];
        }
    }

    /** @param list<string> $relays */
    private function daPagina(Pagina $pagina, Pedido $pedido, array $relays, ?Falha $falha): Resposta
    {
        $molde = new Molde($pagina::NOME, $pedido, $relays);
        try {
            if ($falha !== null && !$pagina::SEM_DADOS) {
                throw $falha;
            }
            if ($pedido->permissao->nada() && $pagina::NOME !== Pagina\Definicoes::NOME) {
                throw SemAcesso::nenhum();
            }
            if (isset($pedido->parametros->erros()['relay'])) {
                // The figures of another relay would be taken for those asked for.
                return Resposta::html(422, $molde->semPagina('errado', $pedido->parametros->erros()['relay']));
            }
            $formato = $pedido->parametros->escolha('formato', ['csv', 'excel']);
            $tabela = $formato === null ? null : $pagina->tabela($pedido);
            if ($tabela !== null && $pedido->entendido()) {
                $periodo = $pedido->parametros->temPeriodo() || $pagina::NOME !== 'rastro' ? $pedido->periodo() : null;
                $arquivo = $tabela->nome . ($periodo === null ? '' : "-$periodo->primeiro-$periodo->ultimo");
                return Resposta::csv($arquivo, (new Csv(planilha: $formato === 'excel'))->pedacos($tabela));
            }
            $conteudo = $pagina->responde($pedido);
            $estado = $pedido->entendido() ? $conteudo->estado : 422;
            return Resposta::html($estado, $molde->pagina($conteudo->dados + ['falha' => $falha]));
        } catch (NenhumDia | SemDiaCompleto $e) {
            return Resposta::html(200, $molde->semPagina('vazio', $e));
        } catch (EntradaInvalida $e) {
            $pedido->parametros->recusa('', $e);
            return Resposta::html(422, $molde->semPagina('errado', $e));
        } catch (SemAcesso $e) {
            return Resposta::html(403, $molde->semPagina('acesso', $e));
        } catch (Falha $e) {
            return Resposta::html(503, $molde->semPagina('falha', $e), ['Retry-After' => '60']);
        }
    }

    /** An answer that no page gives. */
    private function aviso(Requisicao $r, string $lingua, int $estado, string $texto, array $cabecalhos = []): Resposta
    {
        $enderecos = new Enderecos($r->acima(), $lingua === 'pt' ? [] : ['lingua' => $lingua]);
        return Resposta::html($estado, Molde::aviso($enderecos, $lingua, $texto), $cabecalhos);
    }

    /**
     * What every link carries on: only what was chosen, and can be.
     *
     * @param list<string> $relays
     * @return array<string, string>
     */
    private static function mantidos(Parametros $parametros, string $lingua, array $relays): array
    {
        $mantidos = ['relay' => in_array($parametros->dado('relay'), $relays, true) ? $parametros->dado('relay') : ''];
        foreach (['de', 'ate'] as $nome) {
            $dado = $parametros->dado($nome);
            $mantidos[$nome] = preg_match('/^[a-z0-9-]{1,20}$/D', $dado) ? $dado : '';
        }
        $mantidos['lingua'] = $lingua === 'pt' ? '' : $lingua;
        return array_filter($mantidos, static fn (string $v): bool => $v !== '');
    }
}
