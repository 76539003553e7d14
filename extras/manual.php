<?php

// Prints the man page of vtmrel, from the definitions that the command itself goes by.
//
//     php extras/manual.php >extras/vtmrel.1

declare(strict_types=1);

require __DIR__ . '/../src/autoload.php';
require 'Symfony/Component/Console/autoload.php';

use Vorna\Mrel\Comando\{Aplicacao, Comando, Opcoes};
use Vorna\Mrel\Rotulos;

function roff(string $texto): string
{
    return preg_replace('/^([.\'])/m', '\\\\&$1', strtr($texto, ['\\' => '\\e', '-' => '\\-']));
}

function secao(string $titulo): void
{
    echo '.SH "', roff($titulo), "\"\n";
}

// A paragraph under a name.
function item(string $nome, string ...$frases): void
{
    echo ".TP\n$nome\n", implode("\n.br\n", array_map('roff', $frases)), "\n";
}

function opcao(string $nome): void
{
    [$ingles, $valor, $texto, $text] = Opcoes::descricao($nome);
    $nomes = array_unique([Opcoes::nome($nome), $ingles]);
    $valor = $valor === '' ? '' : ' \fI' . roff($valor) . '\fR';
    item(implode(', ', array_map(static fn (string $n): string => '\fB\-\-' . roff($n) . "\\fR$valor", $nomes)), $texto, $text);
}

// The columns of a table with what they mean.
function colunas(string $tabela): void
{
    [$pt, $en] = [new Rotulos('pt'), new Rotulos('en')];
    foreach (Rotulos::colunas($tabela) as $coluna) {
        item('\fI' . roff($coluna) . '\fR', $pt->definicao($tabela, $coluna), $en->definicao($tabela, $coluna));
    }
}

$comandos = array_filter(
    (new Aplicacao())->all(),
    static fn ($c, string $nome): bool => $c instanceof Comando && !$c->isHidden() && $c->getName() === $nome,
    ARRAY_FILTER_USE_BOTH
);

echo ".\\\" Made by ./dev man. -*- coding: utf-8 -*-\n.TH VTMREL 1 \"\" \"vtmrel\" \"Relatórios de correio / Mail reports\"\n";
secao('NAME');
echo "vtmrel \\- relatórios de correio de um relay / mail reports of a relay\n";
secao('SYNOPSIS');
foreach ($comandos as $nome => $comando) {
    $argumentos = array_map('strtoupper', array_keys($comando->getDefinition()->getArguments()));
    $palavras = [...array_map(static fn ($a): string => "\\fI$a\\fR", $argumentos), "[\\fIopções / options\\fR]"];
    echo ".br\n\\fBvtmrel $nome\\fR ", implode(' ', $palavras), "\n";
}
secao('DESCRIPTION');
echo roff(
    "Responde perguntas sobre o correio que um relay levou, a partir dos arquivos de dia que a consolidação escreve.\n"
    . "Num terminal escreve tabelas, para um programa csv.\n"
), ".PP\n", roff(
    "Answers questions about the mail that a relay carried, from the day files that the consolidation writes.\n"
    . "On a terminal it writes tables, for a program csv.\n"
);
secao('COMMANDS');
foreach ($comandos as $nome => $comando) {
    echo '.SS "', $nome, ' (', implode(', ', $comando->getAliases()), ")\"\n", roff($comando->getDescription()), ".\n";
    array_map('opcao', $comando::OPCOES);
    foreach ($comando::TABELAS as $tabela => $quando) {
        echo ".PP\n", $quando === '' ? 'Colunas / Columns' : roff($quando), ":\n.RS\n";
        colunas($tabela);
        echo ".RE\n";
    }
}
secao('OPTIONS');
array_map('opcao', Opcoes::COMUNS);
secao('EXIT STATUS');
item('0', 'feito; também uma lista vazia', 'done; an empty list included');
item(
    '1',
    'rastro não encontrado, nenhum dia consolidado, trabalho que falhou, saída que não pôde ser escrita',
    'trace not found, no day consolidated, work that failed, output that could not be written'
);
item(
    '3',
    'uso ou configuração errados, dados ou módulo ausentes ou ilegíveis',
    'wrong use or configuration, data or module missing or unreadable'
);
item(
    'verifica, exame',
    '0 ok, 1 aviso, 2 crítico, 3 desconhecido ou uso errado',
    '0 ok, 1 warning, 2 critical, 3 unknown or wrong usage'
);
secao('ENVIRONMENT');
item('VT_MREL_CONFIG', 'a configuração, sem --config', 'the configuration, without --config');
item('TZ', 'o fuso dos dias, sem --fuso e sem configuração', 'the zone of the days, without --fuso and configuration');
item('LC_ALL, LC_MESSAGES, LANG', 'a língua, sem --lingua', 'the language, without --lingua');
secao('FILES');
item(
    '/etc/vt\-mrel.ini',
    'Uma seção [nome] para cada relay, com dados, logs, ponto, dominios, fuso e saude (o último resultado de verifica).',
    'A section [name] for each relay, with dados, logs, ponto, dominios, fuso and saude (the last result of verifica).'
);
secao('EXAMPLES');
foreach ($comandos as $comando) {
    foreach ($comando->exemplos() as $exemplo) {
        echo ".PP\n.nf\n", roff($exemplo), "\n.fi\n";
    }
}
