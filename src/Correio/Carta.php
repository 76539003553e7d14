<?php

declare(strict_types=1);

namespace Vorna\Mrel\Correio;

use Vorna\Mrel\Falha\CartaNaoEnviada;
use Vorna\Mrel\Falha\EntradaInvalida;
use Vorna\Mrel\Visivel;

/**
 * One message of text and HTML, and its way to the system's sendmail. Lines end in LF, as that program takes
 * them; all of it is ASCII.
 */
final readonly class Carta
{
    private const SENDMAIL = '/usr/sbin/sendmail';
    /** What can stand in a header and in an argument as it is; sendmail knows names without a domain. */
    private const ENDERECO = '~^[A-Za-z0-9.!#$%&\'*+/=?^_`{|}\~][A-Za-z0-9.!#$%&\'*+/=?^_`{|}\~-]*(?:@[A-Za-z0-9](?:[A-Za-z0-9.-]*[A-Za-z0-9])?)?$~D';

    /**
     * @param list<string> $para none for one that is only looked at
     * @param ?string $de null leaves it to sendmail
     * @throws EntradaInvalida for what is no address
     */
    public function __construct(
        private array $para,
        private ?string $de,
        private string $assunto,
        private string $texto,
        private string $html,
        private string $lingua,
    ) {
        foreach ([...$para, ...($de === null ? [] : [$de])] as $endereco) {
            preg_match(self::ENDERECO, $endereco) || throw EntradaInvalida::endereco($endereco);
        }
    }

    public function __toString(): string
    {
        $limite = '=_' . bin2hex(random_bytes(16));  // "=_" cannot stand in what is quoted-printable
        $cabecalhos = array_filter([
            'From' => $this->de,
            'To' => implode(",\n ", $this->para),
            'Subject' => self::codifica($this->assunto),
            'Date' => date(DATE_RFC2822),
            'Auto-Submitted' => 'auto-generated',
            'Content-Language' => $this->lingua,
            'MIME-Version' => '1.0',
            'Content-Type' => "multipart/alternative;\n boundary=\"$limite\"",
        ]);
        $carta = '';
        foreach ($cabecalhos as $nome => $valor) {
            $carta .= "$nome: $valor\n";
        }
        foreach (['plain' => $this->texto, 'html' => $this->html] as $tipo => $corpo) {
            $carta .= "\n--$limite\nContent-Type: text/$tipo; charset=utf-8\nContent-Transfer-Encoding: quoted-printable\n\n"
                . self::imprimivel($corpo);
        }
        return "$carta\n--$limite--\n";
    }

    /** @throws CartaNaoEnviada */
    public function envia(): void
    {
        $programa = getenv('SENDMAIL') ?: self::SENDMAIL;
        is_executable($programa) || throw CartaNaoEnviada::semPrograma($programa);
        $erros = tmpfile();
        $de = $this->de === null ? [] : ['-f', $this->de];
        $processo = proc_open([$programa, '-i', ...$de, '--', ...$this->para], [['pipe', 'r'], $erros, $erros], $canos);
        $carta = (string) $this;
        $escritos = @fwrite($canos[0], $carta);
        fclose($canos[0]);
        $codigo = proc_close($processo);
        if ($codigo !== 0 || $escritos !== strlen($carta)) {
            rewind($erros);
            throw CartaNaoEnviada::recusada($codigo, trim(stream_get_contents($erros)));
        }
    }

    /** A text for a header: words that fit a line of 76, none of which ends within a character. */
    private static function codifica(string $texto): string
    {
        $texto = Visivel::texto($texto);
        if (strlen($texto) < 60 && !preg_match('/[^\x20-\x7E]|=\?/', $texto)) {
            return $texto;
        }
        preg_match_all('/\G.{1,39}(?![\x80-\xBF])/s', $texto, $palavras);
        return implode("\n ", array_map(static fn (string $p): string => '=?UTF-8?B?' . base64_encode($p) . '?=', $palavras[0]));
    }

    private static function imprimivel(string $texto): string
    {
        return strtr(quoted_printable_encode(strtr($texto, ["\n" => "\r\n"])), ["\r\n" => "\n"]);
    }
}
