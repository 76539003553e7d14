<?php

// A data directory of a test: day files in their documented formats, written without the extension.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use Vorna\Mrel\Busca;
use Vorna\Mrel\Cursor;
use Vorna\Mrel\Dias;
use Vorna\Mrel\Falha;
use Vorna\Mrel\Filtro;
use Vorna\Mrel\Folheio;
use Vorna\Mrel\Linha\Mensagem;
use Vorna\Mrel\Periodo;
use Vorna\Mrel\Relatorios;
use Vorna\Mrel\Relay;

final class Arvore
{
    public readonly string $dados;

    public function __construct(public readonly string $fuso = 'America/Sao_Paulo')
    {
        $this->dados = sys_get_temp_dir() . '/vt_php_' . getmypid() . '_' . bin2hex(random_bytes(4));
        mkdir($this->dados);
    }

    public function __destruct()
    {
        self::apaga($this->dados);
    }

    public static function apaga(string $caminho): void
    {
        if (is_dir($caminho) && !is_link($caminho)) {
            chmod($caminho, 0700);
            foreach (array_diff(scandir($caminho), ['.', '..']) as $nome) {
                self::apaga("$caminho/$nome");
            }
            rmdir($caminho);
        } else {
            unlink($caminho);
        }
    }

    public function relay(string ...$dominios): Relay
    {
        return new Relay($this->dados, dominios: $dominios, fuso: new \DateTimeZone($this->fuso));
    }

    public function relatorios(string ...$dominios): Relatorios
    {
        return new Relatorios($this->relay(...$dominios));
    }

    /**
     * All messages of a search, page by page as one goes on.
     *
     * @return list<Mensagem> newest first
     */
    public static function paginas(Relay $relay, Periodo $periodo, Filtro $filtro, int $n, int $bloco): array
    {
        $dias = new Dias($relay->dados);
        $arquivos = $dias->arquivos(Dias::COMPACTO, $periodo);
        $anteriores = array_diff_key($dias->legiveis(Dias::COMPACTO, $periodo->alargado(Busca::DIAS_ANTES)), $arquivos);
        $mensagens = [];
        $cursor = null;
        do {
            $pagina = (new Folheio($arquivos, $anteriores, $periodo, $filtro, $bloco))->pagina($cursor, $n);
            array_push($mensagens, ...$pagina->mensagens);
            $cursor = $pagina->cursor === null ? null : Cursor::le($pagina->cursor);
        } while ($cursor && (count($pagina->mensagens) === $n || $pagina->pausa));
        return $mensagens;
    }

    public function caminho(string $tipo, string $dia): string
    {
        $pasta = "$this->dados/rels_" . substr($dia, 5, 2) . '-' . substr($dia, 2, 2);
        is_dir($pasta) || mkdir($pasta);
        return "$pasta/{$tipo}_" . substr($dia, 8) . '.txt';
    }

    /** Unix seconds of a local time. */
    public function hora(string $quando): int
    {
        return (new \DateTimeImmutable($quando, new \DateTimeZone($this->fuso)))->getTimestamp();
    }

    /**
     * Events, each "08:15 1 1 M1 INTERNO ana@x.example 100" with the local time in front; and an empty
     * statistics file, unless there is one.
     */
    public function eventos(string $dia, string ...$eventos): self
    {
        $texto = '';
        foreach ($eventos as $evento) {
            [$hora, $resto] = explode(' ', $evento, 2);
            $texto .= dechex($this->hora("$dia $hora")) . " $resto\n";
        }
        file_put_contents($this->caminho('compact_mail', $dia), $texto);
        is_file($this->caminho('mail_stat', $dia)) || $this->contas($dia, [0, 0, 0, 0, 0, 0, 0, 0], []);
        return $this;
    }

    /**
     * A statistics file.
     *
     * @param list<int> $totais spam, virus, error, att_blocked, messages and bytes of local and of other senders
     * @param array<int, list<string>> $usuarios lines by hour, "ana 1 100 0 0 0 0 0 0"
     */
    public function contas(string $dia, array $totais, array $usuarios): self
    {
        $inicio = $this->hora("$dia 00:00");
        $texto = "$inicio " . $inicio + 86399 . ' ' . implode(' ', $totais) . "\n";
        for ($hora = 0; $hora < 24; ++$hora) {
            $texto .= '[' . $inicio + 3600 * $hora . "]\n";
            foreach ($usuarios[$hora] ?? [] as $linha) {
                $texto .= "$linha\n";
            }
        }
        file_put_contents($this->caminho('mail_stat', $dia), $texto);
        return $this;
    }

    /** The failure that $faz ends with. */
    public static function falha(\Closure $faz): ?Falha
    {
        try {
            $resposta = $faz();
            is_iterable($resposta) && iterator_count($resposta);
        } catch (Falha $e) {
            return $e;
        }
        return null;
    }

    /**
     * What another PHP process prints that runs $codigo with the library and, unless told otherwise, the
     * extension; without the rights of root to read everything.
     *
     * @param list<string> $opcoes of the engine
     */
    public static function outroPhp(string $codigo, array $opcoes = [], array $ambiente = []): string
    {
        $sem = ['--bounding-set', '-dac_override,-dac_read_search', '--inh-caps', '-dac_override,-dac_read_search'];
        $variaveis = array_map(static fn ($k, $v): string => "$k=$v", array_keys($ambiente), $ambiente);
        $comando = ['env', ...$variaveis, ...(posix_getuid() === 0 ? ['setpriv', ...$sem] : []), PHP_BINARY, '-n',
            '-d', 'display_errors=stderr', ...($opcoes ?: ['-d', 'extension=' . getenv('VT_EXTENSAO')]), '-r',
            'require ' . var_export(dirname(__DIR__, 2) . '/src/autoload.php', true) . ";$codigo"];
        $processo = proc_open($comando, [1 => ['pipe', 'w'], 2 => ['redirect', 1]], $canos);
        $texto = stream_get_contents($canos[1]);
        proc_close($processo);
        return $texto;
    }
}
