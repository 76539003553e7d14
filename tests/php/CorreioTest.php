<?php

// The mailed report: its figures, its form as a message, and its way to sendmail.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;

final class CorreioTest extends TestCase
{
    private Arvore $arvore;

    /** Eight days of 10, 12 ... messages and a day of 34; a sender whose name is no name. */
    protected function setUp(): void
    {
        $this->arvore = new Arvore('UTC');
        for ($i = 1; $i <= 9; ++$i) {
            $n = $i < 9 ? 8 + 2 * $i : 34;
            $this->arvore->contas("2026-03-0$i", [0, 0, $i, 0, $n, 1000 * $n, 0, 0], [
                9 => ["jos\xE9@x.example $n 0 0 0 0 0 0 0", '<b>"&\'@x.example 7 0 0 0 0 0 0 0'],
            ]);
            file_put_contents($this->arvore->caminho('compact_mail', "2026-03-0$i"), '');
        }
    }

    private function relatorio(array $mais, array $ambiente = []): Vtmrel
    {
        return Vtmrel::roda(['relatorio', "--dados={$this->arvore->dados}", '--fuso=UTC', '--lingua=pt', ...$mais], $ambiente);
    }

    /**
     * A message taken apart.
     *
     * @return array{array<string, string>, array<string, string>} headers; bodies by type
     */
    private static function desmonta(string $carta): array
    {
        self::assertDoesNotMatchRegularExpression('/[^\n\x20-\x7E]|^.{77}|=0A/m', $carta);
        [$cabecalhos, $resto] = explode("\n\n", $carta, 2);
        $valores = [];
        foreach (explode("\n", preg_replace('/\n[ \t]+/', ' ', $cabecalhos)) as $linha) {
            [$nome, $valor] = explode(': ', $linha, 2);
            self::assertArrayNotHasKey($nome, $valores);
            $valores[$nome] = preg_replace_callback(
                '/=\?UTF-8\?B\?([^?]*)\?=(?: (?==\?))?/',
                static function (array $m): string {
                    self::assertMatchesRegularExpression('//u', base64_decode($m[1]), 'no word ends within a character');
                    return base64_decode($m[1]);
                },
                $valor
            );
        }
        self::assertSame(1, preg_match('/^multipart\/alternative; boundary="(.*)"$/D', $valores['Content-Type'], $m));
        $partes = explode("\n--$m[1]", "\n$resto");
        self::assertSame(['', "--\n"], [array_shift($partes), array_pop($partes)]);
        $corpos = [];
        foreach ($partes as $parte) {
            [$tipo, $corpo] = explode("\n\n", $parte, 2);
            self::assertSame(1, preg_match('/^\nContent-Type: (\S+); charset=utf-8\nContent-Transfer-Encoding: quoted-printable$/D', $tipo, $m));
            $corpos[$m[1]] = quoted_printable_decode($corpo);
        }
        self::assertSame(['text/plain', 'text/html'], array_keys($corpos));
        return [$valores, $corpos];
    }

    public function testCarta(): void
    {
        $r = $this->relatorio(['--stdout', '--relay=Sããããããããããããããããããão "Paulo"', '--de=2026-03-09']);
        self::assertSame([0, ''], [$r->codigo, $r->erros]);
        [$cabecalhos, $corpos] = self::desmonta($r->saida);
        $estado = json_decode(Vtmrel::roda(
            ['verifica', '--json', '--sem=ponto,logs', "--dados={$this->arvore->dados}", '--fuso=UTC']
        )->saida, true)['estado'];
        self::assertSame('critico', $estado);
        self::assertStringStartsWith('[Sããããããããããããããããããão "Paulo"] 09/03/2026: 34 mensagens, crítico (', $cabecalhos['Subject']);
        self::assertArrayNotHasKey('To', $cabecalhos);
        // The mean is of the seven days before, not of the eighth: (12 + 14 ... + 24) / 7 = 18.
        $texto = preg_replace('/ {2,}/', '|', $corpos['text/plain']);
        self::assertStringContainsString("\n09/03/2026|34|33,2 KB|0|0 B|0|0|9\nMédia de 7 dias|18|17,6 KB|0|0 B|0|0|5\nDiferença|+89%|+89%|", $texto);
        self::assertStringContainsString("\n03/03/2026|14|", $texto);
        self::assertStringContainsString("|1|josé@x.example|34\n|2|<b>\"&'@x.example|7\n", $texto);
        self::assertStringContainsString("\nSaúde: crítico (", $texto);
        $html = new \DOMDocument();
        self::assertTrue($html->loadHTML($corpos['text/html']));
        self::assertStringNotContainsString('<b>', $corpos['text/html']);
        $celulas = [];
        foreach ((new \DOMXPath($html))->query('//table[1]/tbody/tr[2]/td') as $celula) {
            $celulas[] = $celula->textContent;
        }
        self::assertSame(['Média de 7 dias', '18', '17,6 KB'], array_slice($celulas, 0, 3));
        self::assertStringContainsString('&lt;b&gt;&quot;&amp;&#039;@x.example', $corpos['text/html']);
        // English, and nothing to compare with.
        [$cabecalhos, $corpos] = self::desmonta($this->relatorio(['--stdout', '--lingua=en', '--de=2026-03-01'])->saida);
        self::assertStringStartsWith('[local] 2026-03-01: 10 messages, critical (', $cabecalhos['Subject']);
        self::assertStringNotContainsString('Mean', $corpos['text/plain']);
        // The day before it alone; and a day that has no files, which is last in a period.
        self::assertStringContainsString('O dia antes', self::desmonta($this->relatorio(['--stdout', '--de=2026-03-02'])->saida)[1]['text/plain']);
        self::assertStringContainsString('sem arquivos do dia', self::desmonta($this->relatorio(['--stdout', '--de=2026-03-12'])->saida)[0]['Subject']);
    }

    public function testEnvio(): void
    {
        $aqui = $this->arvore->dados;
        file_put_contents("$aqui/sendmail", "#!/bin/sh\necho \"\$@\" >$aqui/argumentos\ncat >$aqui/carta\n");
        file_put_contents("$aqui/recusa", "#!/bin/sh\necho 'disk <full>'\nexit 75\n");
        chmod("$aqui/sendmail", 0755);
        chmod("$aqui/recusa", 0755);
        $para = ['--para=ana@x.example', '--para=root', '--como=relay@x.example'];
        $r = $this->relatorio($para, ['SENDMAIL' => "$aqui/sendmail"]);
        self::assertSame([0, '', ''], [$r->codigo, $r->saida, $r->erros]);
        self::assertSame("-i -f relay@x.example -- ana@x.example root\n", file_get_contents("$aqui/argumentos"));
        [$cabecalhos] = self::desmonta(file_get_contents("$aqui/carta"));
        self::assertSame(['relay@x.example', 'ana@x.example, root'], [$cabecalhos['From'], $cabecalhos['To']]);
        foreach (['recusa' => 'código 75: disk <full>', 'nao' => 'Não há ', 'argumentos' => 'Não há '] as $programa => $frase) {
            $r = $this->relatorio($para, ['SENDMAIL' => "$aqui/$programa"]);
            self::assertSame([1, ''], [$r->codigo, $r->saida]);
            self::assertStringContainsString($frase, $r->erros);
        }
        unlink("$aqui/carta");
        foreach (["a@x.example\nBcc: b@x.example", '-oQ/tmp', 'a b@x.example', 'a,b@x.example', 'ana@', 'á@x.example', ''] as $endereco) {
            $r = $this->relatorio(["--para=$endereco", '--stdout'], ['SENDMAIL' => "$aqui/sendmail"]);
            self::assertSame([3, ''], [$r->codigo, $r->saida], $endereco);
        }
        self::assertSame(3, $this->relatorio([])->codigo);
        self::assertFileDoesNotExist("$aqui/carta");
    }
}
