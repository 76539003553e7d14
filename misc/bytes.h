// Looking at texts several bytes at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "misc/vetor.h"

// The first eight bytes of a text that has as many.
inline std::uint64_t oito_bytes(const char* p) {
    std::uint64_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

// Reads the number that eight lower-case hexadecimal digits write. False when they are not such
// digits. All eight are looked at together, a byte each:
//
//     text              '6'  '9'  'b'  '2'  'e'  '5'  'a'  'd'
//     bytes             36   39   62   32   65   35   61   64
//     letras            00   00   01   00   01   00   01   01    bit 6: perhaps 'a' to 'f'
//     altos             30   30   60   30   60   30   60   60    what '0' or 'a' has there, or no
//     v                 06   09   0b   02   0e   05   0a   0d    low four bits, and 9 for a letter
//     (v + 6) >> 4      00   00   01   00   01   00   01   01    ten or more: just the letters
//
// What is no digit fails in one of three places: ':' (3a) and '`' (60) are worth ten without being
// a letter, or less although they are; 'g' (67) is worth sixteen; all others have another `altos`.
// Then neighbours are joined, the first digit highest:
//
//     06090b020e050a0d   each byte a digit
//     0069 00b2 00e5 00ad   each two bytes two digits
//     000069b2   0000e5ad
//              69b2e5ad
inline bool oito_hexadecimais(const char* p, std::uint32_t& numero) {
    constexpr std::uint64_t um_em_cada = 0x0101010101010101u;
    std::uint64_t v = oito_bytes(p);
    const std::uint64_t letras = v >> 6 & um_em_cada;
    const std::uint64_t altos = v & um_em_cada * 0xF0;
    if (altos != (um_em_cada + letras) * 0x30) return false;
    v = (v & um_em_cada * 0x0F) + letras * 9;
    if ((v & um_em_cada * 0x10) != 0) return false;
    if (((v + um_em_cada * 6) >> 4 & um_em_cada) != letras) return false;
    if constexpr (std::endian::native == std::endian::little) v = __builtin_bswap64(v);
    v = (v | v >> 4) & 0x00FF00FF00FF00FFu;
    v = (v | v >> 8) & 0x0000FFFF0000FFFFu;
    numero = static_cast<std::uint32_t>(v | v >> 16);
    return true;
}

// Whether there is a NUL in the first `n` bytes, at least sixteen. The last sixteen may overlap
// those before them.
inline bool tem_nul(const char* p, std::size_t n) {
    Vetor achados = Vetor(p + n - Vetor::bytes).igual('\0');
    for (std::size_t i = 0; i + Vetor::bytes < n; i += Vetor::bytes)
        achados = achados | Vetor(p + i).igual('\0');
    return achados.mascara() != 0;
}

inline std::size_t primeiro_branco_um_a_um(const char* p, std::size_t n) {
    const void* b = std::memchr(p, ' ', n);
    return b ? static_cast<std::size_t>(static_cast<const char*>(b) - p) : n;
}

// Where the first blank stands among the `n` bytes at `p`; `n` when there is none. 32 bytes must be
// readable, whatever `n` is: the length of a short text is unpredictable, so there is no branch on
// it. Instead a bit at `n` stands for the end of the text:
//
//     p, n = 4     a n a @ x ' ' ...     brancos   bit 5
//                          ^ n           fim       bit 4, the lower one
inline std::size_t primeiro_branco(const char* p, std::size_t n) {
    const std::uint64_t brancos = Vetor(p).igual(' ').mascara() | Vetor(p + 16).igual(' ').mascara()
                                                                      << 16;
    const std::uint64_t fim = std::uint64_t{1} << (n < 32 ? n : 32);
    const auto i = static_cast<unsigned>(std::countr_zero(brancos | fim));
    return i < 32 ? i : 32 + primeiro_branco_um_a_um(p + 32, n - 32);
}

// Whether the `n` bytes at `a` and at `b` are the same: for keys, which are short.
inline bool mesmos_bytes(const char* a, const char* b, std::size_t n) {
    if (n < 8) return std::memcmp(a, b, n) == 0;
    const std::size_t ultimo = n - 8;
    for (std::size_t i = 0; i < ultimo; i += 8)
        if (oito_bytes(a + i) != oito_bytes(b + i)) return false;
    return oito_bytes(a + ultimo) == oito_bytes(b + ultimo);
}
