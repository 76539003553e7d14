<?php

declare(strict_types=1);

namespace Vorna\Mrel\Correio;

use Vorna\Mrel\Formato\Humano;
use Vorna\Mrel\Formato\Quadro;
use Vorna\Mrel\Paginas\TabelaHtml;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Saude\Nivel;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Visivel;

/** The daily report in words, for people of one language: as text, and as HTML that stands by itself. */
final readonly class Redacao
{
    private const CORES = ['ok' => '#1a7f37', 'aviso' => '#9a6700', 'critico' => '#cf222e', 'desconhecido' => '#57606a'];

    private Rotulos $rotulos;
    private Humano $humano;

    public function __construct(private RelatorioDiario $r, private string $lingua)
    {
        $this->rotulos = new Rotulos($lingua);
        $this->humano = new Humano($lingua);
    }

    public function assunto(): string
    {
        $n = $this->r->mensagens;
        $mensagens = match (true) {
            $n === null => $this->em('sem arquivos do dia', 'no files of the day'),
            $n === 1 => $this->em('1 mensagem', '1 message'),
            default => $this->humano->numero($n) . $this->em(' mensagens', ' messages'),
        };
        return "[{$this->r->relay->nome}] {$this->humano->dia($this->r->dia)}: $mensagens, " . $this->saude();
    }

    public function texto(): string
    {
        $texto = $this->titulo() . "\n\n" . $this->em('Saúde: ', 'Health: ') . $this->saude() . "\n";
        foreach ($this->problemas() as $problema) {
            $texto .= wordwrap("- $problema", 76, "\n  ") . "\n";
        }
        foreach ($this->partes() as $titulo => $tabela) {
            $texto .= "\n$titulo\n\n" . implode('', iterator_to_array((new Quadro($this->lingua))->pedacos($tabela), false));
        }
        return $texto;
    }

    public function html(): string
    {
        $nivel = $this->r->saude->nivel();
        $html = '<!DOCTYPE html><html lang="' . $this->em('pt-BR', 'en') . '"><head><meta charset="utf-8"><title>'
            . self::h($this->assunto()) . "</title></head>\n"
            . '<body style="font:14px/1.4 sans-serif;color:#1f2328;background:#fff;margin:16px">' . "\n"
            . '<h1 style="font-size:20px">' . self::h($this->titulo()) . "</h1>\n"
            . '<p style="color:' . self::CORES[$nivel->value] . '"><strong>' . $this->em('Saúde: ', 'Health: ')
            . self::h($this->saude()) . "</strong></p>\n";
        if ($problemas = $this->problemas()) {
            $html .= '<ul><li>' . implode("</li>\n<li>", array_map(self::h(...), $problemas)) . "</li></ul>\n";
        }
        foreach ($this->partes() as $titulo => $tabela) {
            $html .= '<h2 style="font-size:16px">' . self::h($titulo) . "</h2>\n" . $this->tabela($tabela);
        }
        return "$html</body></html>\n";
    }

    private function titulo(): string
    {
        return $this->em('Correio de ', 'Mail of ') . Visivel::texto($this->r->relay->nome)
            . $this->em(' em ', ' on ') . $this->humano->dia($this->r->dia);
    }

    /** In a word, and of what when all is not well. */
    private function saude(): string
    {
        $nivel = $this->r->saude->nivel();
        if ($nivel === Nivel::Ok) {
            return $this->em('tudo bem', 'all is well');
        }
        $nomes = array_map(static fn ($v): string => $v->nome, $this->r->saude->problemas());
        return $this->rotulos->valor($nivel) . ' (' . implode(', ', $nomes) . ')';
    }

    /** @return list<string> */
    private function problemas(): array
    {
        return array_map(fn ($v): string => Visivel::texto("{$this->rotulos->valor($v->nivel)}, $v->nome: "
            . trim($v->texto($this->lingua) . ' ' . $v->conselho($this->lingua))), $this->r->saude->problemas());
    }

    /** @return array<string, Tabela> by title */
    private function partes(): array
    {
        $n = $this->r->comparados;
        $nomes = [
            'media' => $n === 1 ? $this->em('O dia antes', 'The day before') : $this->em("Média de $n dias", "Mean of $n days"),
            'diferenca' => $this->em('Diferença', 'Difference'),
        ];
        $linhas = array_map(static fn (array $l): array => [$nomes[$l[0]] ?? $l[0], ...array_slice($l, 1)], $this->r->comparacao->linhas);
        return [
            $this->em('O dia contra a semana antes dele', 'The day against the week before it') => new Tabela('dias', $linhas),
            $this->em('A semana, dia por dia', 'The week, day by day') => $this->r->semana,
            $this->em('Quem mais enviou, em mensagens', 'Who sent most, in messages') => $this->r->maiores,
        ];
    }

    private function tabela(Tabela $tabela): string
    {
        $t = new TabelaHtml($tabela, $this->lingua);
        $celula = static fn (string $tag, string $texto, bool $numero): string => "<$tag style=\"padding:3px 8px;"
            . 'border-bottom:1px solid #d0d7de;text-align:' . ($numero ? 'right' : 'left') . '">' . self::h($texto) . "</$tag>";
        $linha = static fn (string $tag, array $textos): string => '<tr>'
            . implode('', array_map($celula, array_fill(0, count($textos), $tag), $textos, array_column($t->colunas, 'numero'))) . "</tr>\n";
        $html = "<table style=\"border-collapse:collapse\">\n<thead>" . $linha('th', array_column($t->colunas, 'rotulo')) . "</thead>\n<tbody>";
        foreach ($t->linhas as $celulas) {
            $html .= $linha('td', array_column($celulas, 'texto'));
        }
        $html .= ($t->total ? $linha('th', $t->total) : '') . "</tbody></table>\n";
        return $t->incerto === '' ? $html : $html . '<p>* ' . self::h($t->incerto) . "</p>\n";
    }

    private static function h(string $texto): string
    {
        return htmlspecialchars($texto, ENT_QUOTES | ENT_SUBSTITUTE, 'UTF-8');
    }

    private function em(string $pt, string $en): string
    {
        return $this->lingua === 'en' ? $en : $pt;
    }
}
