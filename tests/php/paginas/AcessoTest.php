<?php

// What an administrator of some domains, or of none, gets to see: in-process, on a small relay of two domains.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Linha\HoraDeUsuario;
use Vorna\Mrel\Paginas\AcessoLista;
use Vorna\Mrel\Paginas\Aplicacao;
use Vorna\Mrel\Paginas\Auditoria;
use Vorna\Mrel\Paginas\Permissao;
use Vorna\Mrel\Paginas\Requisicao;
use Vorna\Mrel\Paginas\Resposta;
use Vorna\Mrel\Periodo;

final class AcessoTest extends TestCase
{
    private const DIA = '2026-03-10';

    private Arvore $arvore;
    /** @var list<string> */
    private array $auditoria = [];

    protected function setUp(): void
    {
        $this->arvore = (new Arvore())->contas(self::DIA, [0, 0, 0, 0, 3, 300, 0, 0], [
            8 => ['ana@a.example 2 200 1 50 0 1 0 0', 'ANA@A.example 1 5 0 0 0 0 0 0', 'rui@b.example 1 100 4 400 1 0 2 0'],
            9 => ['ana@a.example 0 0 3 30 0 0 0 0', 'bia 5 500 0 0 0 0 0 0', 'eva@xa.example 7 7 7 7 7 7 7 0'],
        ])->eventos(
            self::DIA,
            // From a to both domains; within b; from b to a and b.
            '08:00 1 1 PARAOSDOIS SMTPCONNINT ana@a.example 100',
            '08:01 2 2 PARAOSDOIS ana@a.example',
            '08:02 2 2 PARAOSDOIS rui@b.example',
            '08:03 2 4 PARAOSDOIS',
            '09:00 1 1 SODEB SMTPCONNINT rui@b.example 100',
            '09:01 2 2 SODEB eva@b.example',
            '09:02 2 4 SODEB',
            '10:00 1 1 DEBPARAAMBOS SMTPCONNINT rui@b.example 100',
            '10:01 2 2 DEBPARAAMBOS ana@a.example',
            '10:02 2 2 DEBPARAAMBOS eva@b.example',
            '10:03 2 4 DEBPARAAMBOS',
            '11:00 1 1 DEFORA SMTPCONNEXT zeca@c.example 100',
            '11:01 2 2 DEFORA rui@c.example',
            '11:02 2 4 DEFORA',
        );
        file_put_contents(
            "{$this->arvore->dados}/relays.ini",
            "[r]\ndados = {$this->arvore->dados}\ndominios = a.example; b.example\nfuso = {$this->arvore->fuso}\n"
        );
    }

    /** @param ?list<string> $dominios */
    private function pede(string $endereco, ?array $dominios): Resposta
    {
        [$caminho, $consulta] = explode('?', $endereco . '?', 3);
        parse_str($consulta, $parametros);
        $anota = function (string $linha): void {
            $this->auditoria[] = $linha;
        };
        return (new Aplicacao(
            new AcessoLista('ana', $dominios),
            "{$this->arvore->dados}/relays.ini",
            new Auditoria($anota),
            new \DateTimeImmutable('2026-03-11 09:00')
        ))->responde(new Requisicao('GET', $caminho, $parametros + ['de' => self::DIA]));
    }

    private static function corpo(Resposta $resposta): string
    {
        return implode('', [...$resposta->corpo]);
    }

    public function testNomes(): void
    {
        $relay = $this->arvore->relay('a.example', 'b.example');
        $casos = [
            [['A.example'], ['ana@a.example' => true, 'ana@A.EXAMPLE' => true, 'x@xa.example' => false,
                'ana@a.example@b.example' => false, 'ana@b.example@a.example' => true, '@a.example' => true, 'ana' => false, '' => false]],
            [['a.example', 'b.example'], ['ana' => true, 'ana@c.example' => false]],
            [[], ['ana@a.example' => false, 'ana' => false]],
            [null, ['ana@c.example' => true, '' => true]],
        ];
        foreach ($casos as [$dominios, $nomes]) {
            foreach ($nomes as $nome => $ve) {
                self::assertSame($ve, (new Permissao(new AcessoLista('', $dominios), $relay))->ve($nome), $nome);
            }
        }
        self::assertFalse((new Permissao(new AcessoLista('', ['a.example']), $this->arvore->relay()))->ve('ana'));
    }

    /** A message of other domains answers as one that is not there, however it is asked for. */
    public function testAdivinhar(): void
    {
        foreach (['/rastro?id=', '/rastro?formato=csv&id=', '/mensagens?id=', '/mensagens?formato=csv&id='] as $inicio) {
            $alheia = $this->pede($inicio . 'SODEB', ['a.example']);
            $nenhuma = $this->pede($inicio . 'NADAS', ['a.example']);
            self::assertSame($nenhuma->estado, $alheia->estado, $inicio);
            self::assertSame($nenhuma->cabecalhos, $alheia->cabecalhos, $inicio);
            self::assertSame(self::corpo($nenhuma), str_replace('SODEB', 'NADAS', self::corpo($alheia)), $inicio);
        }
        self::assertSame(404, $this->pede('/rastro?id=SODEB', ['a.example'])->estado);
        self::assertSame(200, $this->pede('/rastro?id=SODEB', ['b.example'])->estado);
        foreach (['usuario', 'remetente', 'destinatario'] as $campo) {
            $alheio = self::corpo($this->pede("/mensagens?$campo=rui@b.example", ['a.example']));
            $ninguem = self::corpo($this->pede("/mensagens?$campo=rux@b.example", ['a.example']));
            self::assertSame($ninguem, str_replace('rui', 'rux', $alheio));
        }
        // Who sees names without a domain does not see whatever begins like one.
        $inicio = '/mensagens?formato=csv&remetente=z*&destinatario=rui@c.example';
        self::assertSame(1, substr_count(self::corpo($this->pede($inicio, ['a.example', 'b.example'])), "\n"));
        self::assertSame(2, substr_count(self::corpo($this->pede($inicio, null)), "\n"));
        self::assertSame(422, $this->pede('/mensagens?usuario=r*', ['a.example'])->estado);
        self::assertSame(422, $this->pede('/mensagens?max_kb=9', ['a.example'])->estado);
    }

    /** The sender's side sees all of a message; a recipient's what happened to its own. */
    public function testParte(): void
    {
        self::assertStringContainsString('rui@b.example', self::corpo($this->pede('/rastro?id=PARAOSDOIS', ['a.example'])));
        $parte = self::corpo($this->pede('/rastro?id=DEBPARAAMBOS', ['a.example']));
        self::assertStringContainsString('ana@a.example', $parte);
        self::assertStringNotContainsString('eva@b.example', $parte);
        $csv = self::corpo($this->pede('/rastro?id=DEBPARAAMBOS&formato=csv', ['a.example']));
        self::assertSame(2, substr_count($csv, "\n"));
    }

    public function testSomas(): void
    {
        $periodo = Periodo::dia(self::DIA, new \DateTimeZone($this->arvore->fuso));
        $horas = [...$this->arvore->relatorios()->horasDosDominios($periodo, ['A.example'], false)];
        $contas = static fn (HoraDeUsuario $h): array =>
            [$h->hora, $h->enviadas, $h->bytesEnviados, $h->recebidas, $h->bytesRecebidos, $h->spam, $h->virus, $h->comErro];
        self::assertCount(24, $horas);
        self::assertSame([8, 3, 205, 1, 50, 1, 0, 0], $contas($horas[8]));
        self::assertSame([9, 0, 0, 3, 30, 0, 0, 0], $contas($horas[9]));
        $comNus = [...$this->arvore->relatorios()->horasDosDominios($periodo, ['A.example'], true)];
        self::assertSame([9, 5, 500, 3, 30, 0, 0, 0], $contas($comNus[9]));
        self::assertSame(
            "usuario,dia,enviadas,bytes_enviados,recebidas,bytes_recebidos,spam,virus,com_erro\n"
                . "a.example,2026-03-10,3,205,4,80,1,0,0\n",
            self::corpo($this->pede('/dias?formato=csv', ['a.example']))
        );
        self::assertSame(
            "posicao,usuario,valor\n1,ANA@A.example,3\n",
            self::corpo($this->pede('/maiores?formato=csv', ['a.example']))
        );
    }

    public function testNenhum(): void
    {
        foreach (array_keys(Aplicacao::PAGINAS) as $pagina) {
            $resposta = $this->pede("$pagina?id=SODEB&usuario=rui@b.example", []);
            self::assertSame($pagina === '/definicoes' ? 200 : 403, $resposta->estado, $pagina);
        }
    }

    /** One line, whatever somebody puts into an address. */
    public function testAuditoria(): void
    {
        $this->pede('/rastro?id=A%0A"B%1B%E1&outro=1', null);
        self::assertSame(
            ["quem=\"ana\" pagina=\"/rastro\" relay=\"r\" de=\"2026-03-10\" id=\"A\u{240A}\\\"B\u{241B}á\" estado=422"],
            $this->auditoria
        );
    }
}
