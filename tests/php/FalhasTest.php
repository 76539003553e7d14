<?php

// Each reason for which there is no answer: told apart, in a sentence, and never as an empty answer.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Configuracao;
use Vorna\Mrel\Contador;
use Vorna\Mrel\Exportacao;
use Vorna\Mrel\Falha;
use Vorna\Mrel\Falha\ConfiguracaoInvalida;
use Vorna\Mrel\Falha\DadosInacessiveis;
use Vorna\Mrel\Falha\DiaIlegivel;
use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Falha\NenhumDia;
use Vorna\Mrel\Filtro;
use Vorna\Mrel\Fuso;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Relatorios;
use Vorna\Mrel\Relay;

final class FalhasTest extends TestCase
{
    /** Every report fails at the call, before its first row is asked for. */
    public function testTodosOsRelatoriosRecusam(): void
    {
        $utc = new \DateTimeZone('UTC');
        $relay = new Relay('/nao/existe', fuso: $utc);
        [$r, $e, $p] = [new Relatorios($relay), new Exportacao($relay), Periodo::dia('2026-03-10', $utc)];
        $perguntas = [
            fn () => $r->totais($p), fn () => $r->porUsuario($p, ['ana']), fn () => $r->horas($p),
            fn () => $r->horasDe($p, 'ana'), fn () => $r->mensagens($p, new Filtro(todas: true)),
            fn () => $r->rastro('A1'), fn () => $r->rastro('A1', $p), fn () => $r->topo($p),
            fn () => $e->usuarios($p), fn () => $e->eventos($p),
        ];
        foreach ($perguntas as $i => $faz) {
            try {
                $faz();
                self::fail("pergunta $i");
            } catch (DadosInacessiveis $f) {
                self::assertStringContainsString('/nao/existe não existe', $f->getMessage());
                self::assertStringContainsString('/nao/existe does not exist', $f->frase('en'));
            }
        }
        self::assertDirectoryDoesNotExist('/nao', 'the engine makes a directory that is missing');
    }

    public function testDiretorio(): void
    {
        $arvore = new Arvore();
        self::assertSame(NenhumDia::class, $this->deFora($arvore, ''));
        self::assertSame(DadosInacessiveis::class, $this->deFora($arvore, '', dados: __FILE__));
        self::assertSame(DadosInacessiveis::class, $this->deFora($arvore, '', dados: "$arvore->dados/\0"));
        $arvore->eventos('2026-03-10', '08:00 1 1 A1 INTERNO ana@x.example 100');
        self::assertSame('1', $this->deFora($arvore, ''));
        self::assertSame(DadosInacessiveis::class, $this->deFora($arvore, 'chmod("DADOS", 0);'));
        self::assertSame(DadosInacessiveis::class, $this->deFora($arvore, 'chmod("DADOS", 0600);'));
        self::assertSame(DadosInacessiveis::class, $this->deFora($arvore, 'chmod("DADOS/rels_03-26", 0);'));
        $longo = $arvore->dados . str_repeat('/.', 70);
        self::assertStringContainsString('128 bytes', $this->deFora($arvore, '', dados: $longo, frase: true));
        $cerca = ['-d', 'open_basedir=' . dirname(__DIR__, 2)];
        self::assertStringContainsString('open_basedir', $this->deFora($arvore, '', opcoes: $cerca, frase: true));
        self::assertStringContainsString('extension=vt_mrel', $this->deFora($arvore, '', ['-d', 'memory_limit=-1'], frase: true));
    }

    /** One bad day among good ones: named, whatever report, and no figure that leaves it out. */
    public function testUmDiaRuim(): void
    {
        $arvore = new Arvore();
        foreach (['2026-03-09', '2026-03-10', '2026-03-11'] as $dia) {
            $arvore->eventos($dia, '08:00 1 1 A1 INTERNO ana@x.example 100');
        }
        $bons = Periodo::de('2026-03-08', '2026-03-09', $arvore->relay()->fuso);
        $todos = Periodo::de('2026-03-08', '2026-03-12', $arvore->relay()->fuso);
        foreach (['compact_mail', 'mail_stat'] as $tipo) {
            $arquivo = $arvore->caminho($tipo, '2026-03-10');
            $resposta = $this->deFora($arvore, "chmod('$arquivo', 0);", frase: true, tipo: $tipo);
            self::assertStringContainsString('2026-03-10', $resposta);
            self::assertStringContainsString(basename($arquivo), $resposta);
            chmod($arquivo, 0600);
        }
        unlink($arvore->caminho('compact_mail', '2026-03-10'));
        mkdir($arvore->caminho('compact_mail', '2026-03-10'));
        $r = $arvore->relatorios();
        self::assertInstanceOf(DiaIlegivel::class, Arvore::falha(fn () => $r->horas($todos)));
        rmdir($arvore->caminho('compact_mail', '2026-03-10'));
        $falha = Arvore::falha(fn () => $r->mensagens($todos, new Filtro(todas: true)));
        self::assertInstanceOf(DiaIlegivel::class, $falha);
        self::assertStringContainsString('falta', $falha->getMessage());
        self::assertCount(3, iterator_to_array($r->totais($todos)));
        self::assertCount(1, iterator_to_array($r->mensagens($bons, new Filtro(todas: true))));
    }

    /**
     * What a process without the rights of root gets of ten days: the number of rows, or the failure.
     *
     * @param list<string> $opcoes of the engine in place of the extension's, or "open_basedir" besides it
     */
    private function deFora(
        Arvore $arvore,
        string $antes,
        array $opcoes = [],
        ?string $dados = null,
        bool $frase = false,
        string $tipo = 'mail_stat',
    ): string {
        $extensao = ['-d', 'extension=' . getenv('VT_EXTENSAO')];
        $opcoes = str_contains($opcoes[1] ?? '', 'open_basedir') ? [...$extensao, ...$opcoes] : $opcoes;
        $pergunta = $tipo === 'mail_stat' ? '$r->totais($p)' : '$r->mensagens($p, new Vorna\Mrel\Filtro(todas: true))';
        $codigo = str_replace('DADOS', $arvore->dados, $antes) . '
            $utc = new DateTimeZone("America/Sao_Paulo");
            $r = new Vorna\Mrel\Relatorios(new Vorna\Mrel\Relay(' . var_export($dados ?? $arvore->dados, true) . ', fuso: $utc));
            $p = Vorna\Mrel\Periodo::de("2026-03-05", "2026-03-14", $utc);
            try {
                echo iterator_count(' . $pergunta . ');
            } catch (Vorna\Mrel\Falha $e) {
                echo ' . ($frase ? '$e->getMessage()' : 'get_class($e)') . ';
            }';
        $resposta = Arvore::outroPhp($codigo, $opcoes);
        chmod($arvore->dados, 0700);
        array_map(fn (string $pasta) => chmod($pasta, 0700), glob("$arvore->dados/rels_*"));
        return $resposta;
    }

    public function testPedidosQueNaoPodemSer(): void
    {
        $arvore = (new Arvore())->eventos('2026-03-10');
        [$r, $p] = [$arvore->relatorios(), Periodo::dia('2026-03-10', $arvore->relay()->fuso)];
        $pedidos = [
            fn () => $r->porUsuario($p, []), fn () => $r->porUsuario($p, ['ana', '']), fn () => $r->porUsuario($p, [' ']),
            fn () => $r->porUsuario($p, ['ana,rui']), fn () => $r->horasDe($p, ' '), fn () => $r->horasDe($p, "a\0b"),
            fn () => $r->porUsuario($p, ["\xFF"]), fn () => $r->topo($p, Contador::Enviadas, 0), fn () => $r->rastro(''),
            fn () => $r->rastro(' A1'), fn () => new Filtro(), fn () => new Filtro(usuario: 'ana,'),
            fn () => new Filtro(remetente: ''), fn () => new Filtro(usuario: 'a', remetente: 'b'), fn () => new Filtro(id: ''),
            fn () => new Filtro(todas: true, minKb: 2, maxKb: 1), fn () => new Filtro(todas: true, minKb: -1),
        ];
        foreach ($pedidos as $i => $faz) {
            self::assertInstanceOf(EntradaInvalida::class, Arvore::falha($faz), "pedido $i");
        }
        self::assertNull(Arvore::falha(fn () => $r->porUsuario($p, ['ω@x.example'])), 'no log can hold it: no rows');
    }

    public function testConfiguracao(): void
    {
        $arquivo = sys_get_temp_dir() . '/vt_ini_' . getmypid();
        $le = function (string $texto) use ($arquivo): Configuracao {
            file_put_contents($arquivo, $texto);
            return Configuracao::le($arquivo);
        };
        try {
            $c = $le("; relays\r\n[ matriz ]\r\ndados = \"/a b\"\r\ndominios = x.example; y.example, z.example\r\n"
                . "fuso=Asia/Dili\n\n[filial]\ndados=/c\nlogs=/l\nponto=/p\n");
            self::assertSame(['matriz', 'filial'], array_keys($c->relays));
            $matriz = $c->relay('matriz');
            self::assertSame(['/a b', 'matriz', 'Asia/Dili'], [$matriz->dados, $matriz->nome, $matriz->fuso->getName()]);
            self::assertSame(['x.example', 'y.example', 'z.example'], $matriz->dominios);
            self::assertSame(['/l', '/p'], [$c->relay('filial')->logs, $c->relay('filial')->ponto]);
            self::assertSame('so', $le("[so]\ndados=/a")->relay()->nome);
            $ruins = [
                fn () => $c->relay(), fn () => $c->relay('outro'), fn () => $le(''), fn () => $le("dados=/a"),
                fn () => $le("[a]\nlogs=/l"), fn () => $le("[a]\ndados=/a\ndado=/b"), fn () => $le("[a]\ndados=/a\n[a]\n"),
                fn () => $le("[a]\ndados=/a\nfuso=BRT3"), fn () => Configuracao::le("$arquivo.nao"),
                fn () => Configuracao::le(__DIR__), fn () => Fuso::de('+03:00'), fn () => Fuso::de('CET'),
            ];
            foreach ($ruins as $i => $faz) {
                self::assertInstanceOf(ConfiguracaoInvalida::class, Arvore::falha($faz), "caso $i");
            }
        } finally {
            unlink($arquivo);
        }
    }

    /** A sentence stays one line of text, whatever it quotes. */
    public function testFrasesCitamSemPerigo(): void
    {
        foreach (["\e[31m,", "a\nb,", "\xFF,", str_repeat('x', 3000) . ',', "\u{9B}31m,"] as $nome) {
            $falha = Arvore::falha(fn () => new Filtro(usuario: $nome));
            self::assertInstanceOf(Falha::class, $falha);
            self::assertMatchesRegularExpression('/^[^\x00-\x1F\x7F\x{80}-\x{9F}]{1,250}$/u', $falha->getMessage());
        }
    }
}
