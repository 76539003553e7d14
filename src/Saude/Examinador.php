<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

use Vorna\Mrel\Compacto;
use Vorna\Mrel\Dias;

/**
 * All that the quick look leaves out: every line of every complete day, the statistics counted over again
 * from the events, and messages that never come to their end.
 */
final class Examinador extends Verificador
{
    public const TODAS = ['modulo', 'ponto', 'dias', 'volume', 'leitura', 'inteiro', 'somas', 'trava', 'logs', 'fuso',
        'abuso', 'espaco', 'presas'];

    /** Logs of so many days before the point are read whole: a blank line has cut a day that is to be repeated. */
    private const DIAS_DE_LOG = 7;

    /** The lines of a block are taken apart while they are near: larger ones take a third more time. */
    private const BLOCO = 1 << 15;

    private bool $lido = false;
    /** @var array<string, ?string> what is wrong with a file, "pt|en", by path */
    private array $rasgados = [];
    /** @var array<string, int> files that hold lines of another day, and how many */
    private array $deOutroDia = [];
    /** @var array<string, array{list<array{string, int, int, bool}>, list<array{string, int, int}>}> as in Somas, by day */
    private array $somas = [];
    /** @var ?array{Recontagem, Recontagem} messages of the day before, and of the days before that */
    private ?array $anterior = null;
    private ?string $ultimoDia = null;
    /** Which of the two possibilities the last midnight was. */
    private int $qual = 0;

    protected function nomes(): array
    {
        return self::TODAS;
    }

    protected function checa(string $nome): Verificacao
    {
        return match ($nome) {
            'somas' => Diferencas::somas($this->le()->somas),
            'presas' => Presas::presas(Presas::de((string) $this->relay->ponto), $this->s->ponto(), $this->relay->fuso),
            default => parent::checa($nome),
        };
    }

    protected function logsInteirosDesde(): ?string
    {
        return Situacao::dia($this->s->fim(), -self::DIAS_DE_LOG);
    }

    protected function inteiro(): Verificacao
    {
        $rasgados = array_filter($this->le()->rasgados);
        if ($rasgados || !$this->deOutroDia) {
            return Arquivos::inteiro($rasgados, count($this->rasgados));
        }
        $lista = Arquivos::lista(array_keys($this->deOutroDia));
        return new Verificacao('inteiro', Nivel::Aviso, [
            "Linhas de outro dia: $lista[0].", "Lines of another day: $lista[1].",
        ], [
            'Veja se o log tem dias de outro ano, ou se o arquivo foi trocado.',
            'See whether the log has days of another year, or the file was exchanged.',
        ]);
    }

    /** Reads all complete days, once. */
    private function le(): self
    {
        if (!$this->lido) {
            $this->lido = true;
            array_map($this->dia(...), $this->s->completos());
        }
        return $this;
    }

    private function dia(string $dia): void
    {
        $estatistica = $this->s->arquivos->caminho(Dias::ESTATISTICA, $dia);
        $compacto = $this->s->arquivos->caminho(Dias::COMPACTO, $dia);
        $texto = is_file($estatistica) && is_readable($estatistica) ? (string) file_get_contents($estatistica) : null;
        $texto === null || $this->rasgados[$estatistica] = Arquivos::estatistica($estatistica) ?? Arquivos::linhas($texto);
        if (!is_file($compacto) || !is_readable($compacto)) {
            return;
        }
        $inicio = $this->s->inicio($dia) ?? (new \DateTimeImmutable($dia, $this->relay->fuso))->getTimestamp();
        [$antes, $novo] = $this->carregadas($inicio);
        $novo->separa($antes[0]);
        foreach (Compacto::blocos($compacto, self::BLOCO) as $bloco) {
            $novo->conta($bloco);
        }
        $this->rasgados[$compacto] = Arquivos::compacto($compacto) ?? ($novo->estranhas === 0 ? null
            : "$novo->estranhas linhas não são eventos|$novo->estranhas lines are no events");
        $novo->deOutroDia === 0 || $this->deOutroDia[$compacto] = $novo->deOutroDia;
        foreach ([...$antes, $novo] as $recontagem) {
            $recontagem === $novo || $recontagem->conta($novo->aparte);
            $recontagem->fecha();
        }
        if ($texto !== null && !$this->rasgados[$estatistica] && !$this->rasgados[$compacto]) {
            $semAntes = $this->ultimoDia !== Situacao::dia($dia, -1);
            [$somas, $this->qual] = Somas::melhor($texto, $novo, $antes, $semAntes, $this->qual);
            // Without the messages of the day, of which there are many.
            $this->somas[$dia] = [$somas->diferencas, $somas->voltas];
        }
        $this->anterior = [$novo, $antes[$this->qual]];
        $this->ultimoDia = $this->rasgados[$compacto] === null ? $dia : null;
    }

    /** @return array{array{Recontagem, Recontagem}, Recontagem} earlier messages as either possibility has them; the day's */
    private function carregadas(int $inicio): array
    {
        $novo = new Recontagem($inicio);
        if ($this->anterior === null) {
            return [[new Recontagem($inicio), new Recontagem($inicio)], $novo];
        }
        [$dia, $antes] = $this->anterior;
        return [[$dia->proxima($antes, $inicio, false), $dia->proxima($antes, $inicio, true)], $novo];
    }
}
