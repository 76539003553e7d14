<?php
// Consolidates a directory of logs, and nothing else: this process is what the bench measures.
//
//     php -n -d extension=PATH bench/consolida.php LOGS DATA LAST
declare(strict_types=1);

$m = new vt_mrel();
if (!$m->setLogDir($argv[1]) || !$m->setDataDir($argv[2])) {
    fwrite(STDERR, "consolida.php: a directory was refused\n");
    exit(1);
}
$m->consolidate($argv[3]);
