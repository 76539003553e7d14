<?php
// Lines of files, lines and nesting of functions: prints what passes the limits, in C++ and PHP.
//
//     php dev.d/sizes.php FILE ...
//
// 0 when nothing does. Lines that are blank, comments or rows of a table count for the file alone: what
// makes a function long is what must be followed. A function above which stands "In one piece, since", and the
// reason, may be longer. The levels are those of blocks within a body, lambdas and closures included.
declare(strict_types=1);

const LINHAS_DO_ARQUIVO = 400;  // what can be read at one sitting
const LINHAS_DA_FUNCAO = 60;    // a screen
const NIVEIS = 4;

// The same text with blanks in the place of comments and of what is quoted; line ends stay.
function despido(string $texto, bool $php): string
{
    $apaga = fn(string $t) => preg_replace('/[^\n]/', ' ', $t);
    if (!$php) {
        $citado = '~//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\\\.|[^"\\\\\n])*"|(?<!\w)\'(?:\\\\.|[^\'\\\\\n])+\'|^\#[^\n]*~ms';
        return preg_replace_callback($citado, fn($m) => $apaga($m[0]), $texto);
    }
    $de_texto = [T_COMMENT, T_DOC_COMMENT, T_CONSTANT_ENCAPSED_STRING, T_ENCAPSED_AND_WHITESPACE, T_INLINE_HTML,
        T_START_HEREDOC, T_END_HEREDOC];
    // The braces of "{$a}" belong to the text as well.
    $s = '';
    $dentro = 0;
    foreach (PhpToken::tokenize($texto) as $t) {
        $abre = $t->is([T_CURLY_OPEN, T_DOLLAR_OPEN_CURLY_BRACES]);
        $dentro += $abre ? 1 : 0;
        $fecha = $dentro > 0 && $t->text === '}';
        $dentro -= $fecha ? 1 : 0;
        $s .= $abre || $fecha || $t->is($de_texto) ? $apaga($t->text) : $t->text;
    }
    return $s;
}

// What a brace opens, told by the text since the last brace or semicolon.
function especie(string $antes, string $em_que): string
{
    $antes = trim($antes);
    if (preg_match('/(^|\W)(namespace|class|struct|union|enum|interface|trait|concept)\b[^()=]*$|^extern\s*$/', $antes)) {
        return 'pasta';
    }
    if ($antes === '' || preg_match('/(\)|\belse|\bdo|\btry|->\s*[\w:<>*& ]+|\b(const|noexcept|override|final|mutable))$/', $antes)
        || preg_match('/\)\s*:[^:].*$|\)\s*(use\s*\(.*\))?\s*:\s*\??[\w\\\\|]+$|:\s*$/s', $antes) || str_ends_with($antes, ']')) {
        return $em_que === 'tabela' && $antes === '' ? 'tabela' : 'bloco';
    }
    return 'tabela';
}

// The functions of a stripped text: [first line, lines, levels] each.
function funcoes(string $texto): array
{
    $linhas = explode("\n", $texto);
    $achadas = $pilha = [];
    $niveis = $fundo = $corpo = $inicio = $parenteses = 0;
    $antes = '';
    foreach ($linhas as $n => $linha) {
        $conta = $niveis > 0 && end($pilha) !== 'tabela' && trim($linha) !== '';
        foreach (preg_split('/([{};()])/', $linha, -1, PREG_SPLIT_DELIM_CAPTURE) as $p) {
            if ($p === '{') {
                $especie = especie($antes, (string) end($pilha));
                $pilha[] = $especie;
                if ($especie === 'bloco' && ++$niveis === 1) {
                    [$inicio, $corpo, $fundo] = [$n + 1, 0, 0];
                }
                $fundo = max($fundo, $niveis);
            } elseif ($p === '}' && array_pop($pilha) === 'bloco' && --$niveis === 0) {
                $achadas[] = [$inicio, $corpo, $fundo - 1];
            }
            // A semicolon within parentheses, as of a loop, ends nothing.
            $parenteses = max(0, $parenteses + (int) ($p === '(') - (int) ($p === ')'));
            $antes = $p === '{' || $p === '}' || ($p === ';' && $parenteses === 0) ? '' : $antes . $p;
            $parenteses = $p === '{' || $p === '}' ? 0 : $parenteses;
        }
        $antes .= ' ';
        $corpo += $conta ? 1 : 0;
    }
    return $achadas;
}

$bom = true;
$maiores = [0, 0, 0];
foreach (array_slice($argv, 1) as $arquivo) {
    $texto = file_get_contents($arquivo);
    $total = substr_count($texto, "\n");
    $maiores[0] = max($maiores[0], $total);
    if ($total > LINHAS_DO_ARQUIVO) {
        echo "$arquivo: $total lines, ", LINHAS_DO_ARQUIVO, " at most\n";
        $bom = false;
    }
    $fontes = explode("\n", $texto);
    foreach (funcoes(despido($texto, !preg_match('/\.(cpp|h)$/', $arquivo))) as [$linha, $linhas, $niveis]) {
        $maiores = [$maiores[0], max($maiores[1], $linhas), max($maiores[2], $niveis)];
        $acima = implode("\n", array_slice($fontes, max(0, $linha - 5), min(5, $linha)));
        if ($linhas > LINHAS_DA_FUNCAO && !str_contains($acima, 'In one piece, since ')) {
            echo "$arquivo:$linha: a function of $linhas lines, ", LINHAS_DA_FUNCAO, " at most\n";
            $bom = false;
        }
        if ($niveis > NIVEIS) {
            echo "$arquivo:$linha: $niveis levels of blocks, ", NIVEIS, " at most\n";
            $bom = false;
        }
    }
}
if ($maiores[1] === 0) {
    echo "no function was found\n";
    $bom = false;
}
vprintf("the longest file %d lines, the longest function %d, %d levels at most\n", $maiores);
exit($bom ? 0 : 1);
