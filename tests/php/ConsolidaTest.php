<?php

// What the consolidation says of itself, against what it did.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;

final class ConsolidaTest extends TestCase
{
    private Arvore $arvore;
    private array $onde;
    private \DateTimeImmutable $hoje;

    protected function setUp(): void
    {
        $this->arvore = new Arvore('UTC');
        mkdir("{$this->arvore->dados}/logs");
        $raiz = $this->arvore->dados;
        $this->onde = ["--dados=$raiz/dat", "--logs=$raiz/logs", "--ponto=$raiz/ponto", '--fuso=UTC'];
        $this->hoje = new \DateTimeImmutable('today', new \DateTimeZone('UTC'));
    }

    /** A log of these days, counted from today, ten lines a day; the last of them is the live one. */
    private function log(string $nome, int ...$dias): void
    {
        $texto = '';
        foreach ($dias as $dia) {
            for ($i = 0; $i < 5; ++$i) {
                $quando = $this->hoje->modify("$dia days 00:0$i:30")->format('D M d H:i:s Y');
                $texto .= "$quando: 09 MAILQ SUBMIT Msg M$dia$i de SMTPCONNINT remetente ana@x.example com 10 bytes\n"
                    . "$quando: 09 MAILQ ENDSEND Msg M$dia$i\n";
            }
        }
        file_put_contents("{$this->arvore->dados}/logs/MAIL_DISPATCHER.LOG$nome", $texto);
    }

    private function dia(int $dia): string
    {
        return $this->hoje->modify("$dia days")->format('Y-m-d');
    }

    /** @return array{int, array, string} exit code, what it told, standard error */
    private function consolida(string ...$mais): array
    {
        $r = Vtmrel::roda(['consolida', '--formato=json', ...$this->onde, ...$mais]);
        return [$r->codigo, json_decode($r->saida, true, 5, JSON_THROW_ON_ERROR), $r->erros];
    }

    public function testFeito(): void
    {
        $this->log('.1', -2);
        $this->log('', -1, 0);
        $hoje = $this->hoje->format(DATE_ATOM);
        [$codigo, $disse, $erros] = $this->consolida();
        self::assertSame([0, ''], [$codigo, $erros]);
        self::assertSame(['dias' => [$this->dia(-2), $this->dia(-1)], 'linhas' => 20, 'ponto' => $hoje, 'motivo' => null], $disse);
        [$codigo, $disse] = $this->consolida();
        self::assertSame([0, [], 0, $hoje], [$codigo, $disse['dias'], $disse['linhas'], $disse['ponto']]);
        self::assertStringContainsString('Nada a fazer', $disse['motivo']);
        [$codigo, $disse] = $this->consolida('--forcar');
        self::assertSame([0, [$this->dia(0)], 10, $hoje, null], [$codigo, ...array_values($disse)]);
        // The totals are there for whoever asks next.
        $dias = Vtmrel::csv(Vtmrel::roda(['dias', '--de=ultimos-2', ...$this->onde])->saida);
        self::assertSame([$this->dia(-2), $this->dia(-1)], array_column(array_slice($dias, 1), 0));
    }

    /** No day is passed over or left half done without a word. */
    public function testNaoFeito(): void
    {
        $raiz = $this->arvore->dados;
        $conta = function (string $frase, array $dias, string ...$mais): void {
            [$codigo, $disse, $erros] = $this->consolida(...$mais);
            self::assertSame([1, $dias], [$codigo, $disse['dias']], $frase);
            self::assertStringContainsString($frase, $disse['motivo']);
            self::assertSame("vtmrel: $disse[motivo]\n", $erros);
        };
        $conta('Falta o log', []);
        $conta('Falta o log /nao', [], '--logs=/nao');
        $this->log('', -2, -1);
        $conta("O dia {$this->dia(-1)} não está completo", [$this->dia(-2), $this->dia(-1)]);
        $this->log('', 0);
        $conta("Nenhum log tem linhas de {$this->dia(-1)}", [$this->dia(-1)]);
        self::assertFileExists("$raiz/ponto");
        file_put_contents("$raiz/ponto", '1 ' . $this->hoje->modify('+2 days')->format('D M d H:i:s Y') . "\n");
        $conta('ainda não chegou', []);
        file_put_contents("$raiz/ponto", '1 ' . $this->hoje->modify('-1 day')->format('D M d H:i:s Y') . "\n");
        file_put_contents("$raiz/logs/MAIL_DISPATCHER.LOG", '');
        $conta('está vazio', []);
        unlink("$raiz/logs/MAIL_DISPATCHER.LOG");
        $conta('Falta o log', []);
        $this->log('', -1, 0);
        $this->log('.1', -1);
        chmod("$raiz/logs/MAIL_DISPATCHER.LOG.1", 0);
        $r = Vtmrel::semDireitos(['consolida', '--formato=json', ...$this->onde]);
        self::assertStringContainsString('LOG.1 não pode ser lido', json_decode($r->saida, true)['motivo']);
    }

    /** Whoever holds the lock is named. */
    public function testTrava(): void
    {
        $this->log('', -1, 0);
        $codigo = '$m = new vt_mrel(); $m->setLogDir("/nao"); $m->setDataDir("' . $this->arvore->dados . '/outro");
            $m->consolidate("' . $this->arvore->dados . '/outro/ponto"); echo "tem\n"; fgets(STDIN);';
        $processo = proc_open(
            [PHP_BINARY, '-n', '-d', 'extension=' . getenv('VT_EXTENSAO'), '-r', $codigo],
            [['pipe', 'r'], ['pipe', 'w']],
            $canos
        );
        self::assertSame("tem\n", fgets($canos[1]));
        [$saiu, $disse] = $this->consolida();
        self::assertSame([1, []], [$saiu, $disse['dias']]);
        self::assertStringContainsString('tem a trava: ' . proc_get_status($processo)['pid'] . ' (php', $disse['motivo']);
        fclose($canos[0]);
        proc_close($processo);
        self::assertSame(0, $this->consolida()[0]);
    }

    public function testBarra(): void
    {
        $this->log('', -1, 0);
        $visto = Vtmrel::noTerminal(['consolida', ...$this->onde]);
        self::assertSame(0, $visto->codigo);
        self::assertMatchesRegularExpression('/ \d+% \[[^]]+\] \d+ B \/ \d,\d KB/', $visto->saida);
        self::assertMatchesRegularExpression('/Linhas +10\r?\n/', $visto->saida);
    }
}
