<?php

// What bin/vtmrel runs: loads the classes, then leaves all to them.

declare(strict_types=1);

error_reporting(E_ALL & ~E_DEPRECATED);
ini_set('display_errors', 'stderr');
require dirname(__DIR__) . '/src/autoload.php';
if (!stream_resolve_include_path('Symfony/Component/Console/autoload.php')) {
    fwrite(STDERR, "vtmrel: falta o symfony/console: instale o pacote php-symfony-console.\n");
    exit(3);
}
require 'Symfony/Component/Console/autoload.php';
exit(Vorna\Mrel\Comando\Aplicacao::executa($argv));
