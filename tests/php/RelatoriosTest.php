<?php

// Figures: against the raw classes where those are right, against sums over the day files where they are
// not; on five days of generated mail, one of them of 23 hours.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Contador;
use Vorna\Mrel\Estado;
use Vorna\Mrel\Exportacao;
use Vorna\Mrel\Filtro;
use Vorna\Mrel\Instantes;
use Vorna\Mrel\Linha\ContasDeUsuario;
use Vorna\Mrel\Linha\Mensagem;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Relatorios;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Sentido;

final class RelatoriosTest extends TestCase
{
    private Relay $relay;
    private Relatorios $r;
    private Periodo $p;

    protected function setUp(): void
    {
        $fuso = new \DateTimeZone('Atlantic/Azores');
        $this->relay = new Relay(getenv('VT_DADOS') . '/dat', fuso: $fuso);
        $this->r = new Relatorios($this->relay);
        $this->p = Periodo::de('2026-03-26', '2026-03-30', $fuso);
    }

    /** Rows of the extension, asked as the period says. */
    private function cru(string $metodo, array $argumentos, string $fetch = 'fetch'): array
    {
        putenv('TZ=Atlantic/Azores');
        $m = new \vt_mrel();
        $m->setDataDir($this->relay->dados);
        $itr = new \vt_mrel_itr();
        $m->$metodo(...[...$argumentos, $itr->getHandle()]);
        putenv('TZ');
        $fetch === 'fetch' || $itr->fetch();
        for ($linhas = []; $itr->$fetch();) {
            $linhas[] = get_object_vars($itr);
        }
        return $linhas;
    }

    private static function colunas(array $linhas, string ...$colunas): array
    {
        return array_map(fn (array $l): array => array_map(fn (string $c) => $l[$c], $colunas), $linhas);
    }

    /** @return array<string, list<int>> counters added up over the statistics files, by day or day and hour */
    private function contas(string $usuario, bool $porHora): array
    {
        $somas = [];
        foreach ((new Exportacao($this->relay))->usuarios($this->p) as $c) {
            if ($c->usuario === $usuario) {
                $chave = $porHora ? "$c->dia $c->inicio" : $c->dia;
                $linha = [$c->enviadas, $c->bytesEnviados, $c->recebidas, $c->bytesRecebidos, $c->spam, $c->virus, $c->erros];
                $somas[$chave] = array_map(fn ($a, $b) => ($a ?? 0) + $b, $somas[$chave] ?? [], $linha);
            }
        }
        return $somas;
    }

    public function testTotais(): void
    {
        $crus = self::colunas($this->cru('msgs_per_day', [...$this->p->dias(), ' ']), 'msgs_int', 'bytes_int', 'msgs_ext',
            'bytes_ext', 'spam', 'virus', 'error');
        $linhas = iterator_to_array($this->r->totais($this->p));
        self::assertSame($crus, array_map(fn ($l) => [$l->internas, $l->bytesInternas, $l->externas, $l->bytesExternas,
            $l->spam, $l->virus, $l->comErro], $linhas));
        self::assertSame(['2026-03-26', '2026-03-27', '2026-03-28', '2026-03-29', '2026-03-30'], array_column($linhas, 'dia'));
        self::assertFalse(array_reduce($linhas, fn ($sim, $l) => $sim || $l->bytesIncertos(), false));
        self::assertGreaterThan(1000, $linhas[0]->internas + $linhas[0]->externas);
    }

    /** Of users the raw columns are crossed: the sums of the files say which is which. */
    public function testUsuarios(): void
    {
        $nomes = array_column($this->r->topo($this->p, Contador::Enviadas, 5), 'nome');
        self::assertCount(5, $nomes);
        $linhas = iterator_to_array($this->r->porUsuario($this->p, [$nomes[2], 'ninguem', $nomes[0], $nomes[2]]), false);
        self::assertSame([$nomes[2], $nomes[0]], array_values(array_unique(array_column($linhas, 'usuario'))));
        $diasDeUsuarios = array_map(fn ($l) => "$l->usuario $l->dia", $linhas);
        self::assertSame(array_values(array_unique($diasDeUsuarios)), $diasDeUsuarios);
        $spam = $erros = 0;
        foreach ([$nomes[2], $nomes[0]] as $nome) {
            $doUsuario = array_filter($linhas, fn ($l) => $l->usuario === $nome);
            $somas = array_map(fn ($l) => [$l->enviadas, $l->bytesEnviados, $l->recebidas, $l->bytesRecebidos, $l->spam,
                $l->virus, $l->comErro], $doUsuario);
            self::assertSame($this->contas($nome, false), array_combine(array_column($doUsuario, 'dia'), $somas));
            $horas = [];
            foreach ($this->r->horasDe($this->p, $nome) as $n => $h) {
                self::assertSame((int) $h->inicio->format('G'), $h->hora);
                $horas["$h->dia {$h->inicio->getTimestamp()}"] = [$h->enviadas, $h->bytesEnviados, $h->recebidas, $h->bytesRecebidos,
                    $h->spam, $h->virus, $h->comErro];
                $spam += $h->spam;
                $erros += $h->comErro;
            }
            self::assertCount(5 * 24, $horas);
            self::assertEquals($this->contas($nome, true), array_filter($horas, fn (array $h) => array_sum($h) > 0));
        }
        self::assertNotSame($spam, $erros, 'so that crossed columns show');
    }

    public function testHoras(): void
    {
        $crus = self::colunas($this->cru('msgs_per_hour', [...$this->p->eventos(), ' ']), 'msgs_int', 'bytes_int', 'msgs_ext',
            'bytes_ext', 'spam', 'virus', 'error');
        $horas = $this->r->horas($this->p);
        self::assertSame($crus, array_map(fn ($h) => [$h->internas, $h->bytesInternas, $h->externas, $h->bytesExternas,
            $h->spamOcorrencias, $h->virusOcorrencias, $h->comErro], $horas));
        self::assertSame(range(0, 23), array_column($horas, 'hora'));
        self::assertGreaterThan(6000, array_sum(array_column($crus, 0)) + array_sum(array_column($crus, 2)));
    }

    public function testMaiores(): void
    {
        foreach (Contador::cases() as $por) {
            $campo = lcfirst(str_replace('_', '', ucwords($por->value, '_')));
            $somas = $dominios = [];
            foreach ((new Exportacao($this->relay))->usuarios($this->p) as $c) {
                $nome = strtolower($c->usuario);
                $dominio = str_contains($nome, '@') ? substr($nome, strpos($nome, '@') + 1) : '(local)';
                $somas[$nome] = ($somas[$nome] ?? 0) + $c->$campo;
                $dominios[$dominio] = ($dominios[$dominio] ?? 0) + ($nome === '' ? 0 : $c->$campo);
            }
            unset($somas['']);
            foreach ([[$somas, false], [$dominios, true]] as [$esperadas, $deDominios]) {
                $esperadas = array_filter($esperadas);
                array_multisort(array_values($esperadas), SORT_DESC, array_keys($esperadas), SORT_ASC, SORT_STRING, $esperadas);
                $maiores = $this->r->topo($this->p, $por, 15, $deDominios);
                self::assertSame(array_slice($esperadas, 0, 15), array_combine(
                    array_map(strtolower(...), array_column($maiores, 'nome')), array_column($maiores, 'valor')));
                self::assertSame(range(1, count($maiores)), array_column($maiores, 'posicao'));
            }
        }
    }

    /** Sent or received alone are what the raw report answers to one range, row by row. */
    public function testMensagensDeUmLado(): void
    {
        $nomes = array_column($this->r->topo($this->p, Contador::Recebidas, 400), 'nome');
        $vistas = $virus = $erros = 0;
        foreach ($nomes as $nome) {
            $latin1 = mb_convert_encoding($nome, 'ISO-8859-1', 'UTF-8');
            foreach ([true, false] as $enviadas) {
                $filtro = $enviadas ? new Filtro(remetente: $nome) : new Filtro(destinatario: $nome);
                [$para, $de] = $enviadas ? ['', $latin1] : [$latin1, ''];
                $crus = $this->cru('user_msgs', [$para, $de, ...$this->p->eventos(), '', 0, 0]);
                $esperadas = array_map(fn (array $c) => [$c['msg_time'], $c['msg_id'], $enviadas, $c['msg_size'],
                    mb_convert_encoding($c['msg_sendername'], 'UTF-8', 'ISO-8859-1'), $c['virus'] === 1,
                    $c['virus'] === 0 && $c['error'] === 1], $crus);
                sort($esperadas);
                $linhas = array_map(fn (Mensagem $m) => [$m->quando->getTimestamp(), $m->id, $m->sentido === Sentido::Enviada,
                    $m->bytes ?? 0, $m->remetente ?? '', $m->estado === Estado::Virus, $m->estado === Estado::ComErro],
                    iterator_to_array($this->r->mensagens($this->p, $filtro), false));
                self::assertSame($esperadas, $linhas, "$nome " . ($enviadas ? 'enviou' : 'recebeu'));
                $vistas += count($linhas);
                $virus += count(array_filter(array_column($linhas, 5)));
                $erros += count(array_filter(array_column($linhas, 6)));
            }
        }
        self::assertGreaterThan(9000, $vistas);
        self::assertGreaterThan(10, $virus);
        self::assertGreaterThan(300, $erros);
    }

    /** Pages hold the same rows, backwards, wherever they and the blocks of the files end. */
    public function testPaginas(): void
    {
        $nomes = array_column([...$this->r->topo($this->p, Contador::Enviadas, 6), ...$this->r->topo($this->p, Contador::Recebidas, 6)], 'nome');
        $filtros = [['remetente' => $nomes[0], 'destinatario' => $nomes[6]], ['todas' => true, 'hora' => 9],
            ['usuario' => substr($nomes[0], 0, 2) . '*', 'minKb' => 200]];
        foreach ($nomes as $nome) {
            array_push($filtros, ['usuario' => $nome], ['remetente' => $nome, 'maxKb' => 9], ['destinatario' => $nome, 'hora' => 15]);
        }
        $ultimos = Periodo::ultimos(2, $this->p->ultimo, $this->p->fuso);
        foreach ($filtros as $n => $f) {
            foreach ([$this->p, $ultimos] as $p) {
                $todas = array_reverse(iterator_to_array($this->r->mensagens($p, new Filtro(...$f)), false));
                $tamanho = [700, 20000, 1 << 20][$n % 3];
                self::assertEquals($todas, Arvore::paginas($this->relay, $p, new Filtro(...$f), 37, $tamanho), json_encode($f));
            }
        }
    }

    /** Both sides and both names together are made of the lists of one side, by id. */
    public function testMensagensDosDoisLados(): void
    {
        $maior = $this->r->topo($this->p, Contador::Enviadas, 1)[0]->nome;
        $outro = $this->r->topo($this->p, Contador::Recebidas, 1)[0]->nome;
        $lista = fn (Filtro $f): array => array_column(iterator_to_array($this->r->mensagens($this->p, $f), false), null, 'id');
        $enviadas = $lista(new Filtro(remetente: $maior));
        $recebidas = $lista(new Filtro(destinatario: $maior));
        $todas = $lista(new Filtro(usuario: strtoupper($maior)));
        self::assertEqualsCanonicalizing(array_keys($enviadas + $recebidas), array_map('strval', array_keys($todas)));
        foreach ($todas as $id => $m) {
            $esperado = !isset($enviadas[$id]) ? Sentido::Recebida
                : (isset($recebidas[$id]) ? Sentido::Ambos : Sentido::Enviada);
            self::assertSame($esperado, $m->sentido);
            self::assertEquals($esperado === Sentido::Recebida ? $recebidas[$id]->quando : $enviadas[$id]->quando, $m->quando);
        }
        $entre = $lista(new Filtro(remetente: $maior, destinatario: $outro));
        $aceitas = $lista(new Filtro(destinatario: $outro));
        self::assertEqualsCanonicalizing(array_keys(array_intersect_key($enviadas, $aceitas)), array_keys($entre));
        self::assertNotEmpty($entre);
        $juntas = [];
        foreach ($this->p->cadaDia() as $dia) {
            foreach ($this->r->mensagens($dia, new Filtro(todas: true)) as $m) {
                $juntas[] = $m->id;
            }
        }
        self::assertSame($juntas, array_column(iterator_to_array($this->r->mensagens($this->p, new Filtro(todas: true)), false), 'id'));
        self::assertCount(5 * 1500, $juntas);
    }

    public function testRastro(): void
    {
        $estados = [];
        foreach ($this->r->mensagens($this->p, new Filtro(remetente: '*')) as $n => $m) {
            if ($n % 12 > 0) {
                continue;
            }
            putenv('TZ=Atlantic/Azores');
            $cru = $this->rastroCru($m->id);
            putenv('TZ');
            $r = $this->r->rastro($m->id);
            self::assertEquals($cru, [$r->remetente, $r->bytes, $r->submetida->getTimestamp(),
                (int) $r->encerrada?->getTimestamp(), $r->virus, $r->texto,
                array_map(fn ($d) => [$d->nome, $d->quando->getTimestamp(), $d->estado === Estado::Recusado, $d->texto],
                    $r->destinatarios)]);
            $estados[$r->estado->value] = true;
        }
        self::assertEqualsCanonicalizing(['virus', 'com_erro', 'entregue'], array_keys($estados));
        self::assertNull($this->r->rastro('0'));
        self::assertNull($this->r->rastro('nada'));
    }

    private function rastroCru(string $id): array
    {
        $m = new \vt_mrel();
        $m->setDataDir($this->relay->dados);
        $itr = new \vt_mrel_itr();
        $m->msg_trace($id, ...[...$this->p->eventos(), $itr->getHandle()]);
        $itr->fetch();
        $texto = fn (string $t) => mb_convert_encoding($t, 'UTF-8', 'ISO-8859-1');
        $r = [$texto($itr->msg_sendername), $itr->msg_size, $itr->msg_time, $itr->msg_end_time, $itr->virus === 1,
            $texto($itr->str_error), []];
        while ($itr->fetch_recipient()) {
            $r[6][] = [$texto($itr->recipient_name), $itr->recipient_time, $itr->error === 1, $texto($itr->recipient_status_msg)];
        }
        return $r;
    }

    /** Every line of the day files comes through, and times read as PHP's own formatting writes them. */
    public function testEmMassa(): void
    {
        $instantes = new Instantes($this->relay->fuso);
        $eventos = $usuarios = [];
        foreach ((new Exportacao($this->relay))->eventos($this->p) as $e) {
            $eventos[$e->dia] = ($eventos[$e->dia] ?? 0) + 1;
            self::assertSame($eventos[$e->dia], $e->n);
            if ($e->n % 50 === 0) {
                $quando = (new \DateTimeImmutable("@$e->segundos"))->setTimezone($this->relay->fuso);
                self::assertSame($quando->format('Y-m-d\TH:i:sP'), $instantes->texto($e->segundos));
            }
        }
        foreach (glob("{$this->relay->dados}/rels_03-26/compact_mail_*.txt") as $arquivo) {
            self::assertSame(count(file($arquivo)), $eventos['2026-03-' . substr($arquivo, -6, 2)]);
        }
        $linhas = array_sum(array_map(fn ($a) => count(preg_grep('/^[^[]/', file($a))) - 1,
            glob("{$this->relay->dados}/rels_03-26/mail_stat_*.txt")));
        self::assertCount($linhas, iterator_to_array((new Exportacao($this->relay))->usuarios($this->p), false));
    }
}
