<?php

// A consolidation up to this moment: what it shows, and that neither readers nor the daily run notice it, even
// where it is killed. The clock of these runs is a day behind, so that the daily run of "the next day" can follow.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;

final class AteAgoraTest extends TestCase
{
    private const LOG = 'MAIL_DISPATCHER.LOG';

    private Arvore $arvore;
    private string $raiz;

    protected function setUp(): void
    {
        $this->arvore = new Arvore('UTC');
        $this->raiz = $this->arvore->dados;
        mkdir("$this->raiz/logs");
        foreach ([-4, -3, -2] as $dia) {
            file_put_contents("$this->raiz/logs/" . self::LOG . ".$dia", Despachante::dia($dia));
        }
        $this->vivo(9);
    }

    /** The live log of yesterday, which is these runs' today. */
    private function vivo(int $ate): void
    {
        file_put_contents("$this->raiz/logs/" . self::LOG, Despachante::dia(-1, $ate));
    }

    private static function dia(int $dia): string
    {
        return gmdate('Y-m-d', strtotime("today UTC $dia days"));
    }

    /** @return list<string> */
    private function argumentos(string ...$primeiros): array
    {
        return [...$primeiros, "--dados=$this->raiz/dat", "--logs=$this->raiz/logs", "--ponto=$this->raiz/ponto", '--fuso=UTC',
            '--formato=json', '--lingua=pt'];
    }

    private function ateAgora(array $como = []): Vtmrel
    {
        return Despachante::disturba($this->argumentos('_consolida', '--ate-agora'), $como);
    }

    /** @return array{int, array} exit code and what it told */
    private function consolida(string ...$mais): array
    {
        $r = Despachante::disturba($this->argumentos('consolida', ...$mais));
        return [$r->codigo, json_decode($r->saida, true) ?? ['erros' => $r->erros]];
    }

    /** The daily run once the day is over, by the true clock. */
    private function diaria(): Vtmrel
    {
        rename("$this->raiz/logs/" . self::LOG, "$this->raiz/logs/" . self::LOG . '.-1');
        file_put_contents("$this->raiz/logs/" . self::LOG . '.-1', Despachante::dia(-1));
        file_put_contents("$this->raiz/logs/" . self::LOG, Despachante::dia(0, 1));
        return Vtmrel::roda($this->argumentos('consolida'));
    }

    private function repoe(array $tudo): void
    {
        foreach (['dat', 'dat.agora'] as $pasta) {
            file_exists("$this->raiz/$pasta") && Arvore::apaga("$this->raiz/$pasta");
        }
        foreach ($tudo as $nome => $bytes) {
            is_dir(dirname("$this->raiz/$nome")) || mkdir(dirname("$this->raiz/$nome"), 0755, true);
            file_put_contents("$this->raiz/$nome", $bytes);
            touch("$this->raiz/$nome", time() - 86400);  // else the command waits for the clock's next second
        }
    }

    /** The days written, none of them the daily run's, and the point where it was. */
    public function testDias(): void
    {
        foreach ([[-1, [-1]], [-3, [-3, -2, -1]], [null, [-4, -3, -2, -1]]] as [$ponto, $dias]) {
            $this->setUp();
            Despachante::ponto("$this->raiz/ponto", $ponto);
            $antes = Despachante::feito($this->raiz);
            [$codigo, $disse] = $this->consolida('--ate-agora');
            self::assertSame([0, null, array_map(self::dia(...), $dias)], [$codigo, $disse['motivo'], $disse['dias']]);
            $depois = Despachante::feito($this->raiz);
            self::assertSame($antes['ponto'] ?? null, $depois['ponto'] ?? null);
            self::assertCount(2 * count($dias) + count($antes), $depois, 'nothing else was left');
            // As a forced run writes them in place.
            Arvore::apaga("$this->raiz/dat");
            self::assertSame(0, $this->consolida('--forcar')[0]);
            self::assertSame($depois, array_intersect_key(Despachante::feito($this->raiz), $depois));
        }
    }

    /**
     * Killed before, or failed at, each call that changes something: every file is the one of before or the
     * new one; the next run of this kind and the daily run go as if nothing had been.
     */
    public function testDisturbada(): void
    {
        Despachante::ponto("$this->raiz/ponto", -3);
        self::assertSame(0, $this->ateAgora()->codigo);
        $antes = Despachante::feito($this->raiz);
        $this->vivo(17);
        self::assertSame(0, $this->ateAgora()->codigo);
        $novo = Despachante::feito($this->raiz);
        self::assertNotSame($antes, $novo);
        Arvore::apaga("$this->raiz/dat");
        self::assertSame(0, $this->diaria()->codigo);
        $certo = Despachante::feito($this->raiz);
        $meios = 0;
        foreach (['VT_MATA' => SIGKILL, 'VT_CHEIO' => 1] as $como => $saida) {
            for ($n = 1, $calado = 0; $calado < 3; ++$n) {
                $this->setUp();
                $this->vivo(17);
                $this->repoe($antes);
                $r = $this->ateAgora([$como => $n]);
                $calado = $r->codigo === 0 ? $calado + 1 : 0;
                self::assertContains($r->codigo, [0, $saida], "$como $n: $r->erros");
                $ficou = array_filter(Despachante::feito($this->raiz), static fn (string $nome) => !str_contains($nome, 'agora/'), ARRAY_FILTER_USE_KEY);
                self::assertSame(array_keys($antes), array_keys($ficou), "$como $n");
                foreach ($ficou as $nome => $bytes) {
                    self::assertContains($bytes, [$antes[$nome], $novo[$nome]], "$como $n: $nome");
                }
                $r->codigo !== 0 || self::assertSame($novo, $ficou, "$como $n: said to be done");
                $meios += $ficou !== $antes && $ficou !== $novo ? 1 : 0;
                if ($n % 2) {
                    self::assertSame(0, $this->ateAgora()->codigo);
                    self::assertSame($novo, Despachante::feito($this->raiz), "$como $n, then again");
                }
                self::assertSame(0, $this->diaria()->codigo);
                self::assertSame($certo, Despachante::feito($this->raiz), "$como $n, then the daily run");
            }
            self::assertGreaterThan(10, $n);
        }
        self::assertGreaterThan(3, $meios, 'some runs ended between two renamings');
    }

    /** Whatever stands in the way is said, and nothing is changed. */
    public function testNada(): void
    {
        Despachante::ponto("$this->raiz/ponto", -1);
        self::assertSame(0, $this->ateAgora()->codigo);
        $this->vivo(11);
        $dia = self::dia(-1);
        $pasta = "$this->raiz/dat/rels_" . substr($dia, 5, 2) . '-' . substr($dia, 2, 2);
        $compacto = "$pasta/compact_mail_" . substr($dia, 8) . '.txt';
        $casos = [
            'dão menos de' => fn () => $this->vivo(7),
            'pode ser trocado' => static fn () => chown($compacto, 65534),
            'dat.agora: consolide com o usuário' => fn () => symlink('/', "$this->raiz/dat.agora"),
            'rode como esse usuário' => fn () => chown("$this->raiz/dat", 65534),
            'está vazio' => fn () => $this->vivo(0),
        ];
        $antes = Despachante::feito($this->raiz);
        foreach ($casos as $frase => $estraga) {
            if (posix_getuid() !== 0 && in_array($frase, ['pode ser trocado', 'rode como esse usuário'], true)) {
                continue;  // these take root to make
            }
            $estraga();
            [$codigo, $disse] = $this->consolida('--ate-agora');
            self::assertSame([1, []], [$codigo, $disse['dias'] ?? null], $frase);
            self::assertStringContainsString($frase, $disse['motivo']);
            is_link("$this->raiz/dat.agora") && unlink("$this->raiz/dat.agora");
            self::assertSame($antes, Despachante::feito($this->raiz), $frase);
            chown($compacto, posix_getuid());
            chown("$this->raiz/dat", posix_getuid());
            $this->vivo(11);
        }
    }

    /** Somebody else consolidates: said, and no failure for a timer. */
    public function testTrava(): void
    {
        Despachante::ponto("$this->raiz/ponto", -1);
        $codigo = '$m = new vt_mrel(); $m->setLogDir("/nao"); $m->setDataDir("' . $this->raiz . '/outro");
            $m->consolidate("' . $this->raiz . '/outro/ponto"); echo "tem\n"; fgets(STDIN);';
        $processo = proc_open(
            [PHP_BINARY, '-n', '-d', 'extension=' . getenv('VT_EXTENSAO'), '-r', $codigo],
            [['pipe', 'r'], ['pipe', 'w']],
            $canos
        );
        self::assertSame("tem\n", fgets($canos[1]));
        [$codigo, $disse] = $this->consolida('--ate-agora');
        self::assertSame([0, []], [$codigo, $disse['dias']]);
        self::assertStringContainsString('tem a trava: ' . proc_get_status($processo)['pid'] . ' (php', $disse['motivo']);
        // Likewise where it is taken only after the first look.
        $r = $this->ateAgora();
        self::assertSame(0, $r->codigo);
        self::assertStringContainsString('tem a trava', $r->erros);
        self::assertSame(['ponto'], array_keys(Despachante::feito($this->raiz)));
        fclose($canos[0]);
        proc_close($processo);
        self::assertSame([0, null], [($r = $this->consolida('--ate-agora'))[0], $r[1]['motivo']]);
    }

    /** Mode and group are those of the file that it replaces; of a new one those that the directory gives. */
    public function testPermissoes(): void
    {
        Despachante::ponto("$this->raiz/ponto", -2);
        self::assertSame(0, $this->ateAgora()->codigo);
        [$pasta] = glob("$this->raiz/dat/rels_*");
        $arquivos = glob("$this->raiz/dat/rels_*/*");
        self::assertCount(4, $arquivos);
        $grupo = posix_getuid() === 0 ? 4 : filegroup($pasta);
        foreach ($arquivos as $i => $arquivo) {
            $i % 2 ? unlink($arquivo) : chmod($arquivo, 0640) && chgrp($arquivo, $grupo);
        }
        chgrp($pasta, $grupo);
        chmod($pasta, 02750);
        self::assertSame(0, $this->ateAgora()->codigo);
        foreach ($arquivos as $i => $arquivo) {
            clearstatcache();
            self::assertSame([$i % 2 ? 0644 : 0640, $grupo], [fileperms($arquivo) & 0777, filegroup($arquivo)], $arquivo);
        }
    }
}
