<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

/** Which language is spoken before options are understood, as in errors about them. */
final class Lingua
{
    /** As the environment says it; "pt" when it names neither. */
    public static function doAmbiente(): string
    {
        foreach (['LC_ALL', 'LC_MESSAGES', 'LANG'] as $nome) {
            $valor = (string) getenv($nome);
            if ($valor !== '') {
                return str_starts_with(strtolower($valor), 'en') ? 'en' : 'pt';
            }
        }
        return 'pt';
    }

    /**
     * The one asked for at a command line that may be wrong otherwise.
     *
     * @param list<string> $argumentos
     */
    public static function pedida(array $argumentos): string
    {
        foreach ($argumentos as $i => $argumento) {
            if (preg_match('/^--lingua(?:=(.*))?$/sD', $argumento, $m)) {
                $lingua = $m[1] ?? $argumentos[$i + 1] ?? '';
                if (in_array($lingua, Opcoes::LINGUAS, true)) {
                    return $lingua;
                }
            }
        }
        return self::doAmbiente();
    }
}
