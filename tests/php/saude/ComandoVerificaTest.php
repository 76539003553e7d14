<?php

// What a monitoring system sees of the checks: exit codes, the first line, JSON, the file for Prometheus.

declare(strict_types=1);

namespace Vorna\Mrel\Testes\Saude;

use PHPUnit\Framework\TestCase;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Saude\{Guardado, Nivel};
use Vorna\Mrel\Testes\{Arvore, Vtmrel};

final class ComandoVerificaTest extends TestCase
{
    private Arvore $arvore;
    private string $ini;

    /** Two relays whose checks need no logs: one is up to date, the other lacks a day. */
    protected function setUp(): void
    {
        $this->arvore = new Arvore('UTC');
        $raiz = $this->arvore->dados;
        $this->ini = "$raiz/r.ini";
        $texto = '';
        foreach (['boa' => [-2, -1], 'ma "x"' => [-3, -1]] as $nome => $dias) {
            $um = new Arvore('UTC');
            foreach ($dias as $dia) {
                $um->contas(gmdate('Y-m-d', time() + 86400 * $dia), [3, 1, 2, 0, 10, 1000, 20, -1], [5 => ['ana@x.example 2 20 0 0 0 0 0 0']])
                    ->eventos(gmdate('Y-m-d', time() + 86400 * $dia), '08:00 1 4 A1');
            }
            rename($um->dados, $dados = "$raiz/" . $nome[0]);
            mkdir($um->dados);
            file_put_contents("$dados.ponto", '1 ' . gmdate('D M d') . ' 00:00:00 ' . gmdate('Y') . "\n\r\nA1 1 N N N N 1 0 a\r\nA2 1 N N N N 1 0 b");
            $texto .= "[$nome]\ndados=$dados\nponto=$dados.ponto\nfuso=UTC\nsaude=$dados.saude\n";
        }
        file_put_contents($this->ini, $texto);
    }

    private function verifica(string ...$mais): Vtmrel
    {
        return Vtmrel::roda(['verifica', "--config=$this->ini", ...$mais]);
    }

    public function testCodigos(): void
    {
        $casos = [
            [0, 'VTMREL OK - boa: ok | ', ['--relay=boa', '--sem=logs']],
            [2, 'VTMREL CRITICAL - ma "x": dias | ', ['--relay=ma "x"', '--sem=logs,trava']],
            [2, 'VTMREL CRITICAL - boa: ok; ma "x": dias | \'boa_atraso\'=0;0;1;0 ', ['--without=logs']],
            [3, 'VTMREL UNKNOWN - boa: logs | ', ['--relay=boa']],
            [2, 'VTMREL CRITICAL - ma "x": dias, logs | ', ['--relay=ma "x"']],
            [1, 'VTMREL WARNING - boa: abuso | \'atraso\'=0;0;1;0 \'mensagens\'=30;;;0 \'em_curso\'=2;;;0 \'lacunas\'=0;;0;0' . "\n",
                ['--relay=boa', '--sem=logs', '--per-hour=1']],
            [3, '', ['--nada']], [3, '', ['--relay=outro']], [3, '', ['--sem=nada']], [3, '', ['--por-hora=x']], [3, '', ['--config=/nao']],
        ];
        foreach ($casos as [$codigo, $comeco, $opcoes]) {
            $r = $this->verifica(...$opcoes);
            self::assertSame([$codigo, $comeco === ''], [$r->codigo, $r->erros !== ''], implode(' ', $opcoes) . $r->saida . $r->erros);
            self::assertSame($comeco, substr($r->saida, 0, strlen($comeco)));
            self::assertLessThanOrEqual(1, substr_count($r->saida, '|'), 'what follows a second one would be performance data');
        }
        $r = $this->verifica('--relay=ma "x"', '--sem=logs', '--lingua=en');
        self::assertStringContainsString("[critical] dias: Days are missing: " . gmdate('Y-m-d', time() - 2 * 86400) . '. Put them back', $r->saida);
        self::assertSame(3, Vtmrel::roda(['verifica', "--config=$this->ini"], saida: '/dev/full')->codigo, 'nobody got the answer');
    }

    public function testJson(): void
    {
        $um = json_decode($this->verifica('--relay=boa', '--sem=logs', '--json')->saida, true, 5, JSON_THROW_ON_ERROR);
        self::assertSame(['estado', 'quando', 'verificacoes'], array_keys($um));
        self::assertSame(['nome' => 'dias', 'estado' => 'ok', 'texto' => 'Nenhum dia falta desde ' . gmdate('Y-m-d', time() - 2 * 86400) . '.', 'conselho' => ''], $um['verificacoes'][2]);
        self::assertEqualsWithDelta(time(), strtotime($um['quando']), 60);
        $todos = json_decode($this->verifica('--sem=logs', '--formato=json')->saida, true, 5, JSON_THROW_ON_ERROR);
        self::assertSame(['critico', 20], [$todos['estado'], count($todos['verificacoes'])]);
        self::assertSame(['boa', 'ma "x"'], array_values(array_unique(array_column($todos['verificacoes'], 'relay'))));
        $csv = Vtmrel::csv($this->verifica('--sem=logs', '--formato=csv')->saida);
        self::assertSame(['ma "x"', 'dias', 'critico'], array_slice($csv[13], 0, 3));
        // What pages show.
        $lido = Guardado::le(new Relay('/nao', fuso: new \DateTimeZone('UTC'), saude: "{$this->arvore->dados}/m.saude"));
        self::assertSame([Nivel::Critico, 'dias'], [$lido->nivel(), $lido->problemas()[0]->nome]);
        unlink("{$this->arvore->dados}/b.saude");
        mkdir("{$this->arvore->dados}/b.saude");
        $r = $this->verifica('--relay=boa', '--sem=logs');
        self::assertSame(0, $r->codigo);
        self::assertStringContainsString('não pôde ser guardado', $r->erros);
    }

    public function testPrometheus(): void
    {
        $arquivo = "{$this->arvore->dados}/v.prom";
        self::assertSame(2, $this->verifica('--sem=logs', "--prom=$arquivo")->codigo);
        $texto = file_get_contents($arquivo);
        $nomes = $valores = [];
        foreach (explode("\n", rtrim($texto, "\n")) as $linha) {
            if (preg_match('/^# (HELP|TYPE) (vtmrel_\w+) (.+)$/', $linha, $m)) {
                $nomes[$m[2]][$m[1]] = $m[3];
            } else {
                self::assertMatchesRegularExpression('/^vtmrel_\w+\{relay="(boa|ma \\\\"x\\\\")"(,\w+="[^"\\\\]+")?\} -?\d+$/', $linha);
                [$nome, $valor] = [substr($linha, 0, strrpos($linha, ' ')), substr(strrchr($linha, ' '), 1)];
                self::assertArrayNotHasKey($nome, $valores);
                self::assertSame('gauge', $nomes[strstr($nome, '{', true)]['TYPE'] ?? null, 'its type comes first');
                $valores[$nome] = (int) $valor;
            }
        }
        self::assertSame(['vtmrel_check_status', 'vtmrel_check_timestamp_seconds', 'vtmrel_complete_until_timestamp_seconds', 'vtmrel_day_messages',
            'vtmrel_day_size_bytes', 'vtmrel_day_marked_messages', 'vtmrel_inflight_messages', 'vtmrel_day_gaps', 'vtmrel_build_info'], array_keys($nomes));
        $espera = [
            'vtmrel_check_status{relay="ma \"x\"",check="dias"}' => 2, 'vtmrel_day_gaps{relay="ma \"x\""}' => 1, 'vtmrel_day_gaps{relay="boa"}' => 0,
            'vtmrel_complete_until_timestamp_seconds{relay="boa"}' => strtotime('today 00:00 UTC'), 'vtmrel_inflight_messages{relay="boa"}' => 2,
            'vtmrel_day_size_bytes{relay="boa",origin="other"}' => 0xFFFFFFFF, 'vtmrel_day_marked_messages{relay="boa",mark="error"}' => 2,
        ];
        self::assertSame($espera, array_merge($espera, array_intersect_key($valores, $espera)));
        chmod($this->arvore->dados, 0500);
        $r = Vtmrel::semDireitos(['verifica', "--config=$this->ini", '--relay=boa', '--sem=logs', "--prom=$arquivo"]);
        chmod($this->arvore->dados, 0700);
        self::assertSame(3, $r->codigo);
        self::assertStringContainsString('[desconhecido] prom:', $r->saida);
        self::assertSame($texto, file_get_contents($arquivo), 'the old one stays whole');
    }
}
