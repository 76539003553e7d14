<?php

// The reports in SQL are those of the library, cell by cell, over a month of generated mail: in PostgreSQL, on one
// server and on three, and over the same export in other databases.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use Vorna\Mrel\Contador;
use Vorna\Mrel\Filtro;
use Vorna\Mrel\Frota\Banco;
use Vorna\Mrel\Frota\Envio;
use Vorna\Mrel\Relatorios;
use Vorna\Mrel\Tabelas;

final class VistasTest extends Caso
{
    private static function enviaTudo(): void
    {
        $envio = new Envio(self::mes(), Banco::abre(self::$cluster->dsn()));
        array_map($envio->dia(...), $envio->todos(self::periodo()));
    }

    private static function vista(string $colunas, string $vista, string $onde, string $ordem): array
    {
        return Espelho::celulas(self::$cluster->sql("SELECT $colunas FROM $vista WHERE $onde ORDER BY $ordem"));
    }

    /** @param \Closure(string): list<list<?string>> $responde */
    private static function iguais(\Closure $responde): void
    {
        $esperado = Espelho::esperado(self::mes(), self::periodo());
        self::assertCount(31, $esperado['dias']);
        self::assertCount(31 * 24, $esperado['horas']);
        self::assertGreaterThan(31 * 100, count($esperado['topo']));
        foreach (Espelho::consultas('matriz') as $vista => $consulta) {
            self::assertSame($esperado[$vista], Espelho::celulas($responde($consulta)), $vista);
        }
    }

    public function testIguaisTodosOsDias(): void
    {
        self::enviaTudo();
        self::iguais(self::$cluster->sql(...));
    }

    /** Of those who sent, received or failed most: their days and messages. */
    public function testDeUsuarios(): void
    {
        self::enviaTudo();
        $r = new Relatorios(self::mes());
        $nomes = [];
        foreach ([Contador::Enviadas, Contador::Recebidas, Contador::Erros] as $por) {
            array_push($nomes, ...array_column($r->topo(self::periodo(), $por, 3), 'nome'));
        }
        $instante = "replace(to_char(quando AT TIME ZONE 'Atlantic/Azores', 'YYYY-MM-DD HH24:MI:SS'), ' ', 'T')";
        $vistos = [];
        foreach (array_unique($nomes) as $nome) {
            $onde = "relay = 'matriz' AND usuario = '" . pg_escape_string($nome) . "'";
            $tabela = Tabelas::diasDeUsuario($r->porUsuario(self::periodo(), [$nome]));
            $esperado = Espelho::celulas($tabela->linhas);
            self::assertSame($esperado, self::vista(implode(', ', $tabela->colunas), 'dias_usuario', $onde, 'dia'));
            foreach (self::periodo()->cadaDia() as $dia) {
                $esperado = Espelho::celulas(Tabelas::mensagens($r->mensagens($dia, new Filtro(usuario: $nome)))->linhas);
                $esperado = array_map(static fn (array $l): array => array_replace($l, [2 => substr($l[2], 0, 19)]), $esperado);
                $colunas = "id, sentido, $instante, remetente, bytes, estado";
                $achado = self::vista($colunas, 'mensagens', "$onde AND dia = '$dia->primeiro'", 'quando, id');
                self::assertSame($esperado, $achado, "$nome $dia->primeiro");
                array_push($vistos, ...array_column($achado, 1), ...array_column($achado, 5));
            }
        }
        self::assertSame([], array_diff(['enviada', 'recebida', 'sem_erro', 'com_erro', 'virus'], $vistos));
    }

    /** The configuration of docs/fleet.md: three servers, a relay each, asked together through the first. */
    public function testTresServidores(): void
    {
        $servidores = [self::$cluster, (new Cluster())->com('pgsql'), (new Cluster())->com('pgsql')];
        $arvores = [];
        foreach (['matriz', 'filial-sul', 'filial-norte'] as $i => $nome) {
            $arvores[$i] = new Arvore('UTC');
            $n = 10 ** $i;
            $arvores[$i]->eventos('2026-03-10', "08:15 1 1 M$i INTERNO ana@x.example $n", "09:16 1 4 M$i")
                ->contas('2026-03-10', [0, 0, 0, 0, $n, 100 * $n, 0, 0], [8 => ["ana@x.example $n 1 0 0 0 0 0 0"]]);
            $r = Vtmrel::roda(['envia', '--para=' . $servidores[$i]->dsn(), "--relay=$nome", '--dados=' . $arvores[$i]->dados,
                '--fuso=UTC', '--de=2026-03-10']);
            self::assertSame([0, ''], [$r->codigo, $r->erros]);
        }
        self::$cluster->sql('CREATE DATABASE geral');
        self::$cluster->com('pgsql-geral', 'geral');
        preg_match('/```sql\n-- geral\n(.*?)```/s', file_get_contents(__DIR__ . '/../../docs/fleet.md'), $m);
        $sql = $m[1];
        foreach ($servidores as $i => $servidor) {
            $sql = str_replace("'db" . $i + 1 . ".example'", "'$servidor->dir'", $sql, $vezes);
            self::assertSame(1, $vezes);
        }
        self::$cluster->sql(str_replace("'leitor'", "'frota'", $sql), 'geral');
        $pergunta = static fn (string $sql): array => self::$cluster->sql($sql, 'geral');
        self::assertSame([['2026-03-10', '111', '11100']], $pergunta('SELECT dia, sum(internas), sum(bytes_internas) FROM dias GROUP BY dia'));
        self::assertSame(
            [['filial-norte', 'ana@x.example', '100'], ['filial-sul', 'ana@x.example', '10'], ['matriz', 'ana@x.example', '1']],
            $pergunta("SELECT relay, usuario, valor FROM topo WHERE por = 'enviadas' ORDER BY 1")
        );
        self::assertSame([['filial-sul', '1', '10']], $pergunta('SELECT relay, internas, bytes_internas FROM horas WHERE bytes_internas = 10 AND hora = 9'));
        self::assertSame([['M2']], $pergunta("SELECT id FROM mensagens WHERE usuario = 'ana@x.example' AND relay = 'filial-norte'"));
        // A question about one relay goes to its server alone.
        $plano = implode("\n", array_column($pergunta("EXPLAIN (VERBOSE) SELECT * FROM rastro WHERE relay = 'filial-sul' AND id = 'M1'"), 0));
        self::assertStringContainsString('filial-sul', $plano);
        self::assertSame(1, substr_count($plano, 'Foreign Scan'));
        self::assertMatchesRegularExpression("/Remote SQL: .*mensagem = 'M1'/", $plano);
        pg_close($servidores[2]->conecta());
        unset($servidores);
    }

    /** @return array<string, array{string, ?string}> where its packages of npm are; null: not installed for this run */
    public static function outros(): array
    {
        $outros = ['duckdb' => ['duckdb', getenv('VT_NPM')]];
        return getenv('VT_CHDB') ? [...$outros, 'clickhouse' => ['clickhouse', getenv('VT_CHDB')]] : $outros;
    }

    /**
     * The same export in another database, loaded as its schema says.
     *
     * @dataProvider outros
     */
    public function testOutrosBancos(string $banco, string $npm): void
    {
        $pasta = sys_get_temp_dir() . '/vt_analise_' . bin2hex(random_bytes(4));
        mkdir($pasta);
        $esquema = Vtmrel::roda(['esquema', $banco])->saida;
        $comandos = [$esquema];
        [$de, $ate] = self::DIAS;
        foreach (['totais', 'usuarios', 'eventos'] as $tabela) {
            Vtmrel::roda(['exporta', $tabela, '--relay=matriz', '--dados=' . self::mes()->dados, '--fuso=Atlantic/Azores',
                "--de=$de", "--ate=$ate"], saida: "$pasta/$tabela.csv");
            array_push($comandos, ...self::carga($banco, $tabela, "$pasta/$tabela", $esquema));
        }
        $comandos[] = "INSERT INTO relays VALUES ('matriz', 'Atlantic/Azores', 'metalurgica.example')";
        file_put_contents("$pasta/pedido.json", json_encode([$comandos, Espelho::consultas('matriz')]));
        $r = Vtmrel::executa(['node', __DIR__ . ($banco === 'duckdb' ? '/duckdb.mjs' : '/clickhouse.cjs'), $npm, "$pasta/pedido.json"]);
        self::assertSame([0, ''], [$r->codigo, $r->erros]);
        $respostas = json_decode($r->saida, true);
        $deQuem = array_flip(Espelho::consultas('matriz'));
        self::iguais(static fn (string $consulta): array => $respostas[$deQuem[$consulta]]);
        $banco === 'duckdb' && self::assertNotEmpty(glob("$pasta/eventos/dia=2026-03-29/*.parquet"));
        Arvore::apaga($pasta);
    }

    /** @return list<string> what loads a file of the export: in DuckDB by way of Parquet */
    private static function carga(string $banco, string $tabela, string $arquivo, string $esquema): array
    {
        if ($banco === 'duckdb') {
            return [
                "COPY (FROM le_$tabela('$arquivo.csv')) TO '$arquivo' (FORMAT parquet, PARTITION_BY (dia))",
                "INSERT INTO $tabela BY NAME SELECT * FROM read_parquet('$arquivo/*/*.parquet', hive_partitioning = true)",
            ];
        }
        preg_match("/INSERT INTO eventos (SELECT .*)\n-- +FROM input\('(.*)'\) FORMAT CSVWithNames/", $esquema, $m);
        return [$tabela === 'eventos'
            ? "INSERT INTO eventos $m[1] FROM file('$arquivo.csv', CSVWithNames, '$m[2]')"
            : "INSERT INTO $tabela SELECT * FROM file('$arquivo.csv', CSVWithNames)"];
    }
}
