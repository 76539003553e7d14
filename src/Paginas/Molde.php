<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Twig\Environment;
use Twig\Loader\FilesystemLoader;
use Twig\TwigFunction;
use Vorna\Mrel\Falha;
use Vorna\Mrel\Formato\Humano;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Visivel;

/** Puts what a page has found into its template. Templates escape every text; nothing here does. */
final class Molde
{
    private readonly Textos $textos;

    /**
     * @param string $pagina its name; "" for the first one
     * @param list<string> $relays their names
     */
    public function __construct(
        private readonly string $pagina,
        private readonly Pedido $pedido,
        private readonly array $relays,
    ) {
        $this->textos = new Textos($pedido->lingua);
    }

    /** @param array<string, mixed> $dados */
    public function pagina(array $dados): string
    {
        return $this->escreve(($this->pagina === '' ? 'resumo' : $this->pagina) . '.html.twig', $dados);
    }

    /** The page without what it is for, and the sentence that says why. */
    public function semPagina(string $tipo, Falha $porque): string
    {
        return $this->escreve('sem.html.twig', ['tipo' => $tipo, 'porque' => $porque]);
    }

    /** What is no page's. */
    public static function aviso(Enderecos $enderecos, string $lingua, string $texto): string
    {
        return self::twig($enderecos, $lingua)->render('aviso.html.twig', [
            'lingua' => $lingua, 'pagina' => null, 'texto' => $texto, 'relays' => [], 'trocas' => [],
        ]);
    }

    /** @param array<string, mixed> $dados */
    private function escreve(string $molde, array $dados): string
    {
        $p = $this->pedido;
        $parametros = $p->parametros;
        $periodo = isset($parametros->erros()['de']) || isset($parametros->erros()['ate']) ? null : $this->periodo();
        $dado = [];
        foreach (Parametros::TODOS as $nome) {
            $dado[$nome] = $parametros->dado($nome);
        }
        return self::twig($p->enderecos, $p->lingua)->render($molde, $dados + [
            'lingua' => $p->lingua,
            'pagina' => $this->pagina,
            'relay' => $p->relay->nome,
            'relays' => $this->relays,
            'so' => $p->permissao->dominios(),
            'periodo' => $periodo,
            'abertos' => $periodo === null || $this->pagina === Pagina\Rastro::NOME ? [] : $this->abertos(),
            'atalhos' => $p->atalhos(),
            // A control byte has no place in a page, not even in a field.
            'campos' => array_map(Visivel::texto(...), $dado),
            'erros' => array_map(static fn (Falha $e): string => $e->frase($p->lingua), $parametros->erros()),
            'esta' => array_filter(
                array_diff_key($dado, array_flip(['de', 'ate', 'relay', 'lingua', 'formato'])),
                static fn (string $v): bool => $v !== ''
            ),
        ]);
    }

    /** @return list<string> a sentence for each day that is not over */
    private function abertos(): array
    {
        $p = $this->pedido;
        [$rotulos, $humano] = [new Rotulos($p->lingua), new Humano($p->lingua)];
        $frases = [];
        foreach ($p->abertos() as $dia => $ate) {
            $frases[] = $rotulos->naoTerminou($humano->dia($dia), $ate);
        }
        return $frases;
    }

    private function periodo(): ?\Vorna\Mrel\Periodo
    {
        try {
            return $this->pedido->periodo();
        } catch (Falha) {
            return null;
        }
    }

    private static function twig(Enderecos $enderecos, string $lingua): Environment
    {
        require_once 'Twig/autoload.php';
        $textos = new Textos($lingua);
        $humano = new Humano($lingua);
        $rotulos = new Rotulos($lingua);
        $twig = new Environment(
            new FilesystemLoader(dirname(__DIR__, 2) . '/paginas/templates'),
            ['strict_variables' => true, 'autoescape' => 'html', 'cache' => false]
        );
        $twig->addGlobal('menu', array_map(static fn (string $c): string => $c::NOME, array_values(Aplicacao::PAGINAS)));
        $quando = static fn (?\DateTimeInterface $t): string =>
            $t === null ? '' : $humano->instante($t->format(DATE_ATOM));
        foreach (
            [
                't' => $textos->texto(...),
                'url' => $enderecos->de(...),
                'arquivo' => $enderecos->arquivo(...),
                'ocultos' => $enderecos->ocultos(...),
                'dia' => $humano->dia(...),
                'numero' => $humano->numero(...),
                'tamanho' => $humano->tamanho(...),
                'quando' => $quando,
                'rotulo' => $rotulos->coluna(...),
                'valor' => $rotulos->valor(...),
                'linhas' => Narrativa::linhas(...),
                'visivel' => Visivel::texto(...),
            ] as $nome => $faz
        ) {
            $twig->addFunction(new TwigFunction($nome, $faz));
        }
        return $twig;
    }
}
