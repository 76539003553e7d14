<?php

// The front controller: every address that is no file comes here. VT_MREL_ACESSO names a PHP file that
// answers with an Acesso; without it whoever gets here sees all domains.

declare(strict_types=1);

use Vorna\Mrel\Paginas\Acesso;
use Vorna\Mrel\Paginas\AcessoLista;
use Vorna\Mrel\Paginas\Aplicacao;
use Vorna\Mrel\Paginas\Requisicao;

// The engine's own server asks for files here too.
$pedido = rawurldecode(explode('?', $_SERVER['REQUEST_URI'] ?? '/', 2)[0]);
if (PHP_SAPI === 'cli-server' && $pedido !== '/index.php' && is_file(__DIR__ . $pedido)) {
    return false;
}
error_reporting(E_ALL & ~E_DEPRECATED);
ini_set('display_errors', '0');
require dirname(__DIR__, 2) . '/src/autoload.php';
if (!stream_resolve_include_path('Twig/autoload.php')) {
    http_response_code(503);
    header('Content-Type: text/plain; charset=utf-8');
    exit("Falta o Twig: instale o pacote php-twig.\nTwig is missing: install the package php-twig.\n");
}
$arquivo = (string) getenv('VT_MREL_ACESSO');
$acesso = $arquivo === '' ? AcessoLista::doServidor() : require $arquivo;
$acesso instanceof Acesso || throw new LogicException("$arquivo does not answer with an Acesso");
$requisicao = Requisicao::doServidor();
(new Aplicacao($acesso))->responde($requisicao)->envia($requisicao->metodo !== 'HEAD');
