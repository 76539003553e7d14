// Looking at texts several bytes at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// The first eight bytes of a text that has as many.
inline std::uint64_t oito_bytes(const char* p) {
    std::uint64_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

// Whether there is a NUL in the first `n` bytes, at least eight.
inline bool tem_nul(const char* p, std::size_t n) {
    // A byte borrows from its high bit only when it was zero (or stands above one that was).
    const auto zeros = [](std::uint64_t v) {
        return (v - 0x0101010101010101u) & ~v & 0x8080808080808080u;
    };
    std::uint64_t achados = zeros(oito_bytes(p + n - 8));
    for (std::size_t i = 0; i + 8 < n; i += 8) achados |= zeros(oito_bytes(p + i));
    return achados != 0;
}

// Whether the `n` bytes at `a` and at `b` are the same: for keys, which are short.
inline bool mesmos_bytes(const char* a, const char* b, std::size_t n) {
    if (n < 8) return std::memcmp(a, b, n) == 0;
    const std::size_t ultimo = n - 8;
    for (std::size_t i = 0; i < ultimo; i += 8)
        if (oito_bytes(a + i) != oito_bytes(b + i)) return false;
    return oito_bytes(a + ultimo) == oito_bytes(b + ultimo);
}
