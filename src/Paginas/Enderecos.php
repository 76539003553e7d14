<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

/**
 * The one place where addresses of pages are made. They are relative, so that the pages can be mounted
 * anywhere, and keep what somebody has chosen: period, relay, language.
 */
final readonly class Enderecos
{
    /**
     * @param string $acima from the present page up to where the pages are mounted: "", "../" ...
     * @param array<string, string> $mantidos parameters that every link carries on
     */
    public function __construct(private string $acima, private array $mantidos)
    {
    }

    /**
     * @param string $pagina its name, "" for the first one
     * @param array<string, string|int|null> $parametros besides those that are kept; null drops one of these
     */
    public function de(string $pagina, array $parametros = []): string
    {
        $todos = array_filter($parametros + $this->mantidos, static fn (mixed $v): bool => $v !== null && $v !== '');
        $consulta = http_build_query($todos, '', '&', PHP_QUERY_RFC3986);
        $caminho = $this->acima . $pagina;
        return ($caminho === '' ? './' : $caminho) . ($consulta === '' ? '' : "?$consulta");
    }

    /** A file that is delivered with the pages; its address changes with its content. */
    public function arquivo(string $nome): string
    {
        $caminho = dirname(__DIR__, 2) . "/paginas/public/$nome";
        $marca = str_contains($nome, '/') ? '' : '?v=' . substr((string) @md5_file($caminho), 0, 8);
        return $this->acima . $nome . $marca;
    }

    /**
     * What a form sends along besides its fields.
     *
     * @param list<string> $campos the form's own fields
     * @return array<string, string>
     */
    public function ocultos(array $campos): array
    {
        return array_diff_key($this->mantidos, array_flip($campos));
    }
}
