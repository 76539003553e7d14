<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

/** What a browser asks for, as far as the pages look at it. */
final readonly class Requisicao
{
    /**
     * @param string $caminho below where the pages are mounted, "/dias"
     * @param array<mixed> $parametros as PHP reads a query: texts, or arrays of such
     */
    public function __construct(
        public string $metodo,
        public string $caminho,
        public array $parametros = [],
    ) {
    }

    public static function doServidor(): self
    {
        $caminho = explode('?', (string) ($_SERVER['REQUEST_URI'] ?? '/'), 2)[0];
        // Mounted below a folder, the front controller's own address tells which.
        $script = (string) ($_SERVER['SCRIPT_NAME'] ?? '');
        $base = str_ends_with($script, '/index.php') ? substr($script, 0, -strlen('/index.php')) : '';
        if ($base !== '' && str_starts_with($caminho, "$base/")) {
            $caminho = substr($caminho, strlen($base));
        }
        return new self((string) ($_SERVER['REQUEST_METHOD'] ?? 'GET'), $caminho === '' ? '/' : $caminho, $_GET);
    }

    /** From this page up to where the pages are mounted: "" or "../" and so on. */
    public function acima(): string
    {
        return str_repeat('../', max(0, substr_count($this->caminho, '/') - 1));
    }
}
