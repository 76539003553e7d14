<?php

// Loads the classes of Vorna\Mrel from this folder: a name space is a folder, a class a file.

declare(strict_types=1);

spl_autoload_register(static function (string $classe): void {
    $prefixo = 'Vorna\\Mrel\\';
    if (str_starts_with($classe, $prefixo)) {
        $arquivo = __DIR__ . '/' . strtr(substr($classe, strlen($prefixo)), '\\', '/') . '.php';
        if (is_file($arquivo)) {
            require $arquivo;
        }
    }
});
