// Reading numbers out of log text.
#pragma once

#include <cstdint>
#include <cstdlib>

// The decimal number at the start of `texto` (blanks and a sign allowed, 0 when there is none):
// read with 64 bits, the low 32 kept, so that over-long numbers give the same on every machine.
inline std::int32_t decimal32(const char* texto) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(std::strtoll(texto, nullptr, 10)));
}
