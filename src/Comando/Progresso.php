<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Symfony\Component\Console\Helper\ProgressBar;
use Symfony\Component\Console\Output\OutputInterface;
use Vorna\Mrel\Formato\Humano;

/** A bar of the bytes that another process has read of some files, by what the system says of it. */
final class Progresso
{
    private readonly ProgressBar $barra;
    private readonly Humano $humano;
    /** @var array<string, int> bytes before each file, by its true path */
    private array $antes = [];
    private int $total = 0;

    /** @param array<string, int> $tamanhos by path, in the order of reading */
    public function __construct(OutputInterface $erros, array $tamanhos, string $lingua)
    {
        foreach ($tamanhos as $arquivo => $tamanho) {
            $this->antes[realpath($arquivo)] = $this->total;
            $this->total += $tamanho;
        }
        $this->humano = new Humano($lingua);
        $this->barra = new ProgressBar($erros, max(1, $this->total));
        $this->barra->setFormat('%percent:3s%% [%bar%] %message%');
        $this->mostra(0);
    }

    public function olha(int $processo): void
    {
        foreach (@scandir("/proc/$processo/fd") ?: [] as $fd) {
            $arquivo = @readlink("/proc/$processo/fd/$fd");
            if ($arquivo !== false && isset($this->antes[$arquivo])) {
                preg_match('/^pos:\s*(\d+)/', (string) @file_get_contents("/proc/$processo/fdinfo/$fd"), $m);
                $this->mostra($this->antes[$arquivo] + (int) ($m[1] ?? 0));
            }
        }
    }

    public function acaba(): void
    {
        $this->barra->clear();
    }

    private function mostra(int $lidos): void
    {
        // Files are looked into before they are read: the bar does not go back.
        $lidos = max($this->barra->getProgress(), min($lidos, $this->total));
        $this->barra->setMessage($this->humano->tamanho($lidos) . ' / ' . $this->humano->tamanho($this->total));
        $this->barra->setProgress($lidos);
    }
}
