<?php

// What the fleet's tests need besides those of the library.

declare(strict_types=1);

require dirname(__DIR__) . '/php/carrega.php';
require __DIR__ . '/Cluster.php';
require __DIR__ . '/Caso.php';
require __DIR__ . '/Espelho.php';
