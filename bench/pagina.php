<?php
// One page, as a worker answers it: prints the answer.
//
//     php -d extension=... bench/pagina.php CONFIGURATION ADDRESS
declare(strict_types=1);

require __DIR__ . '/../src/autoload.php';

use Vorna\Mrel\Paginas\{AcessoLista, Aplicacao, Auditoria, Requisicao};

[, $configuracao, $endereco] = $argv;
parse_str((string) parse_url($endereco, PHP_URL_QUERY), $parametros);
$aplicacao = new Aplicacao(new AcessoLista('bench'), $configuracao, new Auditoria(static function (): void {
}));
$resposta = $aplicacao->responde(new Requisicao('GET', (string) parse_url($endereco, PHP_URL_PATH), $parametros));
foreach ($resposta->corpo as $pedaco) {
    echo $pedaco;
}
exit($resposta->estado === 200 ? 0 : 1);
