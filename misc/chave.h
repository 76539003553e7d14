// Keys of the tables: texts that are measured and hashed once for all the lookups.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "misc/bytes.h"

// Drawn once a process: the keys come from whoever sends mail, who must not be able to choose texts
// that all fall into one place.
extern const std::uint64_t semente_das_chaves;

// Both halves of a product, which depend on every bit of both factors.
inline std::uint64_t mistura(std::uint64_t a, std::uint64_t b) {
#ifdef __SIZEOF_INT128__
    const auto produto = static_cast<unsigned __int128>(a) * b;
    return static_cast<std::uint64_t>(produto) ^ static_cast<std::uint64_t>(produto >> 64);
#else
    // A processor of 32 bits has no such product.
    const std::uint64_t h = (a ^ std::rotl(b, 32)) * 0x9E3779B97F4A7C15u;
    return ((h ^ h >> 32) + b) * 0xD1B54A32D192ED03u;
#endif
}

// Hash of a key's bytes: sixteen at a time, the last ones perhaps twice.
inline std::uint32_t hash_chave(const char* chave, std::size_t tamanho) {
    // Multiplied by the seed, so that nobody can make up for another length with other bytes.
    std::uint64_t h = semente_das_chaves * (2 * std::uint64_t{tamanho} + 1);
    std::uint64_t primeiros = 0, ultimos = 0;
    if (tamanho >= 8) {
        const char* const fim = chave + tamanho;
        for (; fim - chave > 16; chave += 16)
            h = mistura(oito_bytes(chave) ^ h, oito_bytes(chave + 8) ^ ~semente_das_chaves);
        primeiros = tamanho < 16 ? oito_bytes(chave) : oito_bytes(fim - 16);
        ultimos = oito_bytes(fim - 8);
    } else {
        std::memcpy(&ultimos, chave, tamanho);
    }
    h = mistura(primeiros ^ h, ultimos ^ ~semente_das_chaves);
    return static_cast<std::uint32_t>(h ^ h >> 32);
}

// A key to look for, its hash computed once for all the lookups.
struct Chave {
    const char* texto = nullptr;
    std::size_t tamanho = 0;
    std::uint32_t hash = 0;

    Chave() = default;
    Chave(const char* t, std::size_t n) : texto(t), tamanho(n), hash(hash_chave(t, n)) {}
    explicit Chave(const char* t) : Chave(t, std::strlen(t)) {}
    operator std::string_view() const { return {texto, tamanho}; }
};

// Whether a key kept in a field of `n` bytes, zero to its end, is this one.
template <std::size_t n>
bool igual_ao_campo(const char (&campo)[n], const Chave& c) {
    return c.tamanho < n && campo[c.tamanho] == '\0' && mesmos_bytes(campo, c.texto, c.tamanho);
}
