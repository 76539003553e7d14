<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Falha\DadosInacessiveis;
use Vorna\Mrel\Formato\Json;
use Vorna\Mrel\Relay;

/**
 * The last result of a relay's checks, in the file that its configuration calls "saude": "verifica" writes
 * it, pages read it. It is the JSON of the command in Portuguese, with the English sentences beside them.
 */
final class Guardado
{
    /**
     * The last result; null where nothing was checked yet, or no file is configured.
     *
     * @throws DadosInacessiveis when the file is there but cannot be read, or holds no result
     */
    public static function le(Relay $relay): ?Resultado
    {
        $arquivo = $relay->saude ?? '';
        if ($arquivo === '' || !@file_exists($arquivo)) {
            return null;
        }
        $texto = is_file($arquivo) ? @file_get_contents($arquivo) : false;
        if ($texto === false) {
            throw DadosInacessiveis::ilegivel($arquivo);
        }
        $r = json_decode($texto, true);
        $quando = \DateTimeImmutable::createFromFormat(DATE_ATOM, self::texto($r, 'quando'));
        if ($quando === false || !is_array($r['verificacoes'] ?? null)) {
            throw DadosInacessiveis::semResultado($arquivo);
        }
        return new Resultado(
            $relay->nome,
            $quando->setTimezone($relay->fuso),
            array_map(self::verificacao(...), array_values($r['verificacoes'])),
        );
    }

    /** Writes it, whole or not at all; whether that could be done. True as well where no file is configured. */
    public static function grava(Relay $relay, Resultado $resultado): bool
    {
        if (($relay->saude ?? '') === '') {
            return true;
        }
        $arvore = $resultado->arvore('pt');
        foreach ($resultado->verificacoes as $i => $v) {
            $arvore['verificacoes'][$i] += ['text' => $v->texto('en'), 'advice' => $v->conselho('en')];
        }
        return Inteiro::escreve($relay->saude, Json::texto($arvore) . "\n");
    }

    private static function verificacao(mixed $v): Verificacao
    {
        return new Verificacao(
            self::texto($v, 'nome'),
            Nivel::tryFrom(self::texto($v, 'estado')) ?? Nivel::Desconhecido,
            [self::texto($v, 'texto'), self::texto($v, 'text') ?: self::texto($v, 'texto')],
            [self::texto($v, 'conselho'), self::texto($v, 'advice') ?: self::texto($v, 'conselho')],
        );
    }

    private static function texto(mixed $de, string $chave): string
    {
        return is_array($de) && is_string($de[$chave] ?? null) ? $de[$chave] : '';
    }
}
