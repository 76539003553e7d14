<?php

// The format for lnav: every line of a generated log is understood, and counts agree with the command's.

declare(strict_types=1);

namespace Vorna\Mrel\Testes;

use PHPUnit\Framework\TestCase;

final class LnavTest extends TestCase
{
    private const FORMATO = __DIR__ . '/../../extras/lnav/vt_mrel.json';
    private const DIA = '2026-03-27';

    /** Statuses by the kind of event that the day files keep of them. */
    private const TIPOS = ['submetida' => 'SUBMIT', 'tentativa' => 'DELIVER', 'aceita' => 'OK', 'encerrada' => 'END',
        'erro_conexao' => 'ERROR_CONNECT ERROR_CONNECTION', 'erro_remetente' => 'ERROR_SENDER', 'virus' => 'VIRUS',
        'erro_destinatario' => 'ERROR_DEST', 'erro_final' => 'ERROR_FINAL', 'erro_dados' => 'ERROR_DATA',
        'erro_helo' => 'ERROR_HELO', 'erro_tamanho' => 'ERROR_SIZE', 'erro_dominio' => 'ERROR_DOMAIN',
        'spam' => 'COPY TAGGED QUARANTINE DISCARD', 'outro' => 'RETRY_DEST'];

    private Arvore $arvore;

    protected function setUp(): void
    {
        $this->arvore = new Arvore('UTC');
        mkdir("{$this->arvore->dados}/lnav/formats/vt", 0700, true);
        copy(self::FORMATO, "{$this->arvore->dados}/lnav/formats/vt/vt_mrel.json");
    }

    private function lnav(string ...$argumentos): Vtmrel
    {
        return Vtmrel::executa(
            ['lnav', ...$argumentos],
            ['XDG_CONFIG_HOME' => $this->arvore->dados, 'HOME' => $this->arvore->dados, 'TERM' => 'dumb', 'TZ' => 'UTC']
        );
    }

    /** @return list<list<string>> */
    private function pergunta(string $sql, string $log): array
    {
        $r = $this->lnav('-n', '-c', ";$sql", '-c', ':write-csv-to -', $log);
        return array_slice(Vtmrel::csv(strtr($r->saida, ["\r" => ''])), 1);
    }

    public function testFormato(): void
    {
        $r = $this->lnav('-C');
        self::assertSame([0, ''], [$r->codigo, $r->saida . $r->erros]);
        $dados = getenv('VT_DADOS');
        $log = "$dados/logs/MAIL_DISPATCHER.LOG." . strtr(self::DIA, ['-' => '']);
        $estados = [];
        foreach (file($log) as $linha) {
            $estados[] = explode(' ', substr($linha, 26))[2];
        }
        $certo = array_count_values($estados);
        $visto = array_map('intval', array_column($this->pergunta('SELECT status, count(*) FROM vt_mrel_log GROUP BY status', $log), 1, 0));
        ksort($certo);
        ksort($visto);
        self::assertSame($certo, $visto);
        // As the command counts them in the day files, which leave out a refusal that names no domain.
        $visto['ERROR_DOMAIN'] -= (int) $this->pergunta(
            "SELECT count(*) FROM vt_mrel_log WHERE status = 'ERROR_DOMAIN' AND log_body NOT LIKE 'Dominio %'",
            $log
        )[0][0];
        $eventos = Vtmrel::csv(Vtmrel::roda(
            ['exporta', 'eventos', "--dados=$dados/dat", '--fuso=Atlantic/Azores', '--de=' . self::DIA]
        )->saida);
        $tipos = array_count_values(array_column(array_slice($eventos, 1), array_search('tipo', $eventos[0], true)));
        foreach (self::TIPOS as $tipo => $nomes) {
            $n = array_sum(array_intersect_key($visto, array_flip(explode(' ', $nomes))));
            self::assertSame($tipos[$tipo] ?? 0, $n, $tipo);
        }
        self::assertSame(array_sum($tipos), array_sum($visto));
        $niveis = $this->pergunta('SELECT log_level, count(DISTINCT status), sum(log_opid IS NOT id) FROM vt_mrel_log GROUP BY 1', $log);
        self::assertEqualsCanonicalizing([['info', '4', '0'], ['warning', '10', '0'], ['error', '5', '0']], $niveis);
    }

    /** What no message is in, and days of one digit. */
    public function testOutras(): void
    {
        $log = "{$this->arvore->dados}/MAIL_DISPATCHER.LOG";
        file_put_contents($log, "Thu Mar  5 08:00:00 2026: 07 POPSRV READ ana@mar.example\nThu Mar 12 08:00:01 2026: 07 MAILQ START\n"
            . "Thu Mar 12 08:00:02 2026: 09 MAILQ ENDSEND Msg M1\n");
        self::assertSame(
            [['2026-03-05 08:00:00.000', 'READ', '<NULL>'], ['2026-03-12 08:00:01.000', 'START', '<NULL>'], ['2026-03-12 08:00:02.000', 'ENDSEND', 'M1']],
            $this->pergunta('SELECT log_time, status, id FROM vt_mrel_log', $log)
        );
    }
}
