<?php

// The command end to end: formats that agree, words and options, what never reaches a terminal.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Relatorios;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Texto;

final class ComandoTest extends TestCase
{
    private array $dados;
    private string $usuario;

    protected function setUp(): void
    {
        $raiz = getenv('VT_DADOS');
        $this->dados = ["--dados=$raiz/dat", "--ponto=$raiz/ponto", '--fuso=Atlantic/Azores'];
        $maior = Vtmrel::roda(['topo', '--de=2026-03-26', '--ate=2026-03-28', '--n=1', ...$this->dados]);
        $this->usuario = Vtmrel::csv($maior->saida)[1][1];
    }

    private function pergunta(string ...$argumentos): Vtmrel
    {
        $r = Vtmrel::roda([...$argumentos, ...$this->dados]);
        self::assertSame([0, ''], [$r->codigo, $r->erros], implode(' ', $argumentos));
        return $r;
    }

    /** @return array<string, list<string>> arguments by table, on three days */
    private function perguntas(): array
    {
        $dias = ['--de=2026-03-26', '--ate=2026-03-28'];
        $outro = Vtmrel::csv($this->pergunta('topo', '--n=2', ...$dias)->saida)[2][1];
        return [
            'dias' => ['dias', ...$dias],
            'dias_usuario' => ['dias', "--usuario=$this->usuario", "--usuario=$outro", ...$dias],
            'horas' => ['horas', ...$dias],
            'horas_usuario' => ['horas', "--usuario=$this->usuario", ...$dias],
            'topo' => ['topo', '--por=bytes_recebidos', ...$dias],
            'topo_dominios' => ['topo', '--dominios', ...$dias],
            'mensagens' => ['mensagens', "--usuario=$this->usuario", ...$dias],
            'totais' => ['exporta', 'totais', ...$dias],
            'usuarios' => ['exporta', 'usuarios', ...$dias],
            'eventos' => ['exporta', 'eventos', ...$dias],
        ];
    }

    /** Every format has the same rows under the names of the columns, in either language. */
    public function testFormatosConcordam(): void
    {
        foreach ($this->perguntas() as $tabela => $argumentos) {
            $csv = Vtmrel::csv($this->pergunta(...[...$argumentos, '--lingua=en'])->saida);
            self::assertSame(Rotulos::colunas($tabela), array_shift($csv));
            self::assertNotEmpty($csv, $tabela);
            $json = json_decode($this->pergunta(...[...$argumentos, '--formato=json'])->saida, true, 9, JSON_THROW_ON_ERROR);
            $linhas = explode("\n", rtrim($this->pergunta(...[...$argumentos, '--formato=ndjson'])->saida));
            self::assertSame($json, array_map(static fn (string $l): array => json_decode($l, true), $linhas), $tabela);
            self::assertSame(Rotulos::colunas($tabela), array_keys($json[0]));
            self::assertSame($csv, array_map(static fn (array $l): array => array_map('strval', array_values($l)), $json));
            $excel = $this->pergunta(...[...$argumentos, '--excel'])->saida;
            self::assertStringStartsWith("\u{FEFF}", $excel);
            $planilha = array_slice(Vtmrel::csv(substr($excel, 3), ';', "\r\n"), 1);
            $sem = static fn (string $c): string => preg_replace("/^'(?=[=+@-])/", '', $c);
            self::assertSame($csv, array_map(static fn (array $l): array => array_map($sem, $l), $planilha), $tabela);
            // For people: a row each, the head, a line; where there is a sum a line and the sum.
            $soma = in_array($tabela, ['dias', 'dias_usuario', 'horas', 'horas_usuario'], true) ? 2 : 0;
            $quadro = explode("\n", rtrim($this->pergunta(...[...$argumentos, '--formato=tabela'])->saida));
            self::assertCount(count($csv) + 2 + $soma, $quadro, $tabela);
        }
    }

    /** The figures are the library's, column by column. */
    public function testValores(): void
    {
        $relay = new Relay(getenv('VT_DADOS') . '/dat', fuso: new \DateTimeZone('Atlantic/Azores'));
        $soma = array_fill(0, 7, 0);
        $esperado = [];
        foreach ((new Relatorios($relay))->totais(Periodo::de('2026-03-26', '2026-03-28', $relay->fuso)) as $t) {
            $contas = [$t->internas, $t->bytesInternas, $t->externas, $t->bytesExternas, $t->spam, $t->virus, $t->comErro];
            $esperado[] = [$t->dia, ...array_map('strval', $contas)];
            $soma = array_map(static fn (int $a, int $b): int => $a + $b, $soma, $contas);
        }
        $argumentos = $this->perguntas()['dias'];
        self::assertSame($esperado, array_slice(Vtmrel::csv($this->pergunta(...$argumentos)->saida), 1));
        $quadro = explode("\n", rtrim($this->pergunta(...[...$argumentos, '--formato=tabela', '--lingua=en'])->saida));
        $total = preg_split('/ {2,}/', end($quadro));
        self::assertSame(['Total', number_format($soma[0])], array_slice($total, 0, 2));
        self::assertSame(number_format($soma[6]), end($total));
        // Of a message, every format tells the same story.
        $mensagens = Vtmrel::csv($this->pergunta('mensagens', "--usuario=$this->usuario", '--de=2026-03-27')->saida);
        $id = $mensagens[1][0];
        $arvore = json_decode($this->pergunta('rastro', $id, '--formato=json')->saida, true);
        $linhas = Vtmrel::csv($this->pergunta('trace', $id, '--from=2026-03-26', '--to=2026-03-29')->saida);
        $campos = array_combine($linhas[0], $linhas[1]);
        self::assertSame([$id, is_bool($arvore['virus'])], [$arvore['id'], true]);
        foreach (['id', 'remetente', 'submetida', 'encerrada', 'estado'] as $campo) {
            self::assertSame((string) $arvore[$campo], $campos[$campo]);
        }
        self::assertCount(max(1, count($arvore['destinatarios'])), array_slice($linhas, 1));
        self::assertStringContainsString($id, $this->pergunta('rastro', $id, '--formato=tabela')->saida);
    }

    public function testNomesInglesesEPeriodos(): void
    {
        $pares = [
            [['dias', '--de=2026-03-27', '--formato=tabela'], ['days', '--from=2026-03-27', '--format=table']],
            [['topo', '--por=recebidas', '--ate=2026-03-27'], ['top', '--by', 'received', '--to', '2026-03-27']],
            [['exporta', 'usuarios', '--de=2026-03-27'], ['export', 'users', '--from=2026-03-27']],
            [['mensagens', '--todas', '--limite=5'], ['messages', '--all', '--limit=5']],
            // The last complete day is that before the point; one end alone stands for both.
            [['dias'], ['dias', '--ate=2026-03-29']],
            [['horas', '--de=ultimos-2'], ['horas', '--de=2026-03-28', '--ate=2026-03-29']],
        ];
        foreach ($pares as [$um, $outro]) {
            self::assertSame($this->pergunta(...$um)->saida, $this->pergunta(...$outro)->saida);
        }
        self::assertCount(6, Vtmrel::csv($this->pergunta('mensagens', '--todas', '--limite=5')->saida));
        // Nothing complete yet is an empty answer, and said.
        $cedo = Vtmrel::roda(['dias', '--de=este-mes', ...$this->dados]);
        self::assertSame([0, implode(',', Rotulos::colunas('dias')) . "\n"], [$cedo->codigo, $cedo->saida]);
        self::assertMatchesRegularExpression('/^vtmrel: .*nenhum dia completo.*\n$/', $cedo->erros);
    }

    public function testConfiguracao(): void
    {
        $arquivo = tempnam(sys_get_temp_dir(), 'vt_ini');
        $raiz = getenv('VT_DADOS');
        $secao = "dados = $raiz/dat\nponto = $raiz/ponto\nfuso = Atlantic/Azores\n";
        $nome = static fn (Vtmrel $r): string => Vtmrel::csv($r->saida)[1][0] ?? $r->erros;
        file_put_contents($arquivo, "[matriz]\n$secao");
        self::assertSame('matriz', $nome(Vtmrel::roda(['exporta', 'totais', "--config=$arquivo"])));
        self::assertSame('matriz', $nome(Vtmrel::roda(['exporta', 'totais'], ['VT_MREL_CONFIG' => $arquivo])));
        self::assertSame('local', $nome(Vtmrel::roda(['exporta', 'totais', ...$this->dados], ['VT_MREL_CONFIG' => $arquivo])));
        // Options go before a configuration that is named beside them.
        file_put_contents($arquivo, "[matriz]\ndados = /nao/existe\n");
        self::assertSame('matriz', $nome(Vtmrel::roda(['exporta', 'totais', "--config=$arquivo", ...$this->dados])));
        self::assertSame('x', $nome(Vtmrel::roda(['exporta', 'totais', '--relay=x', ...$this->dados])));
        file_put_contents($arquivo, "[matriz]\n{$secao}[filial]\n$secao");
        self::assertSame('filial', $nome(Vtmrel::roda(['exporta', 'totais', '--relay=filial', "--config=$arquivo"])));
        $qual = Vtmrel::roda(['exporta', 'totais', "--config=$arquivo"]);
        self::assertSame([3, ''], [$qual->codigo, $qual->saida]);
        self::assertStringContainsString('matriz, filial', $qual->erros);
        $nomes = Vtmrel::roda(
            ['_complete', '-sbash', '-c3', '-S1', '-ivtmrel', '-idias', '-i--relay'],
            ['VT_MREL_CONFIG' => $arquivo]
        );
        self::assertSame("matriz\nfilial", trim($nomes->saida));
        unlink($arquivo);
    }

    /** Bytes 0x01 to 0xFF in names, ids and texts: csv brings them all, a terminal none that it would obey. */
    public function testTodosOsBytes(): void
    {
        $arvore = new Arvore('UTC');
        $eventos = $esperado = $ids = [];
        for ($b = 1; $b < 256; ++$b) {
            if (in_array($b, [0x0A, 0x0D, 0x20], true)) {
                continue;  // they part words and lines
            }
            $x = chr($b);
            $ids[] = "M{$x}$b";
            array_push(
                $eventos,
                "08:00 1 1 M{$x}$b INTERNO ana{$x}@x.example 100",
                "08:01 1 2 M{$x}$b bia{$x}@x.example",
                "08:02 1 10 M{$x}$b 550 nao{$x}ha, \"nunca\""
            );
            $u = Texto::utf8($x);
            array_push(
                $esperado,
                ["M$u$b", "ana$u@x.example", ''],
                ["M$u$b", "bia$u@x.example", ''],
                ["M$u$b", '', "550 nao{$u}ha, \"nunca\""]
            );
        }
        $usuarios = array_map(
            static fn (int $b): string => 'u' . chr($b) . '@x 1 100 0 0 0 0 0 0',
            array_diff(range(1, 255), [0x0A, 0x0D, 0x20])
        );
        $arvore->contas('2026-03-10', [0, 0, 0, 0, 0, 0, 0, 0], [8 => $usuarios])->eventos('2026-03-10', ...$eventos);
        $onde = ["--dados=$arvore->dados", '--fuso=UTC', '--de=2026-03-10'];
        $csv = Vtmrel::roda(['exporta', 'eventos', ...$onde])->saida;
        $lido = array_map(static fn (array $l): array => [$l[5], $l[6], $l[9]], array_slice(Vtmrel::csv($csv), 1));
        self::assertSame($esperado, $lido);
        self::assertCount(252 - 26 + 1, Vtmrel::csv(Vtmrel::roda(['topo', '--n=300', ...$onde])->saida));
        $mensagens = Vtmrel::csv(Vtmrel::roda(['mensagens', '--todas', ...$onde])->saida);
        self::assertEqualsCanonicalizing(array_map(Texto::utf8(...), $ids), array_slice(array_column($mensagens, 0), 1));
        $mostra = [['exporta', 'eventos'], ['exporta', 'usuarios'], ['topo', '--n=300'], ['mensagens', '--todas'],
            ['rastro', Texto::utf8($ids[26])], ['dias', '--usuario=' . Texto::utf8("u\x1B@x")],
            ['rastro', "x\x1B[2Jx"], ['dias', "--relay=\u{9B}2J", '--config=/nao']];
        foreach ($mostra as $argumentos) {
            foreach (['tabela', 'csv', 'ndjson', 'json'] as $formato) {
                $visto = Vtmrel::noTerminal([...$argumentos, "--formato=$formato", ...$onde])->saida;
                self::assertNotSame('', $visto);
                self::assertSame(1, preg_match('//u', $visto));
                self::assertDoesNotMatchRegularExpression(
                    '/[\x00-\x09\x0B\x0C\x0E-\x1F\x7F]|\r[^\n]|\xC2[\x80-\x9F]/',
                    $visto,
                    "$argumentos[0] $formato"
                );
            }
        }
    }

    public function testAnonimo(): void
    {
        $chave = tempnam(sys_get_temp_dir(), 'vt_chave');
        unlink($chave);
        $colunas = array_flip(Rotulos::colunas('usuarios'));
        $exporta = fn (string ...$mais): array => array_column(
            array_slice(Vtmrel::csv($this->pergunta('exporta', 'usuarios', ...$mais)->saida), 1),
            $colunas['usuario']
        );
        $nomes = $exporta();
        $simbolos = $exporta('--anonimo', "--chave=$chave");
        self::assertSame(0600, fileperms($chave) & 0777);
        self::assertSame($simbolos, $exporta('--anonimo', "--chave=$chave"), 'the same key, the same tokens');
        self::assertNotSame($simbolos, $exporta('--anonimo'));
        $dobrados = array_map('strtolower', $nomes);
        self::assertCount(count(array_unique($dobrados)), array_unique(array_combine($dobrados, $simbolos)), 'one each');
        foreach ($nomes as $i => $nome) {
            [$local, $dominio] = explode('@', "$nome@");
            self::assertStringEndsWith($dominio === '' ? '' : "@$dominio", $simbolos[$i]);
            self::assertStringNotContainsString($local === '' ? '?' : $local, $simbolos[$i]);
        }
        $eventos = $this->pergunta('exporta', 'eventos', '--anonimo', "--chave=$chave")->saida;
        self::assertSame([], array_filter(array_unique($dobrados), static fn (string $n): bool => str_contains($n, '@')
            && stripos($eventos, ",$n,") !== false));
        self::assertSame([''], array_values(array_unique(array_column(array_slice(Vtmrel::csv($eventos), 1), 9))));
        self::assertStringContainsString($simbolos[0], $eventos, 'tokens of both exports agree');
        unlink($chave);
    }

    public function testComplementoEAjuda(): void
    {
        $texto = Vtmrel::roda(['completion', 'bash'])->saida;
        $arquivo = tempnam(sys_get_temp_dir(), 'vt_bash');
        file_put_contents($arquivo, $texto);
        self::assertSame([0, ''], [($b = Vtmrel::executa(['bash', '-n', $arquivo]))->codigo, $b->erros]);
        self::assertStringContainsString('complete -F _sf_vtmrel vtmrel', $texto);
        unlink($arquivo);
        foreach (['dias', 'horas', 'topo', 'mensagens', 'rastro', 'consolida', 'exporta'] as $comando) {
            $ajuda = Vtmrel::roda([$comando, '--help']);
            self::assertSame([0, ''], [$ajuda->codigo, $ajuda->erros]);
            self::assertMatchesRegularExpression('~Exemplos / Examples:\n +vtmrel ' . $comando . '~', $ajuda->saida);
        }
        self::assertStringContainsString('[messages]', Vtmrel::roda(['list'])->saida);
    }
}
