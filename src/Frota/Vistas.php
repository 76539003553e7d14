<?php

declare(strict_types=1);

namespace Vorna\Mrel\Frota;

/**
 * The answers of the reports as views, by relay and day, in one text for all databases. Each column is that of
 * the same name in Rotulos; texts and counts are what the command prints for that day, but byte sums do not
 * begin again after 4 GiB.
 */
final readonly class Vistas
{
    /** Events that make the hours report count a message's end as failed. */
    private const FALHAS_DA_HORA = "'erro_conexao', 'erro_remetente', 'erro_destinatario', 'erro_final', 'erro_dados', "
        . "'erro_helo', 'erro_dominio'";
    /** Events that mark a message in the list of a user's. */
    private const FALHAS_DA_LISTA = "'erro_conexao', 'erro_remetente', 'erro_destinatario', 'erro_final', "
        . "'erro_tamanho', 'nova_tentativa'";
    /** An id longer than this is never found again by the hours report. */
    private const TAMANHO_DO_ID = 23;
    /** As Busca::DIAS_ANTES. */
    private const DIAS_ANTES = 7;

    private const CONTADORES = ['enviadas', 'bytes_enviados', 'recebidas', 'bytes_recebidos', 'spam', 'virus', 'erros'];

    public function __construct(private Dialeto $dialeto)
    {
    }

    /** @return array<string, string> what each selects, by name */
    public function todas(): array
    {
        return [
            'dias' => 'SELECT * FROM totais',
            'dias_usuario' => $this->contas('relay, dia, usuario'),
            'horas' => $this->horas(),
            'horas_usuario' => $this->contas('relay, dia, hora, usuario'),
            'topo' => $this->topo('usuario', $this->endereco()),
            'topo_dominios' => $this->topo('dominio', $this->dominio()),
            'mensagens' => $this->mensagens(),
            'rastro' => <<<'SQL'
                SELECT relay, mensagem AS id, dia, n, quando, tipo, nome, classe, bytes, texto
                FROM eventos WHERE mensagem <> ''
                SQL,
        ];
    }

    private function contas(string $por): string
    {
        $d = $this->dialeto;
        $somas = array_map(
            static fn (string $c): string => $d->soma("u.$c") . ' AS ' . ($c === 'erros' ? 'com_erro' : $c),
            self::CONTADORES
        );
        return "SELECT $por,\n    " . implode(",\n    ", $somas) . "\nFROM usuarios u\nGROUP BY $por";
    }

    /**
     * A message counts in the hour of its end, by what its earlier lines of that day said; a submission begins
     * anew for its id. The first rows are zeros: 24 hours for each day that was sent.
     */
    private function horas(): string
    {
        [$falhas, $tamanho] = [self::FALHAS_DA_HORA, self::TAMANHO_DO_ID];
        $somas = implode(",\n    ", array_map(
            fn (string $c): string => $this->dialeto->soma("u.$c") . " AS $c",
            ['internas', 'bytes_internas', 'externas', 'bytes_externas', 'spam_ocorrencias', 'virus_ocorrencias',
                'com_erro']
        ));
        return <<<SQL
            SELECT relay, dia, hora,
                $somas
            FROM (
                SELECT relay, dia, hora, 0 AS internas, 0 AS bytes_internas, 0 AS externas, 0 AS bytes_externas,
                    0 AS spam_ocorrencias, 0 AS virus_ocorrencias, 0 AS com_erro
                FROM totais CROSS JOIN {$this->dialeto->vinteEQuatro()}
                UNION ALL
                SELECT relay, dia, hora,
                    CASE WHEN fim = 1 AND erro = 0 AND interna = 1 THEN 1 ELSE 0 END,
                    CASE WHEN fim = 1 AND erro = 0 AND interna = 1 THEN tamanho ELSE 0 END,
                    CASE WHEN fim = 1 AND erro = 0 AND interna = 0 THEN 1 ELSE 0 END,
                    CASE WHEN fim = 1 AND erro = 0 AND interna = 0 THEN tamanho ELSE 0 END,
                    CASE WHEN tipo = 'spam' OR fim = 1 AND erro = 0 AND spam = 1 THEN 1 ELSE 0 END,
                    CASE WHEN tipo = 'virus' OR fim = 1 AND erro = 0 AND spam = 0 AND virus = 1 THEN 1 ELSE 0 END,
                    CASE WHEN fim = 1 AND erro = 1 THEN 1 ELSE 0 END
                FROM (
                    SELECT relay, dia, hora, tipo,
                        CASE WHEN tipo = 'encerrada' AND max(conhecida) OVER v = 1 AND char_length(mensagem) <= $tamanho
                            THEN 1 ELSE 0 END AS fim,
                        coalesce(max(bytes) OVER v, 0) AS tamanho,
                        max(interna) OVER v AS interna,
                        max(CASE WHEN tipo IN ($falhas) THEN 1 ELSE 0 END) OVER v AS erro,
                        max(CASE WHEN tipo = 'spam' THEN 1 ELSE 0 END) OVER v AS spam,
                        max(CASE WHEN tipo = 'virus' THEN 1 ELSE 0 END) OVER v AS virus
                    FROM (
                        SELECT relay, dia, hora, n, tipo, mensagem, bytes,
                            CASE WHEN tipo = 'encerrada' THEN 0 ELSE 1 END AS conhecida,
                            CASE WHEN tipo = 'submetida'
                                AND (substr(classe, 1, 1) = 'I' OR substr(classe, 1, 1) = 'S' AND substr(classe, 9, 1) = 'I')
                                THEN 1 ELSE 0 END AS interna,
                            sum(CASE WHEN tipo = 'submetida' THEN 1 ELSE 0 END)
                                OVER (PARTITION BY relay, dia, mensagem ORDER BY n) AS vez
                        FROM eventos
                        WHERE hora IS NOT NULL
                            AND (tipo = 'submetida' AND bytes IS NOT NULL OR tipo IN ('encerrada', 'spam', 'virus', $falhas))
                    ) lidos
                    WINDOW v AS (PARTITION BY relay, dia, mensagem, vez ORDER BY n)
                ) contados
            ) u
            GROUP BY relay, dia, hora
            SQL;
    }

    /** Those who have most, by each counter; letter case is folded, and the spelling met most often shows. */
    private function topo(string $coluna, string $mostrado): string
    {
        $linhas = implode("\n                UNION ALL ", array_map(
            static fn (string $c): string
                => "SELECT relay, dia, '$c' AS por, usuario, $c AS valor FROM usuarios WHERE $c <> 0",
            self::CONTADORES
        ));
        $d = $this->dialeto;
        return <<<SQL
            SELECT relay, dia, por,
                row_number() OVER (PARTITION BY relay, dia, por ORDER BY valor DESC, chave) AS posicao,
                mostrado AS $coluna, valor
            FROM (
                SELECT relay, dia, por, chave, mostrado,
                    {$d->soma('parte', ' OVER (PARTITION BY relay, dia, por, chave)')} AS valor,
                    row_number() OVER (PARTITION BY relay, dia, por, chave ORDER BY vezes DESC, mostrado) AS lugar
                FROM (
                    SELECT relay, dia, por, {$d->minusculas('mostrado')} AS chave, mostrado,
                        count(*) AS vezes, sum(valor) AS parte
                    FROM (
                        SELECT c.relay AS relay, c.dia AS dia, c.por AS por, c.valor AS valor, $mostrado AS mostrado
                        FROM (
                            $linhas
                        ) c LEFT JOIN relays r ON r.relay = c.relay
                        WHERE c.usuario <> ''
                    ) nomes
                    GROUP BY relay, dia, por, mostrado
                ) grafias
            ) reunidos
            WHERE lugar = 1
            SQL;
    }

    private function endereco(): string
    {
        return "CASE WHEN position('@' IN c.usuario) = 0 AND r.dominio <> ''
                            THEN concat(c.usuario, '@', r.dominio) ELSE c.usuario END";
    }

    private function dominio(): string
    {
        return "CASE WHEN position('@' IN c.usuario) > 0 THEN substr(c.usuario, position('@' IN c.usuario) + 1)
                            WHEN r.dominio <> '' THEN r.dominio ELSE '(local)' END";
    }

    /** What each user sent or received on a day: to be asked with `usuario`, in small letters, and `dia`. */
    private function mensagens(): string
    {
        $d = $this->dialeto;
        [$falhas, $antes] = [self::FALHAS_DA_LISTA, self::DIAS_ANTES];
        $submetida = "o.tipo = 'submetida' AND o.bytes IS NOT NULL";
        return <<<SQL
            SELECT q.relay AS relay, q.dia AS dia, q.usuario AS usuario, q.mensagem AS id,
                CASE WHEN q.enviada IS NULL THEN 'recebida' WHEN q.aceita IS NULL THEN 'enviada' ELSE 'ambos' END AS sentido,
                max(CASE WHEN o.dia = q.dia AND o.n = coalesce(q.enviada, q.aceita) THEN o.quando END) AS quando,
                {$d->ultimo('o.nome', "o.tipo = 'submetida'")} AS remetente,
                {$d->ultimo('o.bytes', $submetida)} AS bytes,
                CASE WHEN max(CASE WHEN o.tipo = 'virus' THEN 1 ELSE 0 END) = 1 THEN 'virus'
                    WHEN max(CASE WHEN o.dia = q.dia AND o.n > coalesce(q.aceita, q.enviada) AND o.tipo IN ($falhas)
                        THEN 1 ELSE 0 END) = 1 THEN 'com_erro'
                    ELSE 'sem_erro' END AS estado
            FROM (
                SELECT relay, dia, mensagem, {$d->minusculas('nome')} AS usuario,
                    max(CASE WHEN tipo = 'submetida' THEN n END) AS enviada,
                    max(CASE WHEN tipo = 'aceita' THEN n END) AS aceita
                FROM eventos
                WHERE tipo IN ('submetida', 'aceita') AND nome <> ''
                GROUP BY relay, dia, mensagem, {$d->minusculas('nome')}
            ) q JOIN eventos o ON o.relay = q.relay AND o.mensagem = q.mensagem
            WHERE o.dia <= q.dia AND o.dia >= q.dia - $antes
            GROUP BY q.relay, q.dia, q.usuario, q.mensagem, q.enviada, q.aceita
            SQL;
    }
}
