<?php

declare(strict_types=1);

namespace Vorna\Mrel;

/**
 * What every column and value is called, in Portuguese and English, and what it means in one sentence.
 * Command, pages and exports take their heads and texts from here. Columns are named as in the formats
 * for machines, which do not change with the language.
 */
final readonly class Rotulos
{
    /** Columns that mean the same wherever they stand. */
    private const COMUNS = [
        'relay' => ['Relay', 'Relay',
            'O nome do relay na configuração.', 'The name of the relay in the configuration.'],
        'dia' => ['Dia', 'Day',
            'O dia local, da meia-noite à meia-noite do relay.',
            'The local day, from midnight to midnight of the relay.'],
        'hora' => ['Hora', 'Hour', 'A hora do relógio, de 0 a 23.', 'The hour of the clock, 0 to 23.'],
        'usuario' => ['Usuário', 'User',
            'O endereço, ou o nome só, como o log o traz.', 'The address, or the bare name, as the log has it.'],
        'remetente' => ['Remetente', 'Sender',
            'Quem enviou; vazio numa devolução, ou quando a submissão não é conhecida.',
            'Who sent it; empty for a bounce, or when the submission is not known.'],
        'id' => ['Mensagem', 'Message',
            'O identificador que o despachante deu à mensagem.', 'The id that the dispatcher gave the message.'],
        'bytes' => ['Tamanho', 'Size', 'O tamanho da mensagem em bytes.', 'The size of the message in bytes.'],
    ];

    /** Columns of what local and other senders submitted. */
    private const ORIGENS = [
        'internas' => ['Internas', 'Local',
            'Mensagens tentadas no dia cujo remetente é usuário local.',
            'Messages attempted that day whose sender is a local user.'],
        'bytes_internas' => ['Bytes internas', 'Local bytes',
            'O tamanho dessas mensagens; depois de 4 GiB a conta recomeça do zero, e então o total é incerto.',
            'The size of those messages; after 4 GiB the count begins again at 0, and the total is uncertain.'],
        'externas' => ['Externas', 'Other',
            'Mensagens tentadas no dia cujo remetente não é usuário local.',
            'Messages attempted that day whose sender is not a local user.'],
        'bytes_externas' => ['Bytes externas', 'Other bytes',
            'O tamanho dessas mensagens; depois de 4 GiB a conta recomeça do zero, e então o total é incerto.',
            'The size of those messages; after 4 GiB the count begins again at 0, and the total is uncertain.'],
        'spam' => ['Spam', 'Spam', 'Mensagens do dia marcadas como spam.', 'Messages of the day marked as spam.'],
        'virus' => ['Vírus', 'Virus', 'Mensagens do dia com vírus.', 'Messages of the day with a virus.'],
        'com_erro' => ['Com erro', 'Failed',
            'Mensagens com erro; uma que não terminou conta em cada dia em que foi tentada e outra vez ao terminar.',
            'Messages with an error; an unfinished one counts on each day it was attempted and again at its end.'],
    ];

    /** Columns of what one user sent and received. */
    private const DE_USUARIO = [
        'enviadas' => ['Enviadas', 'Sent',
            'Mensagens que o usuário local enviou até o fim; uma de spam entregue conta duas vezes.',
            'Messages that the local user sent to their end; a spam message that was delivered counts twice.'],
        'bytes_enviados' => ['Bytes enviados', 'Bytes sent',
            'O tamanho das enviadas; depois de 4 GiB a conta recomeça do zero.',
            'The size of those sent; after 4 GiB the count begins again at 0.'],
        'recebidas' => ['Recebidas', 'Received',
            'Aceites da mensagem pelo destinatário: uma por aceite.',
            'Acceptances of a message by the recipient: one for each.'],
        'bytes_recebidos' => ['Bytes recebidos', 'Bytes received',
            'O tamanho das recebidas; depois de 4 GiB a conta recomeça do zero.',
            'The size of those received; after 4 GiB the count begins again at 0.'],
        'spam' => ['Spam', 'Spam',
            'Vereditos de spam sobre mensagens do usuário.', 'Spam verdicts on messages of the user.'],
        'virus' => ['Vírus', 'Virus',
            'Mensagens do usuário com vírus.', 'Messages of the user with a virus.'],
        'com_erro' => ['Erros', 'Errors',
            'Eventos de erro de mensagens do usuário: uma mensagem pode ter vários.',
            'Error events of messages of the user: a message may have several.'],
    ];

    private const QUANDO = [
        'mensagens' => ['Quando', 'When',
            'De uma enviada a submissão, de uma recebida o último aceite dentro do período.',
            'Of one sent its submission, of one received its last acceptance within the period.'],
        'rastro' => ['Quando', 'When',
            'A última vez que se soube do destinatário.', 'The last time that was heard of the recipient.'],
        'eventos' => ['Quando', 'When',
            'O momento do evento; vazio quando o carimbo do log é ilegível.',
            'The moment of the event; empty when the stamp in the log is unreadable.'],
    ];

    private const VALORES = [
        'enviada' => ['enviada', 'sent'],
        'recebida' => ['recebida', 'received'],
        'ambos' => ['para si', 'to oneself'],
        'sem_erro' => ['sem erro', 'no error'],
        'com_erro' => ['com erro', 'failed'],
        'virus' => ['vírus', 'virus'],
        'em_curso' => ['em curso', 'on its way'],
        'entregue' => ['entregue', 'delivered'],
        'recusado' => ['recusado', 'refused'],
        'submetida' => ['submetida', 'submitted'],
        'tentativa' => ['tentativa', 'attempt'],
        'aceita' => ['aceita', 'accepted'],
        'encerrada' => ['encerrada', 'ended'],
        'lida' => ['lida', 'read'],
        'erro_conexao' => ['erro de conexão', 'connection error'],
        'erro_remetente' => ['remetente recusado', 'sender refused'],
        'erro_destinatario' => ['destinatário recusado', 'recipient refused'],
        'erro_final' => ['erro final', 'final error'],
        'erro_dados' => ['transmissão interrompida', 'broken transfer'],
        'erro_helo' => ['saudação recusada', 'greeting refused'],
        'erro_tamanho' => ['tamanho recusado', 'size refused'],
        'erro_dominio' => ['domínio desconhecido', 'unknown domain'],
        'ok' => ['ok', 'ok'],
        'aviso' => ['aviso', 'warning'],
        'critico' => ['crítico', 'critical'],
        'desconhecido' => ['desconhecido', 'unknown'],
        'nova_tentativa' => ['nova tentativa', 'to be tried again'],
        'spam' => ['spam', 'spam'],
        'outro' => ['outro', 'other'],
        'enviadas' => ['mensagens enviadas', 'messages sent'],
        'recebidas' => ['mensagens recebidas', 'messages received'],
        'bytes_enviados' => ['bytes enviados', 'bytes sent'],
        'bytes_recebidos' => ['bytes recebidos', 'bytes received'],
        'erros' => ['erros', 'errors'],
    ];

    private const CONSOLIDADO = [
        'dias' => ['Dias', 'Days', 'Os dias cujos arquivos foram escritos.', 'The days whose files were written.'],
        'linhas' => ['Linhas', 'Lines', 'As linhas desses dias nos logs.', 'The lines of those days in the logs.'],
        'ponto' => ['Ponto', 'Point', 'A meia-noite até a qual todos os dias estão completos.',
            'The midnight up to which all days are complete.'],
        'motivo' => ['Motivo', 'Reason', 'Por que nada foi feito, ou não tudo; vazio quando tudo foi feito.',
            'Why nothing was done, or not all; empty when all was done.'],
    ];

    private const ENVIOS = [
        'usuarios' => ['Usuários', 'Users', 'As linhas do dia na tabela usuarios do banco da frota.',
            'The rows of the day in the table usuarios of the fleet\'s database.'],
        'eventos' => ['Eventos', 'Events', 'As linhas do dia na tabela eventos do banco da frota.',
            'The rows of the day in the table eventos of the fleet\'s database.'],
    ];

    private const SAUDE = [
        'relay' => self::COMUNS['relay'],
        'verificacao' => ['Verificação', 'Check', 'O que se verificou.', 'What was checked.'],
        'estado' => ['Estado', 'State', 'Ok, aviso, crítico ou desconhecido.', 'Ok, warning, critical or unknown.'],
        'texto' => ['Motivo', 'Reason', 'Por que está assim.', 'Why it is so.'],
        'conselho' => ['O que fazer', 'What to do', 'O que fazer; vazio quando está bem.',
            'What to do; empty when it is well.'],
    ];

    private int $i;

    /** @param string $lingua "pt" or "en"; any other is "pt" */
    public function __construct(string $lingua = 'pt')
    {
        $this->i = $lingua === 'en' ? 1 : 0;
    }

    /** @return list<string> the tables that have columns */
    public static function tabelas(): array
    {
        return ['dias', 'dias_usuario', 'horas', 'horas_usuario', 'horas_do_usuario', 'topo', 'topo_dominios', 'mensagens',
            'rastro', 'totais', 'usuarios', 'eventos', 'consolidado', 'saude', 'envios'];
    }

    /**
     * The columns of a table in their order, as the formats for machines name them.
     *
     * @return list<string>
     */
    public static function colunas(string $tabela): array
    {
        return array_keys(self::tabela($tabela));
    }

    /** The head of a column. */
    public function coluna(string $tabela, string $coluna): string
    {
        return self::tabela($tabela)[$coluna][$this->i];
    }

    /** What a column means, in one sentence. */
    public function definicao(string $tabela, string $coluna): string
    {
        return self::tabela($tabela)[$coluna][$this->i + 2];
    }

    /** What a value is called: of Sentido, Estado, Contador, or a kind of event. */
    public function valor(string|\BackedEnum $valor): string
    {
        $valor = $valor instanceof \BackedEnum ? (string) $valor->value : $valor;
        return self::VALORES[$valor][$this->i];
    }

    /** How a byte total that may have wrapped is marked. */
    public function incerto(): string
    {
        return ['incerto: pode ter passado de 4 GiB', 'uncertain: it may have passed 4 GiB'][$this->i];
    }

    /** How a day that is not over is marked: "até 14:32". */
    public function ate(\DateTimeInterface $ate): string
    {
        return ['até ', 'until '][$this->i] . $ate->format('H:i');
    }

    /**
     * The same as a sentence.
     *
     * @param string $dia as people write it
     */
    public function naoTerminou(string $dia, \DateTimeInterface $ate): string
    {
        return ["$dia ainda não terminou: vale ", "$dia is not over yet: figures are "][$this->i] . "{$this->ate($ate)}.";
    }

    /** What is told before logs are joined, figures as people write them. */
    public function juncao(string $quantos, string $bytes, string $livres): string
    {
        return [
            "juntando $quantos logs, que ocupam até $bytes enquanto se consolida; há $livres livres.",
            "joining $quantos logs, which take up to $bytes during the run; $livres are free.",
        ][$this->i];
    }

    /** @return array<string, array{string, string, string, string}> head pt, head en, definition pt, definition en */
    private static function tabela(string $tabela): array
    {
        $c = self::COMUNS;
        return match ($tabela) {
            'dias' => ['dia' => $c['dia']] + self::ORIGENS,
            'totais' => ['relay' => $c['relay'], 'dia' => $c['dia']] + self::ORIGENS,
            'dias_usuario' => ['usuario' => $c['usuario'], 'dia' => $c['dia']] + self::DE_USUARIO,
            'horas' => self::horas(),
            'horas_usuario' => self::horasDeUsuario(),
            'horas_do_usuario' => ['hora' => $c['hora']] + self::DE_USUARIO,
            'topo' => self::topo('usuario', $c['usuario']),
            'topo_dominios' => self::topo('dominio', ['Domínio', 'Domain',
                'O que vem depois de "@"; nomes sem "@" são do domínio local.',
                'What follows "@"; names without "@" are of the local domain.']),
            'mensagens' => self::mensagens(),
            'rastro' => self::rastro(),
            'usuarios' => self::usuarios(),
            'eventos' => self::eventos(),
            'consolidado' => self::CONSOLIDADO,
            'envios' => ['relay' => $c['relay'], 'dia' => $c['dia']] + self::ENVIOS,
            'saude' => self::SAUDE,
        };
    }

    private static function horas(): array
    {
        $o = self::ORIGENS;
        return [
            'hora' => ['Hora', 'Hour', 'A hora do relógio, de 0 a 23, em que a mensagem terminou.',
                'The hour of the clock, 0 to 23, in which the message ended.'],
            'internas' => ['Internas', 'Local',
                'Mensagens de usuários locais que terminaram sem erro nessa hora, submetidas dentro do período.',
                'Messages of local users that ended without an error in that hour, submitted within the period.'],
            'bytes_internas' => $o['bytes_internas'],
            'externas' => ['Externas', 'Other',
                'Mensagens de outros remetentes que terminaram sem erro nessa hora, submetidas dentro do período.',
                'Messages of other senders that ended without an error in that hour, submitted within the period.'],
            'bytes_externas' => $o['bytes_externas'],
            'spam_ocorrencias' => ['Spam (ocorrências)', 'Spam (occurrences)',
                'Conta duas vezes: no veredito e no fim da mensagem que termina sem erro.',
                'Counts twice: at the verdict, and at the end of a message that ends without an error.'],
            'virus_ocorrencias' => ['Vírus (ocorrências)', 'Virus (occurrences)',
                'Conta duas vezes: no veredito e no fim da mensagem que termina sem erro.',
                'Counts twice: at the verdict, and at the end of a message that ends without an error.'],
            'com_erro' => ['Com erro', 'Failed',
                'Mensagens que terminaram com erro; recusadas pelo tamanho contam como entregues.',
                'Messages that ended with an error; those refused for their size count as delivered.'],
        ];
    }

    private static function horasDeUsuario(): array
    {
        return [
            'dia' => self::COMUNS['dia'],
            'inicio' => ['Início', 'Start', 'O começo do período de 3600 segundos.',
                'The beginning of the period of 3600 seconds.'],
            'hora' => ['Hora', 'Hour', 'A hora que o relógio mostra nesse começo.',
                'The hour that the clock shows at that beginning.'],
        ] + self::DE_USUARIO;
    }

    private static function topo(string $coluna, array $nome): array
    {
        return [
            'posicao' => ['Posição', 'Rank', 'O lugar na lista, 1 o maior.', 'The place in the list, 1 the largest.'],
            $coluna => $nome,
            'valor' => ['Valor', 'Value',
                'A soma do contador no período, com maiúsculas e minúsculas reunidas.',
                'The sum of the counter in the period, letter case folded.'],
        ];
    }

    private static function mensagens(): array
    {
        $c = self::COMUNS;
        return [
            'id' => $c['id'],
            'sentido' => ['Sentido', 'Direction',
                'Se quem foi pedido enviou, recebeu, ou as duas coisas.',
                'Whether those asked for sent it, received it, or both.'],
            'quando' => self::QUANDO['mensagens'],
            'remetente' => $c['remetente'],
            'bytes' => $c['bytes'],
            'estado' => ['Estado', 'State',
                'O que a lista sabe; um erro que um aceite superou já não aparece, e o rastro diz tudo.',
                'What the list knows; an error that an acceptance overcame no longer shows, and the trace tells all.'],
        ];
    }

    private static function rastro(): array
    {
        $c = self::COMUNS;
        return [
            'id' => $c['id'],
            'remetente' => $c['remetente'],
            'bytes' => $c['bytes'],
            'submetida' => ['Submetida', 'Submitted', 'Quando a mensagem entrou na fila.',
                'When the message entered the queue.'],
            'encerrada' => ['Encerrada', 'Ended', 'Quando saiu da fila; vazio enquanto está em curso.',
                'When it left the queue; empty while it is on its way.'],
            'estado' => ['Estado', 'State',
                'Vírus, senão com erro, senão em curso (sem fim), senão entregue; o erro pode ser de um só destinatário.',
                'Virus, else failed, else on its way (no end), else delivered; the error may be of one recipient only.'],
            'virus' => ['Vírus', 'Virus', 'Se o antivírus achou um vírus.', 'Whether the antivirus found a virus.'],
            'destinatario' => ['Destinatário', 'Recipient', 'Quem aceitou ou recusou a mensagem.',
                'Who accepted or refused the message.'],
            'quando' => self::QUANDO['rastro'],
            'estado_destinatario' => ['Estado do destinatário', 'State of the recipient',
                'Entregue ou recusado.', 'Delivered or refused.'],
            'texto' => ['O que aconteceu', 'What happened',
                'O texto do destinatário ou, sem ele, o da mensagem, como o motor o conta.',
                'The text of the recipient or, without one, of the message, as the engine tells it.'],
        ];
    }

    private static function usuarios(): array
    {
        $c = self::COMUNS;
        $u = self::DE_USUARIO;
        return [
            'relay' => $c['relay'],
            'dia' => $c['dia'],
            'hora' => $c['hora'],
            'usuario' => $c['usuario'],
            'enviadas' => $u['enviadas'],
            'recebidas' => $u['recebidas'],
            'bytes_enviados' => $u['bytes_enviados'],
            'bytes_recebidos' => $u['bytes_recebidos'],
            'virus' => $u['virus'],
            'spam' => $u['spam'],
            'erros' => $u['com_erro'],
            'bloqueados' => ['Bloqueados', 'Blocked',
                'Mensagens com anexo bloqueado; o log não tem tal evento, por isso é 0.',
                'Messages with a blocked attachment; the log has no such event, so it is 0.'],
        ];
    }

    private static function eventos(): array
    {
        $c = self::COMUNS;
        return [
            'relay' => $c['relay'],
            'dia' => $c['dia'],
            'n' => ['Nº', 'No.', 'O número da linha dentro do dia, a partir de 1.',
                'The number of the line within the day, from 1.'],
            'quando' => self::QUANDO['eventos'],
            'tipo' => ['Tipo', 'Kind', 'O que aconteceu, numa palavra.', 'What happened, in one word.'],
            'mensagem' => $c['id'],
            'nome' => ['Nome', 'Name', 'O endereço ou a máquina que a linha cita.',
                'The address or host that the line names.'],
            'classe' => ['Classe', 'Class', 'A palavra do log para o tipo de remetente.',
                'The word of the log for the kind of sender.'],
            'bytes' => $c['bytes'],
            'texto' => ['Texto', 'Text', 'O resto da linha.', 'The rest of the line.'],
        ];
    }
}
