<?php

declare(strict_types=1);

namespace Vorna\Mrel\Saude;

/** What all checks of one relay came to at one moment. */
final readonly class Resultado
{
    /**
     * @param string $relay its name
     * @param list<Verificacao> $verificacoes in the order of the checks
     * @param array<string, int|float|array<string, int|float>> $medidas figures by name, as in Metricas; one
     *     that is not known is left out
     */
    public function __construct(
        public string $relay,
        public \DateTimeImmutable $quando,
        public array $verificacoes,
        public array $medidas = [],
    ) {
    }

    public function nivel(): Nivel
    {
        return Nivel::pior(...array_map(static fn (Verificacao $v): Nivel => $v->nivel, $this->verificacoes));
    }

    /** @return list<Verificacao> those that are not well, the worst first */
    public function problemas(): array
    {
        $ordem = [Nivel::Critico, Nivel::Desconhecido, Nivel::Aviso];
        $problemas = array_filter($this->verificacoes, static fn (Verificacao $v): bool => $v->nivel !== Nivel::Ok);
        usort($problemas, static fn (Verificacao $a, Verificacao $b): int =>
            array_search($a->nivel, $ordem, true) <=> array_search($b->nivel, $ordem, true));
        return $problemas;
    }

    /** The same with one check more. */
    public function mais(Verificacao $verificacao): self
    {
        return new self($this->relay, $this->quando, [...$this->verificacoes, $verificacao], $this->medidas);
    }

    /**
     * As JSON has it.
     *
     * @return array{estado: string, quando: string, verificacoes: list<array<string, string>>}
     */
    public function arvore(string $lingua): array
    {
        return [
            'estado' => $this->nivel()->value,
            'quando' => $this->quando->format(DATE_ATOM),
            'verificacoes' => array_map(static fn (Verificacao $v): array => [
                'nome' => $v->nome,
                'estado' => $v->nivel->value,
                'texto' => $v->texto($lingua),
                'conselho' => $v->conselho($lingua),
            ], $this->verificacoes),
        ];
    }
}
