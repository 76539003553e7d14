// Reading compact lines fast.
#include "common/compacta.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "common/auxiliar.h"

bool LeitorDeCabecas::converte(const char* digitos) {
    std::uint32_t t;
    if (!oito_hexadecimais(digitos, t)) return false;
    digitos_ = oito_bytes(digitos);
    t_ = static_cast<time_t>(t);
    return true;
}

// cppcheck-suppress uninitMemberVar ; of finais_ only what acha() has just written is read
Crivo::Crivo(const char* id, time_t fim) : id_(id), tamanho_do_id_(std::strlen(id)), fim_(fim) {
    const std::size_t n = std::min(tamanho_do_id_, sizeof inicio_do_id_);
    std::memcpy(&inicio_do_id_, id, n);
    std::memset(&mascara_do_id_, 0xFF, n);
}

void Crivo::define(bool ve_ok, bool ve_end) {
    vistos_ = std::uint64_t{ve_ok} << OK | std::uint64_t{ve_end} << END;
}

inline bool Crivo::importa(const char* linha, std::size_t n, LeitorDeCabecas& cabecas) const {
    // Short ones are left to the reader, so that eight bytes of any id may be looked at.
    constexpr std::size_t menor = 22;
    Cabeca c;
    if (n < menor || !cabecas.le(linha, n, c) || c.t > fim_) return true;
    // Another status with the same low bits is shown for nothing; none is written.
    if (vistos_ >> (c.status & 63) & 1) return true;
    const char* id = linha + c.id;
    if ((oito_bytes(id) ^ inicio_do_id_) & mascara_do_id_) return false;
    // The line's own id, and at least one byte behind it.
    return n - c.id > tamanho_do_id_ && std::memcmp(id, id_, tamanho_do_id_) == 0;
}

std::size_t Crivo::sobra(const char* p, std::size_t n, std::size_t maior_linha) {
    std::size_t inicio = 0;  // of the line whose end is looked for
    LeitorDeCabecas cabecas;
    while (true) {
        const std::size_t base = inicio;
        const std::size_t achados =
            finais_.acha(p + base, std::min(n - base, FinaisDeLinha::maior));
        for (std::size_t i = 0; i < achados; ++i) {
            const std::size_t fim = base + finais_[i] + 1;
            if (fim - inicio > maior_linha || importa(p + inicio, fim - inicio, cabecas))
                return inicio;
            inicio = fim;
        }
        if (achados == 0) return inicio;
    }
}

void LeitorCompacto::abre(int fd) {
    leitor_.abre(fd);
    lidas_ = tomadas_ = 0;
}

void LeitorCompacto::passa(Crivo& crivo) {
    std::size_t quantos;
    const char* lidos = leitor_.lidos(quantos);
    leitor_.pula(crivo.sobra(lidos, quantos, maior_linha));
}

bool LeitorCompacto::le_lote(bool so_uma, const bool (&serve)[LeitorDeCabecas::num_status]) {
    LeitorLinhas::Trecho trechos[maior_lote];
    const std::size_t lidas = leitor_.varias(trechos, so_uma ? 1 : maior_lote, maior_linha);
    time_t primeira = std::numeric_limits<time_t>::max(), ultima = 0;
    std::size_t i = 0, servem = 0;
    for (; i < lidas; ++i) {
        Linha& l = linhas_[i];
        l.texto = trechos[i].inicio;
        l.tamanho = trechos[i].tamanho;
        l.usual = cabecas_.le(l.texto, l.tamanho, l.cabeca);
        if (!l.usual) break;
        primeira = std::min(primeira, l.cabeca.t);
        ultima = std::max(ultima, l.cabeca.t);
        quais_servem_[servem] = static_cast<std::uint8_t>(i);
        servem += serve[l.cabeca.status];
    }
    usuais_ = i != 0;
    lidas_ = i == 0 && lidas != 0 ? 1 : i;
    tomadas_ = 0;
    if (lidas_ < lidas) leitor_.devolve(trechos[lidas_]);
    primeira_ = primeira;
    ultima_ = ultima;
    servem_ = servem;
    return lidas_ != 0;
}

char* LeitorCompacto::copia(const Linha& linha) {
    std::memcpy(copia_, linha.texto, linha.tamanho);
    copia_[linha.tamanho] = '\0';
    return copia_;
}

void LeitorCompacto::separa(const Linha& linha, Partes& p) {
    p.linha = &linha;
    p.id = Chave();
    const std::size_t fim = linha.tamanho - 1;
    if (fim >= Cortes::maior || linha.texto[fim] != '\n') return;
    Cortes cortes = copia_palavras(p.texto, linha.texto);
    cortes.limita(fim);
    p.inicios[0] = 0;
    p.campos = 1;
    // A line with another control than its end may mean something else.
    const bool brancos = cortes.para_cada([&](std::size_t i) {
        p.inicios[p.campos++] = static_cast<std::uint8_t>(i + 1);
        return linha.texto[i] == ' ';
    });
    if (!brancos) return;
    p.inicios[p.campos] = static_cast<std::uint8_t>(fim + 1);
    p.id = Chave(p.texto + p.inicios[3], static_cast<std::size_t>(p.inicios[4] - p.inicios[3] - 1));
}

int LeitorCompacto::campos(Partes& p, char** campos) {
    if (!p.id.texto) return reparte(copia(*p.linha), ' ', campos);
    for (int i = 0; i < p.campos; ++i) campos[i] = p.texto + p.inicios[i];
    return p.campos;
}
