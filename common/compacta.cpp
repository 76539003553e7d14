// Reading compact lines fast.
#include "common/compacta.h"

#include <algorithm>
#include <cstring>

#include "common/auxiliar.h"
#include "misc/palavras.h"

bool LeitorDeCabecas::converte(const char* digitos) {
    std::uint32_t t = 0;
    for (int i = 0; i < 8; ++i) {
        const char c = digitos[i];
        if (!digito(c) && (c < 'a' || c > 'f')) return false;
        t = t << 4 | static_cast<std::uint32_t>(digito(c) ? c - '0' : c - 'a' + 10);
    }
    digitos_ = oito_bytes(digitos);
    t_ = static_cast<time_t>(t);
    return true;
}

Crivo::Crivo(const char* id, time_t fim) : id_(id), tamanho_do_id_(std::strlen(id)), fim_(fim) {
    const std::size_t n = std::min(tamanho_do_id_, sizeof inicio_do_id_);
    std::memcpy(&inicio_do_id_, id, n);
    std::memset(&mascara_do_id_, 0xFF, n);
}

void Crivo::define(bool ve_ok, bool ve_end) {
    vistos_ = std::uint64_t{ve_ok} << OK | std::uint64_t{ve_end} << END;
}

inline bool Crivo::importa(const char* linha, std::size_t n) {
    // Short ones are left to the reader, so that eight bytes of any id may be looked at.
    constexpr std::size_t menor = 22;
    Cabeca c;
    if (n < menor || !cabecas_.le(linha, n, c) || c.t > fim_) return true;
    // Another status with the same low bits is shown for nothing; none is written.
    if (vistos_ >> (c.status & 63) & 1) return true;
    const char* id = linha + c.id;
    if ((oito_bytes(id) ^ inicio_do_id_) & mascara_do_id_) return false;
    // The line's own id, and at least one byte behind it.
    return n - c.id > tamanho_do_id_ && std::memcmp(id, id_, tamanho_do_id_) == 0;
}

std::size_t Crivo::sobra(const char* p, std::size_t n, std::size_t maior_linha) {
    std::size_t inicio = 0;  // of the line whose end is looked for
    while (true) {
        const std::size_t base = inicio;
        const std::size_t achados =
            finais_.acha(p + base, std::min(n - base, FinaisDeLinha::maior));
        for (std::size_t i = 0; i < achados; ++i) {
            const std::size_t fim = base + finais_[i] + 1;
            if (fim - inicio > maior_linha || importa(p + inicio, fim - inicio)) return inicio;
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

bool LeitorCompacto::le_lote(bool so_uma) {
    LeitorLinhas::Trecho trechos[maior_lote];
    lidas_ = leitor_.varias(trechos, so_uma ? 1 : maior_lote, maior_linha);
    tomadas_ = 0;
    for (std::size_t i = 0; i < lidas_; ++i) {
        Linha& l = linhas_[i];
        l.texto = trechos[i].inicio;
        l.tamanho = trechos[i].tamanho;
        l.usual = cabecas_.le(l.texto, l.tamanho, l.cabeca);
    }
    return lidas_ != 0;
}

Chave LeitorCompacto::Linha::id() const {
    const char* p = texto + cabeca.id;
    const std::size_t resto = tamanho - cabeca.id;
    // Ids are short: hardly ever does one reach behind what is looked at first.
    const std::uint64_t m = marcas(p, std::min<std::size_t>(resto, 32));
    const auto n = m ? static_cast<std::size_t>(std::countr_zero(m)) : Marcas(p, resto).proxima();
    return Chave(p, n);
}

char* LeitorCompacto::copia(const Linha& linha) {
    std::memcpy(copia_, linha.texto, linha.tamanho);
    copia_[linha.tamanho] = '\0';
    return copia_;
}

int LeitorCompacto::divide(const Linha& linha, char** campos, Chave& id) {
    const std::size_t n = linha.tamanho;
    Separadores s{};
    if (n <= Separadores::maior) s = copia_separando(copia_, linha.texto, n);
    // A line that has not its end, or another control before it, may mean something else.
    if (n > Separadores::maior || s.corta(n) != n - 1 || copia_[n - 1] != '\n') {
        id = Chave();
        return reparte(copia(linha), ' ', campos);
    }
    copia_[n - 1] = '\0';
    campos[0] = copia_;
    int total = 1;
    s.para_cada_branco([&](std::size_t i) {
        copia_[i] = '\0';
        campos[total++] = copia_ + i + 1;
    });
    if (id.texto) id.texto = campos[3];
    return total;
}
