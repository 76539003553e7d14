<?php
// The table of docs/coverage.md, from what llvm-cov exported; called by ./dev coverage with clang's version.

require "bench/medida.php";
require "bench/nota.php";
require "demo/tabela.php";
$data = json_decode(file_get_contents("out/coverage.json"), true)["data"][0];
$files = $data["files"];
usort($files, fn($a, $b) => $a["filename"] <=> $b["filename"]);
$files[] = ["filename" => "all", "summary" => $data["totals"]];
$rows = [];
foreach ($files as ["filename" => $file, "summary" => $s]) {
    $row = [preg_replace("~.*/(?=[a-z]+/[^/]+$)~", "", $file)];
    foreach (["lines", "branches"] as $what) {
        ["covered" => $n, "count" => $of] = $s[$what];
        array_push($row, number_format($n), number_format($of), $of ? sprintf("%.1f %%", 100 * $n / $of) : "");
    }
    $rows[] = $row;
}
$titles = ["File", "Lines", "of", "", "Branches", "of", ""];
echo tabela("<>>>>>>", $titles, $rows);
anota("docs/coverage.md", "table", "Measured on " . gmdate("Y-m-d") . " with clang $argv[1].\n\n"
    . tabela_markdown($titles, $rows));
