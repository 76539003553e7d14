<?php

// The data that the pages are tried on: relays of generated mail, one of hostile mail, and some that cannot be
// read; with a configuration that names them all. All logs are consolidated by the engine.
//
//     php -d extension=... tests/paginas/dados.php GERA_LOGS DIR

declare(strict_types=1);

[, $gera, $dir] = $argv;
putenv('TZ=UTC');

function consolida(string $dir): void
{
    is_dir("$dir/dat") || mkdir("$dir/dat", 0755, true);
    $m = new vt_mrel();
    $m->setLogDir("$dir/logs") && $m->setDataDir("$dir/dat") && $m->consolidate("$dir/ponto");
    is_file("$dir/ponto") || exit("$dir was not consolidated\n");
}

/** Every byte but line ends and blanks, in senders, recipients, ids and texts, among what a browser acts on. */
function hostil(): string
{
    $linhas = '';
    $segundo = 0;
    $diz = static function (string $evento) use (&$linhas, &$segundo): void {
        $linhas .= 'Tue Mar 10 ' . gmdate('H:i:s', 30000 + ++$segundo) . " 2026: 09 $evento\n";
    };
    for ($b = 1; $b < 256; ++$b) {
        if (in_array($b, [9, 10, 11, 12, 13, 32], true)) {
            continue;
        }
        $c = chr($b);
        $id = sprintf('H%sD%013d', $c, $b);  // the engine finds a text behind an id of 16
        $diz("MAILQ SUBMIT Msg $id de INTERNO remetente a{$c}$b\"'<script>alert(1)</script>@x.example com 100 bytes");
        $diz("MAILSMTP ERROR_DEST Msg $id destinatario b{$c}$b<img/src=x/onerror=alert(1)>@y.example recusado 550");
        $diz("MAILSMTP ERROR_FINAL Msg $id 550 nao{$c}ha </pre><script>alert(1)</script> \"'&amp;");
        $diz("MAILSMTP END Msg $id");
    }
    $diz('MAILQ SUBMIT Msg =1+1 de INTERNO remetente =cmd|calc@x.example com 100 bytes');
    $diz('MAILQ SUBMIT Msg VINTE de INTERNO remetente lista@x.example com 5000 bytes');
    for ($i = 1; $i <= 20; ++$i) {
        $diz("MAILQ OK Msg VINTE para d$i@y.example");
    }
    $diz('MAILQ END Msg VINTE');
    $diz('MAILQ SUBMIT Msg CAMINHO de INTERNO remetente lista@x.example com 700 bytes');
    $diz('MAILSMTP ERROR_CONNECT Msg CAMINHO conectando em y.example porta 25');
    return $linhas;
}

// As the demo; a month with a day that is missing; a day that is there in part.
foreach (['demo' => '2026-03-10 --dias 3 --mensagens 20000 --usuarios 400', 'mes' => '2026-03-01 --dias 31 --mensagens 500
    --usuarios 60', 'torto' => '2026-03-10 --dias 2 --mensagens 100 --usuarios 9'] as $nome => $opcoes) {
    exec(escapeshellarg($gera) . ' ' . escapeshellarg("$dir/$nome/logs") . ' ' . strtr($opcoes, "\n", ' '), $_, $erro);
    $erro === 0 || exit("gera_logs failed\n");
    consolida("$dir/$nome");
}
array_map('unlink', glob("$dir/mes/dat/rels_03-26/*_15.txt"));
unlink("$dir/torto/dat/rels_03-26/compact_mail_10.txt");
unlink("$dir/torto/dat/rels_03-26/mail_stat_11.txt");
mkdir("$dir/hostil/logs", 0755, true);
file_put_contents("$dir/hostil/logs/MAIL_DISPATCHER.LOG", hostil() . "Wed Mar 11 00:00:01 2026: 09 MAILQ END Msg NADA\n");
consolida("$dir/hostil");
mkdir("$dir/vazio/dat", 0755, true);
$ini = '';
foreach (['demo', 'mes', 'hostil', 'torto', 'vazio', 'sem'] as $nome) {
    $ini .= "[$nome]\ndados = $dir/$nome/dat\nlogs = $dir/$nome/logs\nponto = $dir/$nome/ponto\nfuso = UTC\n"
        . "dominios = metalurgica.example; x.example\n";
}
file_put_contents("$dir/vt-mrel.ini", $ini);
