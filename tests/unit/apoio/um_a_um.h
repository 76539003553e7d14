// What misc finds many bytes at a time, found one by one.
#pragma once

#include <cstddef>
#include <cstdint>

#include "misc/palavras.h"

inline std::uint64_t finais_um_a_um(const char* p) {
    std::uint64_t m = 0;
    for (unsigned i = 0; i < 64; ++i) m |= std::uint64_t{p[i] == '\n'} << i;
    return m;
}

inline Cortes copia_palavras_uma_a_uma(char* para, const char* de) {
    Cortes c{};
    for (std::size_t i = 0; i < Cortes::maior; ++i) {
        const bool corte = static_cast<unsigned char>(de[i]) <= ' ';
        para[i] = corte ? '\0' : de[i];
        c.metades[i / 64] |= std::uint64_t{corte} << i % 64;
    }
    return c;
}
