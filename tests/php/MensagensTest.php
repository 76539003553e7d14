<?php

// Searches and traces over days written by hand: midnight, messages to oneself, submissions before the
// period, names; wrapped totals; names that fold; every byte.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Contador;
use Vorna\Mrel\Exportacao;
use Vorna\Mrel\Filtro;
use Vorna\Mrel\Linha\Mensagem;
use Vorna\Mrel\Linha\Posicao;
use Vorna\Mrel\Nome;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Rotulos;

final class MensagensTest extends TestCase
{
    private Arvore $arvore;

    protected function setUp(): void
    {
        $this->arvore = new Arvore();
    }

    private function periodo(string $de, ?string $ate = null): Periodo
    {
        return Periodo::de("2026-03-$de", '2026-03-' . ($ate ?? $de), new \DateTimeZone($this->arvore->fuso));
    }

    /** @return list<string> "id sentido day hour remetente bytes estado" */
    private function lista(Periodo $periodo, Filtro $filtro): array
    {
        $linhas = iterator_to_array($this->arvore->relatorios()->mensagens($periodo, $filtro), false);
        foreach ([[1, 60], [2, 150], [200, 1 << 20]] as [$n, $bloco]) {
            self::assertEquals(array_reverse($linhas), Arvore::paginas($this->arvore->relay(), $periodo, $filtro, $n, $bloco), "$n a page");
        }
        return array_map(static fn (Mensagem $m): string => implode(' ', [$m->id, $m->sentido->value,
            $m->quando?->format('d H:i') ?? '-', $m->remetente ?? '?', $m->bytes ?? '?', $m->estado->value]), $linhas);
    }

    public function testMeiaNoite(): void
    {
        $this->arvore
            ->eventos('2026-03-10', '23:50 1 1 A1 INTERNO ana@x.example 100', '23:51 2 2 A1 rui@y.example',
                '23:52 1 1 A2 INTERNO ana@x.example 200', '23:53 2 5 A2 y.example', '23:54 1 1 A3 INTERNO eva@x.example 300',
                '23:55 2 2 A3 rui@y.example', '23:56 2 4 A3')
            ->eventos('2026-03-11', '00:01 2 2 A1 rui@y.example', '08:00 1 1 A4 INTERNO eva@x.example 400',
                '08:01 2 2 A4 rui@y.example', '08:02 2 4 A4')
            ->eventos('2026-03-12', '00:01 2 2 A2 rui@y.example', '00:02 2 4 A2')
            ->eventos('2026-03-13', '09:00 2 2 A1 rui@y.example', '09:01 2 15 A1');
        // Accepted on three days: one row, at the last of them, behind those of the days between.
        self::assertSame(
            ['A3 recebida 10 23:55 eva@x.example 300 sem_erro', 'A4 recebida 11 08:01 eva@x.example 400 sem_erro',
                'A2 recebida 12 00:01 ana@x.example 200 sem_erro', 'A1 recebida 13 09:00 ana@x.example 100 virus'],
            $this->lista($this->periodo('10', '13'), new Filtro(destinatario: 'rui@y.example')),
        );
        self::assertSame(
            ['A1 recebida 11 00:01 ana@x.example 100 sem_erro', 'A4 recebida 11 08:01 eva@x.example 400 sem_erro'],
            $this->lista($this->periodo('11'), new Filtro(usuario: 'rui@y.example')),
        );
        // Of one sent, what later days tell of it marks the row, which stays where it is.
        self::assertSame(
            ['A1 enviada 10 23:50 ana@x.example 100 virus', 'A2 enviada 10 23:52 ana@x.example 200 com_erro'],
            $this->lista($this->periodo('10', '13'), new Filtro(remetente: 'ANA@x.example')),
        );
        self::assertSame(
            ['A1 enviada 10 23:50 ana@x.example 100 sem_erro', 'A2 enviada 10 23:52 ana@x.example 200 com_erro'],
            $this->lista($this->periodo('10'), new Filtro(remetente: 'ana@x.example')),
        );
    }

    /** The queue lets go of a message at its final error; what comes behind makes no second row. */
    public function testErroFinalEVirus(): void
    {
        $this->arvore
            ->eventos('2026-03-10', '10:00 1 1 F1 INTERNO ana@x.example 1', '10:01 2 2 F1 rui@y.example', '10:02 2 10 F1 550 fim',
                '11:00 1 1 F2 INTERNO ana@x.example 2', '11:01 2 15 F2', '11:02 2 2 F2 rui@y.example')
            ->eventos('2026-03-12', '10:01 2 2 F1 rui@y.example', '10:02 1 1 F2 INTERNO eva@x.example 3', '10:03 2 2 F2 rui@y.example',
                '10:04 1 1 F2 INTERNO ivo@x.example 4', '10:05 2 2 F2 rui@y.example');
        $rui = ['F1 recebida 10 10:01 ana@x.example 1 com_erro', 'F2 recebida 10 11:02 ana@x.example 2 virus',
            'F2 recebida 12 10:03 eva@x.example 3 sem_erro', 'F2 recebida 12 10:05 ivo@x.example 4 sem_erro'];
        self::assertSame($rui, $this->lista($this->periodo('10', '12'), new Filtro(destinatario: 'rui@y.example')));
    }

    public function testParaSi(): void
    {
        $this->arvore
            ->eventos('2026-03-10', '10:00 1 1 S1 INTERNO ana@x.example 1', '10:00 2 5 S1 x.example', '10:01 1 2 S1 Ana@X.example', '10:02 1 4 S1',
                '11:00 1 1 S2 INTERNO ana@x.example 2', '12:00 1 1 S3 INTERNO rui@x.example 3', '12:01 1 2 S3 ana@x.example')
            ->eventos('2026-03-11', '00:10 1 2 S2 ana@x.example', '00:11 1 4 S2', '00:12 1 2 S3 rui@x.example', '00:13 1 4 S3');
        $ana = new Filtro(usuario: 'ana@x.example');
        $s1 = 'S1 ambos 10 10:00 ana@x.example 1 sem_erro';
        $s3 = 'S3 recebida 10 12:01 rui@x.example 3 sem_erro';
        self::assertSame([$s1, 'S2 enviada 10 11:00 ana@x.example 2 sem_erro', $s3], $this->lista($this->periodo('10'), $ana));
        self::assertSame([$s1, $s2 = 'S2 ambos 10 11:00 ana@x.example 2 sem_erro', $s3], $this->lista($this->periodo('10', '11'), $ana));
        // Submitted before the period: still to oneself, at its submission.
        self::assertSame([$s2], $this->lista($this->periodo('11'), $ana));
        self::assertSame(
            ['S1 enviada 10 10:00 ana@x.example 1 sem_erro', $s2 = 'S2 enviada 10 11:00 ana@x.example 2 sem_erro'],
            $this->lista($this->periodo('10', '11'), new Filtro(remetente: 'ana@x.example', destinatario: 'ana@x.example')),
        );
        self::assertSame([$s2], $this->lista($this->periodo('11'), new Filtro(remetente: 'ana*', destinatario: 'a*')));
        self::assertSame([$s2], $this->lista($this->periodo('11'), new Filtro(id: 'S2')));
    }

    /** Size and sender come from seven days before the period, no further; bounds go by the true size. */
    public function testSubmetidaAntes(): void
    {
        $this->arvore
            ->eventos('2026-03-02', '10:00 1 1 V1 INTERNO velha@x.example 9000')
            ->eventos('2026-03-03', '10:00 1 1 V2 INTERNO ana@x.example 9000', '10:01 1 1 V3 SMTPCONNEXT  700')
            ->eventos('2026-03-10', '10:00 2 2 V1 rui@y.example', '10:01 2 2 V2 rui@y.example', '10:02 2 2 V3 rui@y.example',
                '10:03 2 4 V1', '10:04 2 4 V2');
        $rui = ['V1 recebida 10 10:00 ? ? sem_erro', 'V2 recebida 10 10:01 ana@x.example 9000 sem_erro',
            'V3 recebida 10 10:02  700 sem_erro'];
        self::assertSame($rui, $this->lista($this->periodo('10'), new Filtro(usuario: 'rui@y.example')));
        self::assertSame([$rui[1]], $this->lista($this->periodo('10'), new Filtro(destinatario: 'rui@y.example', minKb: 8)));
        self::assertSame([$rui[2]], $this->lista($this->periodo('10'), new Filtro(destinatario: 'rui@y.example', maxKb: 1)));
        self::assertSame(['V1 enviada - ? ? sem_erro'], $this->lista($this->periodo('10'), new Filtro(id: 'V1')));
        self::assertSame([], $this->lista($this->periodo('10'), new Filtro(todas: true)));
        self::assertSame([], $this->lista($this->periodo('10'), new Filtro(remetente: 'velha*', destinatario: 'rui*')));
    }

    public function testNomes(): void
    {
        $this->arvore->eventos('2026-03-10', '10:00 1 1 N1 INTERNO ana@x.example 1', '10:00 1 1 N0 INTERNO ana@x.example.br 2',
            '10:01 1 1 1E3 INTERNO rui 3', '10:01 1 1 1000 INTERNO rui 4', '10:02 2 2 N1 ANA@x.example.br', '10:03 2 2 1E3 ana@x.example');
        $ids = fn (string $lado, string $nome): array => array_map(
            static fn (string $linha): string => strtok($linha, ' '),
            $this->lista($this->periodo('10'), new Filtro(...[$lado => $nome])),
        );
        self::assertSame(['N1'], $ids('remetente', 'ana@x.example'), 'the whole address');
        self::assertSame(['N0', 'N1'], $ids('remetente', 'Ana@*'), 'at the same second by id');
        self::assertSame(['1000', '1E3'], $ids('remetente', 'rui'), 'ids are no numbers');
        self::assertSame(['1E3'], $ids('destinatario', 'ana@x.example'), 'not the longer address');
        self::assertSame(['N1', '1E3'], $ids('destinatario', '*'));
        self::assertSame([], $ids('remetente', 'ω*'));
    }

    public function testRastro(): void
    {
        $this->arvore
            ->eventos('2026-03-10', '10:00 1 1 T1 INTERNO ana@x.example 1', '10:01 2 4 T1', '11:00 1 1 T2 INTERNO ana@x.example 2',
                '12:00 1 1 T3 INTERNO ana@x.example 3', '12:01 2 9 T3 a@y.example', '12:02 2 2 T3 b@y.example', '12:03 2 4 T3')
            ->eventos('2026-03-11', '10:00 1 1 T1 INTERNO rui@x.example 9', '11:00 2 2 T2 c@y.example')
            ->eventos('2026-03-14', '09:00 2 15 T2', '10:00 2 15 T4', '10:00 1 1 ' . ($longo = str_repeat('L', 30)) . ' INTERNO eva 5');
        $r = $this->arvore->relatorios();
        self::assertSame(['rui@x.example', 'em_curso'], [$r->rastro('T1')->remetente, $r->rastro('T1')->estado->value]);
        self::assertSame('ana@x.example', $r->rastro('T1', $this->periodo('10'))->remetente);
        $t2 = $r->rastro('T2');
        self::assertSame(['ana@x.example', 'virus'], [$t2->remetente, $t2->estado->value]);
        self::assertSame(['c@y.example', '11 11:00'], [$t2->destinatarios[0]->nome, $t2->destinatarios[0]->quando->format('d H:i')]);
        $t3 = $r->rastro('T3');
        self::assertSame(['com_erro', '12:03'], [$t3->estado->value, $t3->encerrada->format('H:i')]);
        self::assertSame(['recusado', 'entregue'], array_map(fn ($d) => $d->estado->value, $t3->destinatarios));
        self::assertSame([null, null, null], [$r->rastro('T4')->remetente, $r->rastro('T4')->bytes, $r->rastro('T4')->submetida]);
        self::assertSame($longo, $r->rastro($longo)?->id);
        self::assertNull($r->rastro(str_repeat('L', 29)), 'only its first 23 characters are kept');
        self::assertNull($r->rastro('T2', $this->periodo('11')));
    }

    public function testMaioresReunemNomes(): void
    {
        $this->arvore->contas('2026-03-10', [0, 0, 0, 0, 0, 0, 0, 0], [
            8 => ['ana@x.example 1 10 0 0 0 0 0 0', 'Ana@x.example 5 10 0 0 0 0 0 0', ' 9 9 9 9 9 9 9 0', '[um@y.example 3 -1 0 0 0 0 0 0',
                'rui 2 1 0 0 0 0 0 0', '0 1 1 0 0 0 0 0 0'],
            9 => ['ana@x.example 1 10 0 0 0 0 0 0', 'eva@Y.example 3 0 0 0 0 0 0 0', 'ze 0 0 4 4 0 0 0 0', 'curta 2'],
        ]);
        $topo = fn (array $dominios, ...$args): array => array_map(static fn (Posicao $p): string => "$p->posicao $p->nome $p->valor",
            $this->arvore->relatorios(...$dominios)->topo($this->periodo('10'), ...$args));
        $e = Contador::Enviadas;
        self::assertSame(['1 ana@x.example 7', '2 [um@y.example 3', '3 eva@Y.example 3', '4 curta 2', '5 rui 2', '6 0 1'], $topo([], $e));
        self::assertSame(['1 ana@x.example 7', '2 [um@y.example 3'], $topo(['x.example'], $e, 2));
        self::assertSame('5 rui@x.example 2', $topo(['x.example'], $e)[4]);
        self::assertSame('5 rui 2', $topo(['x.example', 'y.example'], $e)[4]);
        self::assertSame(['1 x.example 7', '2 Y.example 6', '3 (local) 5'], $topo([], $e, 9, true));
        self::assertSame(['1 x.example 12', '2 Y.example 6'], $topo(['x.example'], $e, 9, true));
        self::assertSame('1 [um@y.example 4294967295', $topo([], Contador::BytesEnviados)[0]);
    }

    /** 5 GiB in a day read as 1 GiB; 3 GiB do not; nor does a day whose messages are only many. */
    public function testBytesQueRecomecam(): void
    {
        $gib = 1 << 30;
        $grandes = fn (int $n, string $classe): array => array_map(
            static fn (int $i): string => "10:00 1 1 G$i $classe ana@x.example $gib", range(1, $n));
        $dias = ['10' => [5, 'INTERNO', true], '11' => [3, 'INTERNO', false], '12' => [5, 'SMTPCONNEXT', true],
            '13' => [3, 'SMTPCONNEXT', false]];
        foreach ($dias as $dia => [$n, $classe, $incerto]) {
            $bytes = $n * $gib % (1 << 32);
            $bytes = $bytes >= 1 << 31 ? $bytes - (1 << 32) : $bytes;  // as the engine prints it
            [$i, $e] = $classe === 'INTERNO' ? [[$n, $bytes], [0, 0]] : [[0, 0], [$n, $bytes]];
            $this->arvore->eventos("2026-03-$dia", ...$grandes($n, $classe))
                ->contas("2026-03-$dia", [0, 0, 0, 0, ...$i, ...$e], [10 => ["ana@x.example $n $bytes 0 0 0 0 0 0"]]);
            $r = $this->arvore->relatorios();
            $p = $this->periodo((string) $dia);
            foreach ([$r->totais($p), $r->porUsuario($p, ['ana@x.example']), $r->topo($p, Contador::BytesEnviados)] as $linhas) {
                foreach ($linhas as $linha) {
                    self::assertSame($incerto, $linha->bytesIncertos(), "dia $dia");
                }
            }
        }
        self::assertSame(3 * $gib, iterator_to_array($r->totais($this->periodo('11')))[0]->bytesInternas);
    }

    /** A day with many megabytes of events, where samples speak; one giant hides between them. */
    public function testBytesDeUmDiaGrande(): void
    {
        $linhas = [];
        for ($i = 0; $i < 12000; ++$i) {
            $linhas[] = sprintf('%02d:%02d 1 1 %016X INTERNO usuario%d@x.example 100000', $i / 500, $i / 9 % 60, $i, $i % 90);
        }
        $certo = fn (array $totais, array $contas): bool => iterator_to_array($this->arvore->contas('2026-03-10', $totais, $contas)
            ->relatorios()->totais($this->periodo('10')))[0]->bytesIncertos();
        $this->arvore->eventos('2026-03-10', ...$linhas);
        self::assertFalse($certo([0, 0, 0, 0, 12000, 1200000000, 0, 0], []));
        array_splice($linhas, 6000, 0, ['12:00 1 1 G1 INTERNO g@x.example 2147483647', '12:00 1 1 G2 INTERNO g@x.example 2147483647']);
        $this->arvore->eventos('2026-03-10', ...$linhas);
        self::assertTrue($certo([0, 0, 0, 0, 12002, 1199999998, 0, 0], [12 => ['g@x.example 2 -2 0 0 0 0 0 0']]));
        $este = array_map(fn (string $l): string => str_replace(' 100000', ' 500000', $l), $linhas);
        $this->arvore->eventos('2026-03-10', ...$este);
        self::assertTrue($certo([0, 0, 0, 0, 12000, 6000000000 - (1 << 32), 0, 0], []));
    }

    /** Hours of several days: none wraps within a day, one does in the sum. */
    public function testHorasQueRecomecam(): void
    {
        foreach (['10', '11', '12'] as $dia) {
            $eventos = [];
            foreach (range(1, 4) as $i) {
                $hora = $i < 4 ? '10' : '15';
                array_push($eventos, "$hora:00 1 1 H$dia$i INTERNO ana@x.example 500000000", "$hora:01 2 4 H$dia$i");
            }
            $this->arvore->eventos("2026-03-$dia", ...$eventos)
                ->contas("2026-03-$dia", [0, 0, 0, 0, 4, 2000000000, 0, 0], []);
        }
        $incertas = fn (Periodo $p): array => array_keys(array_filter(array_map(
            static fn ($h): bool => $h->bytesIncertos(), $this->arvore->relatorios()->horas($p))));
        self::assertSame([10], $incertas($this->periodo('10', '12')));
        self::assertSame([], $incertas($this->periodo('10', '11')));
    }

    /** Every byte but NUL, blank and line ends, in addresses, ids and texts, comes out and is found again. */
    public function testTodosOsBytes(): void
    {
        $eventos = $contas = [];
        for ($b = 1; $b < 256; ++$b) {
            if (!in_array($b, [0x0A, 0x0D, 0x20], true)) {
                $c = chr($b);
                array_push($eventos, "10:00 1 1 I{$c}D$b INTERNO a{$c}$b@x.example 100", "10:01 2 9 I{$c}D$b b{$c}$b@y.example",
                    "10:02 2 10 I{$c}D$b 550 nao{$c}ha");
                $contas[] = "a{$c}$b@x.example 1 1 0 0 0 0 0 0";
            }
        }
        $this->arvore->eventos('2026-03-10', ...$eventos)->contas('2026-03-10', [0, 0, 0, 0, 0, 0, 0, 0], [10 => $contas]);
        [$r, $p] = [$this->arvore->relatorios(), $this->periodo('10')];
        $vistas = 0;
        foreach ($r->mensagens($p, new Filtro(todas: true)) as $m) {
            $c = mb_convert_encoding(substr(mb_convert_encoding($m->id, 'ISO-8859-1', 'UTF-8'), 1, 1), 'UTF-8', 'ISO-8859-1');
            self::assertTrue(mb_check_encoding($m->id . $m->remetente, 'UTF-8'));
            $rastro = $r->rastro($m->id);
            self::assertSame($m->remetente, $rastro->remetente);
            self::assertSame("550 nao{$c}ha ", $rastro->texto);
            self::assertSame(substr_replace($m->remetente, 'b', 0, 1), str_replace('y.', 'x.', $rastro->destinatarios[0]->nome));
            if ($c !== ',') {
                self::assertSame([$m->id], array_column(iterator_to_array($r->mensagens($p, new Filtro(usuario: $m->remetente)), false), 'id'));
                // The engine ends a name of a statistics file at any white space.
                $linhas = ctype_space($c) ? 0 : 1;
                self::assertCount($linhas, iterator_to_array($r->porUsuario($p, [$m->remetente])), rawurlencode($m->remetente));
            }
            ++$vistas;
        }
        self::assertSame(252, $vistas);
        foreach ((new Exportacao($this->arvore->relay()))->eventos($p) as $e) {
            self::assertTrue(mb_check_encoding($e->mensagem . $e->nome . $e->texto, 'UTF-8'));
        }
        self::assertCount(252, $r->topo($p, n: 999));
    }

    /** Letters fold in ASCII only, whatever the locale. */
    public function testDobraSoAscii(): void
    {
        self::assertTrue((new Nome('ÁNA@x'))->nomeia("\xC1na@X"));
        self::assertFalse((new Nome('ÁNA@x'))->nomeia("\xE1na@x"));
    }

    /** Every value that a row can have and every column has its words in both languages. */
    public function testRotulos(): void
    {
        foreach ([new Rotulos('pt'), new Rotulos('en')] as $rotulos) {
            foreach ([...\Vorna\Mrel\Sentido::cases(), ...\Vorna\Mrel\Estado::cases(), ...Contador::cases(), ...Exportacao::tipos()] as $valor) {
                self::assertNotSame('', $rotulos->valor($valor));
            }
            foreach (Rotulos::tabelas() as $tabela) {
                foreach (Rotulos::colunas($tabela) as $coluna) {
                    self::assertNotSame('', $rotulos->coluna($tabela, $coluna));
                    self::assertMatchesRegularExpression('/^\p{Lu}.+\.$/u', $rotulos->definicao($tabela, $coluna));
                }
            }
        }
    }
}
