<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Vorna\Mrel\Falha;
use Vorna\Mrel\Formato\Json;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Rotulos;
use Vorna\Mrel\Saude\Guardado;
use Vorna\Mrel\Saude\Inteiro;
use Vorna\Mrel\Saude\Metricas;
use Vorna\Mrel\Saude\Nivel;
use Vorna\Mrel\Saude\Resultado;
use Vorna\Mrel\Saude\Verificacao;
use Vorna\Mrel\Saude\Verificador;
use Vorna\Mrel\Tabelas;

/** A command that tells whether all is well, to people and to monitoring systems. Its exit code is the answer. */
abstract class Checagem extends Comando
{
    public const OPCOES = ['json', 'prom', 'sem', 'por-hora'];
    public const TABELAS = ['saude' => 'Com --formato / With --formato'];
    public const VARIOS = true;

    abstract protected function verificador(Relay $relay, int $porHora): Verificador;

    /** Whether pages show this result. */
    protected function guarda(): bool
    {
        return false;
    }

    /** @return list<string> */
    abstract protected function nomes(): array;

    final protected function responde(Pedido $pedido, Saida $saida): int
    {
        // Whatever goes wrong here, nobody may take it for a warning, which is code 1.
        try {
            $resultados = $this->resultados($pedido);
            $saida->escreve($this->textos($resultados, $pedido));
            return self::pior($resultados)->codigo();
        } catch (UsoErrado $e) {
            throw $e;
        } catch (SaidaPerdida $e) {
            $e->leitorSaiu() || Aplicacao::diz($e->frase($pedido->lingua));
        } catch (\Throwable $e) {
            $frase = $e instanceof Falha
                ? $e->frase($pedido->lingua) : sprintf('%s (%s:%d)', $e->getMessage(), basename($e->getFile()), $e->getLine());
            $saida->escreve(['VTMREL UNKNOWN - ' . self::naLinha($frase) . "\n"]);
        }
        return Nivel::Desconhecido->codigo();
    }

    /** @return non-empty-list<Resultado> */
    private function resultados(Pedido $pedido): array
    {
        $porHora = $pedido->numero('por-hora') ?? Verificador::POR_HORA;
        $sem = $this->sem($pedido);
        $resultados = [];
        foreach ($pedido->relays as $relay) {
            $resultados[] = $resultado = $this->verificador($relay, $porHora)->resultado($sem);
            if ($this->guarda() && !Guardado::grava($relay, $resultado)) {
                Aplicacao::diz($pedido->lingua === 'en'
                    ? "the result could not be kept in $relay->saude: check owner and permissions."
                    : "o resultado não pôde ser guardado em $relay->saude: confira dono e permissões.");
            }
        }
        $arquivo = $pedido->texto('prom');
        if ($arquivo !== null && !Inteiro::escreve($arquivo, Metricas::prometheus($resultados))) {
            $a = Falha::cita($arquivo);
            $resultados[] = array_pop($resultados)->mais(new Verificacao('prom', Nivel::Desconhecido, [
                "$a não pôde ser escrito.", "$a could not be written.",
            ], ['Confira dono, permissões e espaço.', 'Check owner, permissions and room.']));
        }
        return $resultados;
    }

    /** @return list<string> */
    private function sem(Pedido $pedido): array
    {
        $sem = preg_split('/[,;\s]+/', $pedido->texto('sem') ?? '', -1, PREG_SPLIT_NO_EMPTY);
        foreach ($sem as $nome) {
            in_array($nome, $this->nomes(), true) || throw UsoErrado::valor('sem', $nome, $this->nomes());
        }
        return $sem;
    }

    /**
     * @param non-empty-list<Resultado> $resultados
     * @return iterable<string>
     */
    private function textos(array $resultados, Pedido $pedido): iterable
    {
        if ($pedido->marcada('json') || $pedido->texto('formato') === 'json') {
            return [Json::texto(self::arvore($resultados, $pedido->lingua)) . "\n"];
        }
        if ($pedido->texto('formato') !== null || $pedido->marcada('excel')) {
            return $pedido->comoEscrever()->pedacos(Tabelas::saude($resultados, $pedido->lingua));
        }
        return $this->linhas($resultados, $pedido->lingua);
    }

    /** That of the relay; of several, each check names its relay. */
    private static function arvore(array $resultados, string $lingua): array
    {
        $arvore = $resultados[0]->arvore($lingua);
        if (count($resultados) > 1) {
            $arvore['estado'] = self::pior($resultados)->value;
            $arvore['verificacoes'] = [];
            foreach ($resultados as $r) {
                foreach ($r->arvore($lingua)['verificacoes'] as $v) {
                    $arvore['verificacoes'][] = ['relay' => $r->relay] + $v;
                }
            }
        }
        return $arvore;
    }

    /** The first line is for a monitoring system, the others for who looks after it. */
    private function linhas(array $resultados, string $lingua): \Generator
    {
        $varios = count($resultados) > 1;
        $resumos = $dados = [];
        foreach ($resultados as $r) {
            $nomes = implode(', ', array_map(static fn (Verificacao $v): string => $v->nome, $r->problemas()));
            $resumos[] = "$r->relay: " . ($nomes ?: 'ok');
            $dados[] = Metricas::desempenho($r, $varios ? "{$r->relay}_" : '');
        }
        yield 'VTMREL ' . self::pior($resultados)->palavra() . ' - ' . self::naLinha(implode('; ', $resumos))
            . rtrim(' | ' . implode(' ', array_filter($dados)), ' |') . "\n";
        $rotulos = new Rotulos($lingua);
        foreach ($resultados as $r) {
            foreach ($r->verificacoes as $v) {
                $nome = $varios ? "$r->relay: $v->nome" : $v->nome;
                $frases = trim($v->texto($lingua) . ' ' . $v->conselho($lingua));
                yield self::naLinha("[{$rotulos->valor($v->nivel)}] $nome: $frases") . "\n";
                foreach ($v->detalhes($lingua) as $detalhe) {
                    yield '    ' . self::naLinha($detalhe) . "\n";
                }
            }
        }
    }

    private static function pior(array $resultados): Nivel
    {
        return Nivel::pior(...array_map(static fn (Resultado $r): Nivel => $r->nivel(), $resultados));
    }

    /** What may stand in one line of a monitoring system, which takes "|" for the begin of performance data. */
    private static function naLinha(string $texto): string
    {
        return preg_replace('/\s+/', ' ', strtr($texto, '|', '/'));
    }
}
