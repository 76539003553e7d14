<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Symfony\Component\Console\Input\InputInterface;
use Vorna\Mrel\Anonimo;
use Vorna\Mrel\Calendario;
use Vorna\Mrel\Configuracao;
use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Formato;
use Vorna\Mrel\Formato\Csv;
use Vorna\Mrel\Formato\Json;
use Vorna\Mrel\Formato\Quadro;
use Vorna\Mrel\Fuso;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Relatorios;
use Vorna\Mrel\Relay;

/** What was asked for at the command line, in the library's terms. */
final readonly class Pedido
{
    /** Neither is set for a command that is about no relay. */
    public Relay $relay;
    /** @var non-empty-list<Relay> all of the configuration, when none was chosen and the command takes several */
    public array $relays;
    public string $lingua;
    /** One of Opcoes::FORMATOS. */
    public string $formato;

    public function __construct(private InputInterface $entrada, bool $terminal, bool $varios = false, bool $deUmRelay = true)
    {
        $this->lingua = $this->escolha('lingua', Opcoes::LINGUAS) ?? Lingua::doAmbiente();
        $this->formato = $this->escolha('formato', Opcoes::FORMATOS) ?? ($terminal ? 'tabela' : 'csv');
        if ($deUmRelay) {
            $this->relays = array_map($this->comOpcoes(...), $this->bases($varios));
            $this->relay = $this->relays[0];
        }
    }

    /** @return list<string> the names that --relay may have */
    public static function relays(?string $config): array
    {
        return array_map('strval', array_keys(Configuracao::le($config ?? Configuracao::arquivo())->relays));
    }

    public function relatorios(): Relatorios
    {
        return new Relatorios($this->relay);
    }

    /** What --de and --ate say; the last complete day when they say nothing. */
    public function periodo(): Periodo
    {
        return (new Calendario($this->relay))->periodo($this->texto('de'), $this->texto('ate'));
    }

    public function temPeriodo(): bool
    {
        return ($this->texto('de') ?? '') !== '' || ($this->texto('ate') ?? '') !== '';
    }

    /** What --anonimo and --chave say. */
    public function anonimo(): ?Anonimo
    {
        $chave = $this->texto('chave');
        if (!$this->marcada('anonimo')) {
            return $chave === null ? null : throw new UsoErrado(
                '--chave só vale com --anonimo: dê os dois, ou nenhum.',
                '--chave is of use with --anonimo only: give both, or neither.'
            );
        }
        return $chave === null ? Anonimo::destaVez() : Anonimo::comChave($chave);
    }

    public function comoEscrever(): Formato
    {
        if ($this->marcada('excel')) {
            if ($this->texto('formato') !== null && $this->formato !== 'csv') {
                throw new UsoErrado(
                    "--excel é csv: não dê com ele --formato $this->formato.",
                    "--excel is csv: do not give --formato $this->formato with it."
                );
            }
            return new Csv(planilha: true);
        }
        return match ($this->formato) {
            'tabela' => new Quadro($this->lingua),
            'csv' => new Csv(),
            'ndjson' => new Json(porLinha: true),
            'json' => new Json(),
        };
    }

    public function texto(string $opcao): ?string
    {
        return $this->entrada->hasOption($opcao) ? $this->entrada->getOption($opcao) : null;
    }

    /** @return list<string> */
    public function textos(string $opcao): array
    {
        return $this->entrada->getOption($opcao);
    }

    public function argumento(string $nome): string
    {
        return $this->entrada->getArgument($nome);
    }

    public function marcada(string $opcao): bool
    {
        return $this->entrada->hasOption($opcao) && $this->entrada->getOption($opcao);
    }

    public function numero(string $opcao): ?int
    {
        $texto = $this->texto($opcao);
        if ($texto !== null && !preg_match('/^\d{1,9}$/D', $texto)) {
            throw UsoErrado::numero($opcao, $texto);
        }
        return $texto === null ? null : (int) $texto;
    }

    /** @param list<string> $possiveis */
    public function escolha(string $opcao, array $possiveis): ?string
    {
        $texto = $this->texto($opcao);
        if ($texto === null) {
            return null;
        }
        $valor = Opcoes::valor($opcao, $texto);
        return in_array($valor, $possiveis, true) ? $valor : throw UsoErrado::valor($opcao, $texto, $possiveis);
    }

    /** @return non-empty-list<?Relay> those of the configuration; null for one made of options alone */
    private function bases(bool $varios): array
    {
        [$dados, $config, $nome] = [$this->texto('dados'), $this->texto('config'), $this->texto('relay')];
        if ($nome !== null && !preg_match('//u', $nome)) {
            throw EntradaInvalida::texto($nome);
        }
        if ($config === null && $dados !== null) {
            return [null];
        }
        $arquivo = $config ?? Configuracao::arquivo();
        if ($config === null && !getenv('VT_MREL_CONFIG') && !file_exists($arquivo)) {
            throw UsoErrado::semDados($arquivo);
        }
        $configuracao = Configuracao::le($arquivo);
        return $varios && $nome === null && $dados === null
            ? array_values($configuracao->relays) : [$configuracao->relay($nome)];
    }

    /** With what options say instead. */
    private function comOpcoes(?Relay $base): Relay
    {
        $fuso = $this->texto('fuso');
        $dominios = $this->texto('dominios-locais');
        return new Relay(
            $this->texto('dados') ?? $base->dados,
            $base->nome ?? $this->texto('relay') ?? 'local',
            $this->texto('logs') ?? $base?->logs,
            $this->texto('ponto') ?? $base?->ponto,
            $dominios !== null ? Relay::dominios($dominios) : $base->dominios ?? [],
            $fuso !== null ? Fuso::de($fuso) : $base?->fuso,
            $base?->saude,
        );
    }
}
