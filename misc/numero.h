// Reading numbers out of log text.
#pragma once

#include <cstdint>
#include <cstdlib>

// The decimal number at the start of `texto` (blanks and a sign allowed, 0 when there is none):
// read with 64 bits, the low 32 kept, so that over-long numbers give the same on every machine.
inline std::int32_t decimal32(const char* texto) {
    // Short and plain, as nearly all are: no need to ask the C library.
    std::int32_t n = 0;
    int i = 0;
    for (; i < 9 && texto[i] >= '0' && texto[i] <= '9'; ++i) n = n * 10 + (texto[i] - '0');
    if (i > 0 && i < 9) return n;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(std::strtoll(texto, nullptr, 10)));
}
