<?php

// Each way in which the command ends otherwise than well: its exit code, one sentence, and no figure.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;

final class ErrosDoComandoTest extends TestCase
{
    private Arvore $arvore;
    private array $onde;

    protected function setUp(): void
    {
        $this->arvore = (new Arvore('UTC'))->eventos(
            '2026-03-10',
            '08:00 1 1 A1 INTERNO ana@x.example 100',
            '08:00 1 2 A1 bia@x.example',
            '08:00 1 4 A1'
        )->eventos('2026-03-11');
        $this->onde = ["--dados={$this->arvore->dados}", '--fuso=UTC', '--de=2026-03-10', '--ate=2026-03-11'];
    }

    private function recusa(int $codigo, string $frase, Vtmrel $r): void
    {
        self::assertSame([$codigo, ''], [$r->codigo, $r->saida], $r->erros);
        self::assertMatchesRegularExpression("/^vtmrel: [^\n]*$frase" . "[^\n]*\n\$/u", $r->erros);
        self::assertDoesNotMatchRegularExpression('/Warning|Notice|Deprecated|\.php:\d/', $r->erros);
    }

    public function testUso(): void
    {
        file_put_contents($curta = "{$this->arvore->dados}/chave", "curta\n");
        $casos = [
            ['"--nada" não existe', ['dias', '--nada']],
            ['"--de" pede um valor', ['dias', '--de']],
            ['"--todas" não toma valor', ['mensagens', '--todas=1']],
            ['"sobe" não existe', ['sobe']],
            ['Falta dizer: id', ['rastro']],
            ['"mais" está a mais', ['dias', 'mais']],
            ['"rastro" não toma tantos', ['rastro', 'A1', 'B2']],
            ['Não há exportação "tudo"', ['exporta', 'tudo', ...$this->onde]],
            ['--formato não pode ser "xml"', ['dias', '--formato=xml', ...$this->onde]],
            ['--lingua não pode ser "fr"', ['dias', '--lingua=fr', ...$this->onde]],
            ['--por não pode ser "cor"', ['topo', '--por=cor', ...$this->onde]],
            ['--n pede um número', ['topo', '--n=muitos', ...$this->onde]],
            ['0 não serve', ['topo', '--n=0', ...$this->onde]],
            ['--limite pede um número', ['mensagens', '--todas', '--limite=-1', ...$this->onde]],
            ['Sem filtro', ['mensagens', ...$this->onde]],
            ['vírgula', ['mensagens', '--usuario=a,b', ...$this->onde]],
            ['está vazio', ['dias', '--usuario=', ...$this->onde]],
            ['UTF-8', ['dias', "--usuario=a\xFF", ...$this->onde]],
            ['UTF-8', ['dias', "--relay=a\xFF", ...$this->onde]],
            ['espaços', ['rastro', '', ...$this->onde]],
            ['não é uma data', ['dias', ...$this->onde, '--de=2026-02-30']],
            ['nem um período', ['dias', ...$this->onde, '--de=sempre']],
            ['invertido', ['dias', ...$this->onde, '--de=2026-03-12']],
            ['O fuso "BRT3"', ['dias', ...$this->onde, '--fuso=BRT3']],
            ['--chave só vale', ['exporta', 'eventos', '--chave=x', ...$this->onde]],
            ['A chave \/nao\/x', ['exporta', 'eventos', '--anonimo', '--chave=/nao/x', ...$this->onde]],
            ['menos de 16 bytes', ['exporta', 'eventos', '--anonimo', "--chave=$curta", ...$this->onde]],
            ['--excel é csv', ['dias', '--excel', '--formato=json', ...$this->onde]],
            ['Falta --logs', ['consolida', ...$this->onde]],
            ['Falta --ponto', ['consolida', '--logs=/tmp', ...$this->onde]],
            ['A configuração \/nao\/ha', ['dias', '--config=/nao/ha']],
            ['A configuração \/nao\/existe', ['dias']],
        ];
        foreach ($casos as [$frase, $argumentos]) {
            $this->recusa(3, $frase, Vtmrel::roda($argumentos));
        }
        $this->recusa(3, 'There is no option', Vtmrel::roda(['dias', '--nada', '--lingua=en']));
        $this->recusa(3, 'There is no option', Vtmrel::roda(['dias', '--nada'], ['LC_ALL' => 'en_GB.UTF-8']));
    }

    public function testDados(): void
    {
        $dados = $this->arvore->dados;
        $this->recusa(3, 'não existe', Vtmrel::roda(['dias', '--dados=/nao/existe']));
        $this->recusa(3, 'não é um diretório', Vtmrel::roda(['dias', '--dados=' . __FILE__]));
        $nova = new Arvore();
        $this->recusa(1, 'Nenhum dia consolidado', Vtmrel::roda(['dias', "--dados=$nova->dados"]));
        $this->recusa(1, 'não foi encontrada', Vtmrel::roda(['rastro', 'B9', ...$this->onde]));
        $semModulo = [PHP_BINARY, '-n', '-d', 'extension=mbstring', dirname(Vtmrel::PROGRAMA) . '/vtmrel.php', 'dias'];
        $this->recusa(3, 'vt_mrel não está carregada', Vtmrel::executa([...$semModulo, ...$this->onde]));
        // One unreadable day among good ones: named, and nothing that leaves it out.
        chmod($this->arvore->caminho('mail_stat', '2026-03-11'), 0);
        chmod($this->arvore->caminho('compact_mail', '2026-03-11'), 0);
        foreach ([['dias'], ['horas'], ['topo'], ['mensagens', '--todas'], ['rastro', 'A1'], ['exporta', 'eventos']] as $c) {
            $this->recusa(3, 'O dia 2026-03-11 não pode ser lido', Vtmrel::semDireitos([...$c, ...$this->onde]));
        }
        chmod($dados, 0);
        $this->recusa(3, 'permissão para ler', Vtmrel::semDireitos(['dias', ...$this->onde]));
        chmod($dados, 0700);
        unlink($this->arvore->caminho('mail_stat', '2026-03-11'));
        $this->recusa(3, 'está incompleto', Vtmrel::roda(['dias', ...$this->onde]));
        // Days without files are no error: the head alone.
        $vazio = Vtmrel::roda(['dias', "--dados=$dados", '--de=2025-01-01']);
        self::assertSame([0, '', 1], [$vazio->codigo, $vazio->erros, substr_count($vazio->saida, "\n")]);
    }

    /** Torn and foreign lines within day files stop nobody. */
    public function testLinhasEstragadas(): void
    {
        $estragos = ["lixo\n[x]\nana\nana muitos 1\nana 99999999999999999999 - + 1e9 0x1 0 0 0\n", random_bytes(3000), '', "\0\0"];
        foreach ($estragos as $estrago) {
            foreach (['mail_stat', 'compact_mail'] as $tipo) {
                $arquivo = $this->arvore->caminho($tipo, '2026-03-10');
                file_put_contents($arquivo, substr(file_get_contents($arquivo), 0, 150) . $estrago);
            }
            foreach ([['dias'], ['horas'], ['topo'], ['mensagens', '--todas'], ['exporta', 'usuarios'], ['exporta', 'eventos']] as $c) {
                foreach (['tabela', 'json'] as $formato) {
                    $r = Vtmrel::roda([...$c, "--formato=$formato", ...$this->onde]);
                    self::assertSame([0, ''], [$r->codigo, $r->erros], bin2hex($estrago));
                    self::assertTrue($formato === 'tabela' || is_array(json_decode($r->saida)));
                }
            }
        }
    }

    /** A full disk is told; a reader that has enough is not. */
    public function testSaida(): void
    {
        foreach ([['dias', ...$this->onde], ['list'], ['completion', 'bash']] as $argumentos) {
            $this->recusa(1, 'saída não pôde ser escrita', Vtmrel::roda($argumentos, saida: '/dev/full'));
        }
        $dados = '--dados=' . getenv('VT_DADOS') . '/dat --fuso=Atlantic/Azores --de=2026-03-26 --ate=2026-03-29';
        $linha = escapeshellarg(Vtmrel::PROGRAMA) . " exporta eventos $dados | head -n 1; exit \${PIPESTATUS[0]}";
        $r = Vtmrel::executa(['bash', '-c', $linha]);
        self::assertSame([1, ''], [$r->codigo, $r->erros]);
        self::assertStringStartsWith('relay,dia,n,', $r->saida);
    }
}
