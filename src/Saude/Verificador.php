<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Dias;
use Vorna\Mrel\Falha;
use Vorna\Mrel\Falha\DadosInacessiveis;
use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Relay;
use Vorna\Mrel\Trava;
use Vorna\Mrel\Versao;

/**
 * Whether all is well with a relay, by a look at the heads and tails of its files: fast enough for every few
 * minutes. The checks themselves are functions of what is collected here.
 */
class Verificador
{
    public const CHECAGENS = ['modulo', 'ponto', 'dias', 'volume', 'leitura', 'inteiro', 'trava', 'logs', 'fuso',
        'abuso', 'espaco'];
    public const POR_HORA = 500;

    /** Days that may have been written badly without anybody having looked since. */
    private const RECENTES = 35;
    private const SEMANAS = 4;

    protected readonly Situacao $s;

    /**
     * @param int $porHora messages an hour that a local sender may send
     */
    public function __construct(
        protected readonly Relay $relay,
        ?\DateTimeImmutable $agora = null,
        private readonly int $porHora = self::POR_HORA,
    ) {
        $this->s = new Situacao($relay, $agora ?? new \DateTimeImmutable());
    }

    /** @param list<string> $sem checks to leave out */
    public function resultado(array $sem = []): Resultado
    {
        $verificacoes = [];
        foreach (array_diff($this->nomes(), $sem) as $nome) {
            try {
                $verificacoes[] = $this->checa($nome);
            } catch (Falha $e) {
                $verificacoes[] = Verificacao::desconhecida($nome, $e);
            }
        }
        return new Resultado($this->relay->nome, $this->s->agora, $verificacoes, Metricas::medidas($this->s));
    }

    /** @return list<string> */
    protected function nomes(): array
    {
        return self::CHECAGENS;
    }

    protected function checa(string $nome): Verificacao
    {
        return match ($nome) {
            'modulo' => Instalacao::modulo(Versao::doModulo(), Versao::PACOTE),
            'ponto' => Andamento::ponto($this->comPonto(), $this->s->agora),
            'dias' => Andamento::dias($this->s->completos()[0] ?? null, $this->s->faltam(), $this->s->fim()),
            'volume' => $this->volume(),
            'leitura' => $this->leitura(),
            'inteiro' => $this->inteiro(),
            'trava' => Instalacao::trava(Trava::donoComIdade(), Trava::arquivo(), $this->consolidador(), Trava::ARQUIVO),
            'logs' => $this->logs(),
            'fuso' => Andamento::fuso(array_filter($this->cada($this->s->inicio(...))), $this->relay->fuso),
            'abuso' => $this->abuso(),
            'espaco' => $this->espaco(),
        };
    }

    private function comPonto(): ?string
    {
        ($this->relay->ponto ?? '') !== '' || throw EntradaInvalida::naoConfigurado('ponto');
        return $this->s->ponto();
    }

    private function volume(): Verificacao
    {
        $dia = $this->s->ultimo();
        $mensagens = $dia === null ? null : $this->s->mensagens($dia);
        if ($mensagens === null) {
            return new Verificacao('volume', Nivel::Desconhecido, [
                'O último dia completo não está lá ou não pode ser lido.',
                'The last complete day is not there, or cannot be read.',
            ], ['Veja ponto, dias e leitura.', 'See ponto, dias and leitura.']);
        }
        $iguais = [];
        for ($semana = 1; $semana <= self::SEMANAS; ++$semana) {
            $iguais[] = $this->s->mensagens(Situacao::dia($dia, -7 * $semana));
        }
        return Trafego::volume($dia, $mensagens, array_values(array_filter($iguais, 'is_int')));
    }

    private function leitura(): Verificacao
    {
        try {
            return Arquivos::leitura($this->permissoes($this->s->dias()));
        } catch (DadosInacessiveis $e) {
            return new Verificacao('leitura', Nivel::Critico, [$e->frase('pt'), $e->frase('en')]);
        }
    }

    /**
     * @param list<string> $dias
     * @return array<string, array{bool, int}>
     */
    private function permissoes(array $dias): array
    {
        $permissoes = [];
        foreach ($dias as $dia) {
            foreach ([Dias::ESTATISTICA, Dias::COMPACTO] as $tipo) {
                $arquivo = $this->s->arquivos->caminho($tipo, $dia);
                $dono = @fileowner($arquivo);
                $dono === false || $permissoes[$arquivo] = [is_readable($arquivo), $dono];
            }
        }
        return $permissoes;
    }

    /** Who owns most of the recent days. */
    private function consolidador(): ?int
    {
        try {
            $donos = array_count_values(array_column($this->permissoes($this->recentes()), 1));
        } catch (DadosInacessiveis) {
            return null;
        }
        arsort($donos);
        return array_key_first($donos);
    }

    protected function inteiro(): Verificacao
    {
        $rasgados = [];
        $quantos = 0;
        foreach ($this->recentes() as $dia) {
            foreach ([Dias::ESTATISTICA, Dias::COMPACTO] as $tipo) {
                $arquivo = $this->s->arquivos->caminho($tipo, $dia);
                if (is_file($arquivo) && is_readable($arquivo)) {
                    ++$quantos;
                    $rasgados[$arquivo] = $tipo === Dias::COMPACTO
                        ? Arquivos::compacto($arquivo) : Arquivos::estatistica($arquivo);
                }
            }
        }
        return Arquivos::inteiro(array_filter($rasgados), $quantos);
    }

    private function logs(): Verificacao
    {
        ($this->relay->logs ?? '') !== '' || throw EntradaInvalida::naoConfigurado('logs');
        return Rotacao::logs(
            Registro::de($this->relay->logs, $this->relay->fuso, $this->logsInteirosDesde()),
            $this->s->ponto(),
            $this->s->agora
        );
    }

    /** From which day on logs are read whole; null for none. */
    protected function logsInteirosDesde(): ?string
    {
        return null;
    }

    /** The last complete day, and today as far as it is there. */
    private function abuso(): Verificacao
    {
        $dia = $this->s->ultimo();
        $agora = [];
        foreach ($dia === null ? [] : array_unique([$dia, $this->s->hoje]) as $um) {
            $arquivo = $this->s->arquivos->caminho(Dias::ESTATISTICA, $um);
            foreach (Remetentes::acimaDe(min(Trafego::POUCAS, $this->porHora), $arquivo) as $nome => $n) {
                $agora[$nome] = max($n, $agora[$nome] ?? 0);
            }
        }
        $antes = [];
        for ($i = 1; $dia !== null && $i <= 28; ++$i) {
            $arquivo = $this->s->arquivos->caminho(Dias::ESTATISTICA, Situacao::dia($dia, -$i));
            is_readable($arquivo) && $antes[] = $arquivo;
        }
        return Trafego::abuso($agora, Remetentes::maioresHoras(array_keys($agora), $antes), count($antes), $this->porHora);
    }

    private function espaco(): Verificacao
    {
        $livre = @disk_free_space($this->relay->dados);
        if ($livre === false) {
            throw DadosInacessiveis::ausente($this->relay->dados);
        }
        $porDia = $this->cada($this->s->tamanho(...));
        return Instalacao::espaco(
            (int) $livre,
            $porDia ? intdiv(array_sum($porDia), count($porDia)) : null,
            $this->relay->dados
        );
    }

    /** @return list<string> */
    protected function recentes(): array
    {
        return array_slice($this->s->completos(), -self::RECENTES);
    }

    /** @return array<string, mixed> what $faz says of the recent days */
    private function cada(\Closure $faz): array
    {
        $dias = $this->recentes();
        return array_combine($dias, array_map($faz, $dias));
    }
}
