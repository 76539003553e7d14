<?php

// The reports in SQL are those of the library, cell by cell, over a month of generated mail.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use Vorna\Mrel\Contador;
use Vorna\Mrel\Filtro;
use Vorna\Mrel\Frota\Banco;
use Vorna\Mrel\Frota\Envio;
use Vorna\Mrel\Relatorios;
use Vorna\Mrel\Tabela;
use Vorna\Mrel\Tabelas;

final class VistasTest extends Caso
{
    /** Rows as texts, "" for null. */
    private static function celulas(iterable $linhas): array
    {
        $celulas = [];
        foreach ($linhas as $linha) {
            $celulas[] = array_map('strval', $linha);
        }
        return $celulas;
    }

    private static function vista(string $colunas, string $vista, string $onde, string $ordem = '1'): array
    {
        return self::celulas(self::$cluster->sql("SELECT $colunas FROM $vista WHERE $onde ORDER BY $ordem"));
    }

    private static function compara(Tabela $tabela, string $onde, string $ordem, string $vista = ''): int
    {
        $esperado = self::celulas($tabela->linhas);
        $colunas = implode(', ', $tabela->colunas);
        self::assertSame($esperado, self::vista($colunas, $vista ?: $tabela->nome, $onde, $ordem), "$tabela->nome $onde");
        return count($esperado);
    }

    public function testIguaisTodosOsDias(): void
    {
        $relay = self::mes();
        $r = new Relatorios($relay);
        $envio = new Envio($relay, Banco::abre(self::$cluster->dsn()));
        array_map($envio->dia(...), $envio->todos(self::periodo()));
        $onde = "relay = 'matriz' AND dia";
        [$de, $ate] = self::DIAS;
        self::assertSame(31, self::compara(Tabelas::dias($r->totais(self::periodo())), "$onde BETWEEN '$de' AND '$ate'", 'dia'));
        $linhas = 0;
        foreach (self::periodo()->cadaDia() as $dia) {
            $d = "$onde = '$dia->primeiro'";
            $linhas += self::compara(Tabelas::horas($r->horas($dia)), $d, 'hora');
            foreach (Contador::cases() as $por) {
                $p = "$d AND por = '$por->value'";
                $linhas += self::compara(Tabelas::topo($r->topo($dia, $por, 9999), $por, false), $p, 'posicao');
                $linhas += self::compara(Tabelas::topo($r->topo($dia, $por, 9999, true), $por, true), $p, 'posicao');
            }
        }
        self::assertGreaterThan(31 * 200, $linhas);
        $this->deUsuarios($r, $onde);
    }

    /** Of the three who sent most and the three who received most: their days, hours and messages. */
    private function deUsuarios(Relatorios $r, string $onde): void
    {
        $nomes = [];
        foreach ([Contador::Enviadas, Contador::Recebidas, Contador::Erros] as $por) {
            array_push($nomes, ...array_column($r->topo(self::periodo(), $por, 3), 'nome'));
        }
        $sentidos = [];
        foreach (array_unique($nomes) as $nome) {
            [$de, $ate] = self::DIAS;
            $u = "usuario = '" . pg_escape_string($nome) . "'";
            self::compara(Tabelas::diasDeUsuario($r->porUsuario(self::periodo(), [$nome])), "$onde BETWEEN '$de' AND '$ate' AND $u", 'dia');
            foreach (self::periodo()->cadaDia() as $dia) {
                $d = "$onde = '$dia->primeiro' AND usuario";
                $esperado = self::celulas(Tabelas::mensagens($r->mensagens($dia, new Filtro(usuario: $nome)))->linhas);
                $achado = self::vista(
                    "id, sentido, coalesce(replace(to_char(quando AT TIME ZONE 'Atlantic/Azores', 'YYYY-MM-DD HH24:MI:SS'), ' ', 'T'), ''),
                        remetente, bytes, estado",
                    'mensagens',
                    "$d = '" . pg_escape_string(strtolower($nome)) . "'",
                    'quando, id'
                );
                $semFuso = static fn (array $l): array => array_replace($l, [2 => substr($l[2], 0, 19)]);
                self::assertSame(array_map($semFuso, $esperado), $achado, "$nome $dia->primeiro");
                array_push($sentidos, ...array_column($achado, 1), ...array_column($achado, 5));
            }
        }
        self::assertEqualsCanonicalizing(
            ['enviada', 'recebida', 'sem_erro', 'com_erro', 'virus'],
            array_values(array_diff(array_unique($sentidos), ['ambos']))
        );
    }
}
