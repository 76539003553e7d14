<?php

declare(strict_types=1);

namespace Vorna\Mrel\Paginas;

use Vorna\Mrel\Calendario;
use Vorna\Mrel\Falha;
use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Filtro;
use Vorna\Mrel\Nome;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Texto;
use Vorna\Mrel\Visivel;

/**
 * The one place where parameters of an address are read. Whoever made the address may have put anything
 * into it: what cannot be is remembered with a sentence for its field, and reads as not given.
 */
final class Parametros
{
    /** Every one that some page reads. */
    public const TODOS = ['de', 'ate', 'usuario', 'remetente', 'destinatario', 'id', 'min_kb', 'max_kb', 'hora', 'cursor',
        'por', 'dominios', 'lingua', 'relay', 'formato'];

    /** Longer than any name or id that a day file can hold. */
    private const MAIOR = 1024;

    /** @var array<string, Falha> by field */
    private array $erros = [];

    /** @param array<mixed> $dados */
    public function __construct(private readonly array $dados)
    {
    }

    /** Null when it is not given, empty, or wrong. */
    public function texto(string $nome): ?string
    {
        $valor = $this->dados[$nome] ?? '';
        if ($valor === '') {
            return null;
        }
        if (!is_string($valor)) {
            return $this->recusa($nome, ParametroInvalido::lista());
        }
        $valor = Visivel::bytes($valor);  // as it was copied from a page
        return match (true) {
            strlen($valor) > self::MAIOR => $this->recusa($nome, ParametroInvalido::longo($valor, self::MAIOR)),
            str_contains($valor, "\0") => $this->recusa($nome, ParametroInvalido::nulo($valor)),
            !preg_match('//u', $valor) => $this->recusa($nome, EntradaInvalida::texto($valor)),
            default => $valor,
        };
    }

    /** The name of a user, or a beginning of one with "*" behind it. */
    public function nome(string $nome): ?string
    {
        return $this->verifica($nome, Nome::verifica(...));
    }

    /** The id of a message. */
    public function id(string $nome): ?string
    {
        return $this->verifica($nome, Filtro::verificaId(...));
    }

    /** @param \Closure(string): void $como throws for what cannot be */
    private function verifica(string $nome, \Closure $como): ?string
    {
        $texto = $this->texto($nome);
        try {
            $texto === null || $como($texto);
        } catch (EntradaInvalida $e) {
            return $this->recusa($nome, $e);
        }
        return $texto;
    }

    public function numero(string $nome): ?int
    {
        $texto = $this->texto($nome);
        return $texto === null || preg_match('/^\d{1,9}$/D', $texto)
            ? ($texto === null ? null : (int) $texto) : $this->recusa($nome, ParametroInvalido::numero($texto));
    }

    /** @param list<string> $possiveis */
    public function escolha(string $nome, array $possiveis): ?string
    {
        $texto = $this->texto($nome);
        return $texto === null || in_array($texto, $possiveis, true)
            ? $texto : $this->recusa($nome, ParametroInvalido::valor($texto, $possiveis));
    }

    public function marcado(string $nome): bool
    {
        return $this->escolha($nome, ['1', '0']) === '1';
    }

    /** Whether "de" or "ate" say something. */
    public function temPeriodo(): bool
    {
        return ($this->dados['de'] ?? '') !== '' || ($this->dados['ate'] ?? '') !== '';
    }

    /**
     * What "de" and "ate" say, dates or the words of Calendario; the last $padrao complete days when they say
     * nothing, and null when they are wrong.
     *
     * @throws \Vorna\Mrel\Falha\NenhumDia
     * @throws \Vorna\Mrel\Falha\SemDiaCompleto
     */
    public function periodo(Calendario $calendario, int $padrao, int $maximo): ?Periodo
    {
        $pontas = [];
        foreach (['de', 'ate'] as $nome) {
            try {
                $texto = $this->texto($nome);
                $pontas[$nome] = $texto === null ? null : $calendario->periodo($texto);
            } catch (EntradaInvalida $e) {
                $this->recusa($nome, $e);
            }
        }
        if (isset($this->erros['de']) || isset($this->erros['ate'])) {
            return null;
        }
        [$de, $ate] = [$pontas['de'] ?? $pontas['ate'], $pontas['ate'] ?? $pontas['de']];
        if ($de === null) {
            return $calendario->periodo("ultimos-$padrao");
        }
        try {
            $periodo = Periodo::de($de->primeiro, $ate->ultimo, $de->fuso);
        } catch (EntradaInvalida $e) {
            return $this->recusa('ate', $e);
        }
        $dias = $periodo->quantosDias();
        return $dias > $maximo ? $this->recusa('ate', ParametroInvalido::periodoLongo($dias, $maximo)) : $periodo;
    }

    /** Remembers what is wrong with a field; the first that is found counts. */
    public function recusa(string $nome, Falha $porque): mixed
    {
        $this->erros[$nome] ??= $porque;
        return null;
    }

    /** @return array<string, Falha> by field */
    public function erros(): array
    {
        return $this->erros;
    }

    /** What was given, for the field that asks again: valid UTF-8, "" for a list. */
    public function dado(string $nome): string
    {
        $valor = $this->dados[$nome] ?? '';
        if (!is_string($valor)) {
            return '';
        }
        $valor = substr($valor, 0, self::MAIOR);
        return preg_match('//u', $valor) ? $valor : Texto::utf8($valor);
    }
}
