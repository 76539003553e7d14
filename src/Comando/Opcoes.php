<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Symfony\Component\Console\Input\InputOption;
use Vorna\Mrel\Contador;

/**
 * Every option of the command, once: its names, what it takes, what it says of itself. Commands name those
 * that they have; help, completion and the man page come from here.
 */
final class Opcoes
{
    /** Those that all commands have. */
    public const COMUNS = ['dados', 'logs', 'ponto', 'dominios-locais', 'fuso', 'config', 'relay', 'de', 'ate', 'formato',
        'excel', 'lingua'];

    public const FORMATOS = ['tabela', 'csv', 'ndjson', 'json'];
    public const LINGUAS = ['pt', 'en'];
    public const PERIODOS = ['hoje', 'ontem', 'ultimos-7', 'este-mes', 'mes-passado'];

    private const VALOR = InputOption::VALUE_REQUIRED;
    private const VALORES = InputOption::VALUE_REQUIRED | InputOption::VALUE_IS_ARRAY;
    private const SEM = InputOption::VALUE_NONE;

    /** By name: the English name, what stands for the value, the mode, in Portuguese, in English. */
    private const TODAS = [
        'dados' => ['data', 'DIR', self::VALOR, 'diretório de dados, o das pastas rels_MM-AA',
            'data directory, that of the folders rels_MM-YY'],
        'logs' => ['logs', 'DIR', self::VALOR, 'diretório dos logs do despachante', 'directory of the dispatcher\'s logs'],
        'ponto' => ['point', 'FILE', self::VALOR, 'arquivo da última consolidação', 'last-consolidation file'],
        'dominios-locais' => ['local-domains', 'LIST', self::VALOR, 'domínios locais, separados por ";" ou ","',
            'local domains, parted by ";" or ","'],
        'fuso' => ['zone', 'ZONE', self::VALOR, 'fuso dos dias, como America/Sao_Paulo; sem ela o da máquina',
            'zone of the days, as America/Sao_Paulo; without it the machine\'s'],
        'config' => ['config', 'FILE', self::VALOR,
            'configuração; sem ela a de VT_MREL_CONFIG, senão /etc/vt-mrel.ini',
            'configuration; without it that of VT_MREL_CONFIG, else /etc/vt-mrel.ini'],
        'relay' => ['relay', 'NAME', self::VALOR, 'qual relay da configuração; também o nome mostrado',
            'which relay of the configuration; also the name shown'],
        'de' => ['from', 'DAY', self::VALOR,
            'primeiro dia: 2026-03-10, hoje, ontem, ultimos-N, este-mes, mes-passado; sem período o último dia completo',
            'first day: 2026-03-10, today, yesterday, last-N, this-month, last-month; without a period the last complete day'],
        'ate' => ['to', 'DAY', self::VALOR, 'último dia; --de ou --ate sozinho vale pelos dois',
            'last day; --de or --ate alone stands for both'],
        'formato' => ['format', 'FORMAT', self::VALOR, 'tabela, csv, ndjson ou json; sem ela tabela num terminal, senão csv',
            'tabela (a table), csv, ndjson or json; without it tabela on a terminal, else csv'],
        'lingua' => ['language', 'pt|en', self::VALOR, 'língua de tabelas e mensagens; sem ela a de LANG',
            'language of tables and messages; without it that of LANG'],
        'usuario' => ['user', 'ADDRESS', self::VALOR, 'o endereço de um usuário', 'the address of a user'],
        'usuarios' => ['user', 'ADDRESS', self::VALORES, 'o endereço de um usuário; pode repetir-se',
            'the address of a user; may be repeated'],
        'por' => ['by', 'COUNTER', self::VALOR,
            'o que conta: enviadas, recebidas, bytes_enviados, bytes_recebidos, spam, virus, erros; sem ela enviadas',
            'what counts: sent, received, bytes_sent, bytes_received, spam, virus, errors; without it sent'],
        'n' => ['n', 'N', self::VALOR, 'quantos; sem ela 20', 'how many; without it 20'],
        'dominios' => ['domains', '', self::SEM, 'domínios em vez de usuários', 'domains instead of users'],
        'remetente' => ['sender', 'ADDRESS', self::VALOR, 'só deste remetente; "*" no fim vale por um começo',
            'of this sender only; "*" at the end makes it a beginning'],
        'destinatario' => ['recipient', 'ADDRESS', self::VALOR, 'só para este destinatário; "*" no fim vale por um começo',
            'to this recipient only; "*" at the end makes it a beginning'],
        'id' => ['id', 'ID', self::VALOR, 'só a mensagem com este identificador', 'the message of this id only'],
        'min-kb' => ['min-kb', 'N', self::VALOR, 'a partir deste tamanho em KiB', 'from this size in KiB on'],
        'max-kb' => ['max-kb', 'N', self::VALOR, 'até este tamanho em KiB', 'up to this size in KiB'],
        'limite' => ['limit', 'N', self::VALOR, 'não mais linhas que estas', 'no more rows than these'],
        'todas' => ['all', '', self::SEM, 'sem filtro: todas as mensagens submetidas', 'no filter: all messages submitted'],
        'forcar' => ['force', '', self::SEM, 'até este momento, e outra vez no mesmo dia; o ponto não se move',
            'up to this moment, and again on the same day; the point does not move'],
        'ate-agora' => ['until-now', '', self::SEM, 'também o dia de hoje até este momento, sem que um leitor o note; o '
            . 'ponto não se move', 'today up to this moment too, unnoticed by readers; the point does not move'],
        'juntar' => ['join', '', self::SEM, 'junta antes os logs, também .gz, como se nunca tivessem sido girados',
            'joins the logs first, .gz too, as if they had never been rotated'],
        'excel' => ['excel', '', self::SEM, 'csv para uma planilha: ";", BOM, CR LF, vírgula decimal',
            'csv for a spreadsheet: ";", BOM, CR LF, decimal comma'],
        'anonimo' => ['anonymous', '', self::SEM, 'símbolos no lugar dos nomes; domínios ficam, textos não',
            'tokens in place of names; domains stay, texts do not'],
        'chave' => ['key', 'FILE', self::VALOR, 'a chave dos símbolos, feita se não houver; sem ela uma só desta vez',
            'the key of the tokens, made when missing; without it one of this run only'],
        'para' => ['to-database', 'DSN', self::VALOR,
            'o banco, como "service=frota" ou "host=h dbname=d user=u"; a senha fica no arquivo de PGPASSFILE',
            'the database, as "service=frota" or "host=h dbname=d user=u"; the password stays in the file of PGPASSFILE'],
        'desde-o-ultimo' => ['since-the-last', '', self::SEM,
            'só os dias completos que faltam no banco ou cujos arquivos mudaram; sem período, de todos',
            'only the complete days that the database lacks or whose files have changed; without a period, of all'],
        'json' => ['json', '', self::SEM, 'um objeto JSON com estado, quando e verificacoes',
            'a JSON object with estado, quando and verificacoes'],
        'prom' => ['prom', 'FILE', self::VALOR, 'escreve também as medidas para o Prometheus, inteiras ou nada',
            'writes the figures for Prometheus too, whole or not at all'],
        'sem' => ['without', 'LIST', self::VALOR, 'verificações que não se fazem, separadas por ","',
            'checks that are not done, parted by ","'],
        'por-hora' => ['per-hour', 'N', self::VALOR, 'mensagens por hora a que um usuário pode chegar; sem ela 500',
            'messages an hour that a user may send; without it 500'],
    ];

    /** English values of options, and what they stand for. */
    private const VALORES_INGLESES = [
        'formato' => ['table' => 'tabela'],
        'por' => ['sent' => 'enviadas', 'received' => 'recebidas', 'bytes_sent' => 'bytes_enviados',
            'bytes_received' => 'bytes_recebidos', 'errors' => 'erros'],
    ];

    /**
     * @param list<string> $nomes
     * @return list<InputOption>
     */
    public static function definicoes(array $nomes): array
    {
        return array_map(static function (string $nome): InputOption {
            [$ingles, , $modo, $texto, $text] = self::TODAS[$nome];
            $tambem = $ingles === self::nome($nome) ? '' : " (--$ingles)";
            return new InputOption(self::nome($nome), null, $modo, "$texto / $text$tambem");
        }, $nomes);
    }

    /** The name at the command line: an option that may be repeated in one command need not be so in another. */
    public static function nome(string $nome): string
    {
        return $nome === 'usuarios' ? 'usuario' : $nome;
    }

    /** @return array{string, string, string, string} English name, what stands for the value, Portuguese, English */
    public static function descricao(string $nome): array
    {
        [$ingles, $valor, , $texto, $text] = self::TODAS[$nome];
        return [$ingles, $valor, $texto, $text];
    }

    /**
     * An argument list with the English names of options turned into theirs.
     *
     * @param list<string> $argumentos
     * @return list<string>
     */
    public static function traduz(array $argumentos): array
    {
        $nomes = [];
        foreach (self::TODAS as $nome => [$ingles]) {
            $nomes[$ingles] ??= self::nome($nome);
        }
        foreach ($argumentos as $i => $argumento) {
            if ($argumento === '--') {
                break;
            }
            if (preg_match('/^--([a-z-]+)(=.*)?$/sD', $argumento, $m) && isset($nomes[$m[1]])) {
                $argumentos[$i] = '--' . $nomes[$m[1]] . ($m[2] ?? '');
            }
        }
        return $argumentos;
    }

    public static function valor(string $nome, string $valor): string
    {
        return self::VALORES_INGLESES[$nome][$valor] ?? $valor;
    }

    /**
     * The values that completion offers; those of --relay the caller knows.
     *
     * @return list<string>
     */
    public static function sugestoes(string $nome): array
    {
        return match ($nome) {
            'formato' => self::FORMATOS,
            'lingua' => self::LINGUAS,
            'por' => array_column(Contador::cases(), 'value'),
            'de', 'ate' => self::PERIODOS,
            default => [],
        };
    }
}
