// Reading compact lines fast.
#include "common/compacta.h"

#include <algorithm>
#include <cstring>

#include "common/auxiliar.h"

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
    if (tamanho_do_id_ >= sizeof inicio_do_id_) inicio_do_id_ = oito_bytes(id);
}

inline bool Crivo::importa(const char* linha, std::size_t n) {
    Cabeca c;
    if (!cabecas_.le(linha, n, c) || c.t > fim_) return true;
    if ((ve_ok_ && c.status == OK) || (ve_end_ && c.status == END)) return true;
    // The line's own id, and at least one byte behind it.
    const char* id = linha + c.id;
    if (n - c.id <= tamanho_do_id_) return false;
    if (tamanho_do_id_ >= sizeof inicio_do_id_ && oito_bytes(id) != inicio_do_id_) return false;
    return std::memcmp(id, id_, tamanho_do_id_) == 0;
}

std::size_t Crivo::sobra(const char* p, std::size_t n, std::size_t maior_linha) {
    const char* const inicio = p;
    const char* const fim = p + n;
    for (;;) {
        const std::size_t parte = std::min<std::size_t>(fim - p, FinaisDeLinha::maior);
        const std::size_t linhas = finais_.acha(p, parte);
        const char* const base = p;
        for (std::size_t i = 0; i < linhas; ++i) {
            const char* seguinte = base + finais_[i] + 1;
            const auto tamanho = static_cast<std::size_t>(seguinte - p);
            if (tamanho > maior_linha || importa(p, tamanho))
                return static_cast<std::size_t>(p - inicio);
            p = seguinte;
        }
        if (linhas == 0 || p == fim) return static_cast<std::size_t>(p - inicio);
    }
}
