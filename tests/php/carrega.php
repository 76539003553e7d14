<?php

// What every test needs. The extension is loaded by whoever starts phpunit.

declare(strict_types=1);

require dirname(__DIR__, 2) . '/src/autoload.php';
require __DIR__ . '/Arvore.php';
require __DIR__ . '/Despachante.php';
require __DIR__ . '/Vtmrel.php';
require __DIR__ . '/saude/Mes.php';
