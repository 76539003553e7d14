// Looking at texts several bytes at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// The first eight bytes of a text that has as many.
inline std::uint64_t oito_bytes(const char* p) {
    std::uint64_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

// The number that eight lower-case hexadecimal digits write; false when they are others.
inline bool oito_hexadecimais(const char* p, std::uint32_t& numero) {
    constexpr std::uint64_t um_em_cada = 0x0101010101010101u;
    std::uint64_t v = oito_bytes(p);
    const std::uint64_t letras = v >> 6 & um_em_cada;  // 1 in each byte that may be of 'a' to 'f'
    const std::uint64_t altos = v & um_em_cada * 0xF0;
    v = (v & um_em_cada * 0x0F) + letras * 9;
    // '0' is 0x30 and 'a' 0x61; letters, and they alone, are worth ten or more, and less than 16.
    if (altos != (um_em_cada + letras) * 0x30 || (v & um_em_cada * 0x10) != 0 ||
        ((v + um_em_cada * 6) >> 4 & um_em_cada) != letras)
        return false;
    if constexpr (std::endian::native == std::endian::little) v = __builtin_bswap64(v);
    v = (v | v >> 4) & 0x00FF00FF00FF00FFu;
    v = (v | v >> 8) & 0x0000FFFF0000FFFFu;
    numero = static_cast<std::uint32_t>(v | v >> 16);
    return true;
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
