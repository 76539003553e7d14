// Looking at texts several bytes at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// The first eight bytes of a text that has as many.
inline std::uint64_t oito_bytes(const char* p) {
    std::uint64_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

// Reads the number that eight lower-case hexadecimal digits write. False when they are not such
// digits.
inline bool oito_hexadecimais(const char* p, std::uint32_t& numero) {
    constexpr std::uint64_t um_em_cada = 0x0101010101010101u;
    std::uint64_t v = oito_bytes(p);
    const std::uint64_t letras = v >> 6 & um_em_cada;  // 1 in each byte that may be 'a' to 'f'
    const std::uint64_t altos = v & um_em_cada * 0xF0;
    v = (v & um_em_cada * 0x0F) + letras * 9;
    // '0' is 0x30 and 'a' 0x61; only letters may be worth ten or more, and less than 16.
    if (altos != (um_em_cada + letras) * 0x30 || (v & um_em_cada * 0x10) != 0 ||
        ((v + um_em_cada * 6) >> 4 & um_em_cada) != letras)
        return false;
    if constexpr (std::endian::native == std::endian::little) v = __builtin_bswap64(v);
    v = (v | v >> 4) & 0x00FF00FF00FF00FFu;
    v = (v | v >> 8) & 0x0000FFFF0000FFFFu;
    numero = static_cast<std::uint32_t>(v | v >> 16);
    return true;
}

// Whether there is a NUL in the first `n` bytes, at least sixteen.
#ifdef __SSE2__
inline bool tem_nul(const char* p, std::size_t n) {
    const auto zeros = [](const char* q) {
        return _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(q)),
                              _mm_setzero_si128());
    };
    __m128i achados = zeros(p + n - 16);
    for (std::size_t i = 0; i + 16 < n; i += 16) achados = _mm_or_si128(achados, zeros(p + i));
    return _mm_movemask_epi8(achados) != 0;
}
#else
inline bool tem_nul(const char* p, std::size_t n) {
    return std::memchr(p, '\0', n) != nullptr;
}
#endif

// Where the first blank stands among the `n` bytes at `p`; `n` when there is none. 32 bytes must be
// readable, whatever `n` is: the length of a short text is unpredictable, so there is no branch on
// it.
inline std::size_t primeiro_branco_um_a_um(const char* p, std::size_t n) {
    const void* b = std::memchr(p, ' ', n);
    return b ? static_cast<std::size_t>(static_cast<const char*>(b) - p) : n;
}

#ifdef __SSE2__
inline std::size_t primeiro_branco(const char* p, std::size_t n) {
    const auto brancos = [](const char* q) {
        const __m128i texto = _mm_loadu_si128(reinterpret_cast<const __m128i*>(q));
        const int m = _mm_movemask_epi8(_mm_cmpeq_epi8(texto, _mm_set1_epi8(' ')));
        return static_cast<std::uint64_t>(static_cast<unsigned>(m));
    };
    const std::uint64_t fim = std::uint64_t{1} << (n < 32 ? n : 32);
    const auto i =
        static_cast<unsigned>(std::countr_zero(brancos(p) | brancos(p + 16) << 16 | fim));
    return i < 32 ? i : 32 + primeiro_branco_um_a_um(p + 32, n - 32);
}
#else
inline std::size_t primeiro_branco(const char* p, std::size_t n) {
    return primeiro_branco_um_a_um(p, n);
}
#endif

// Whether the `n` bytes at `a` and at `b` are the same: for keys, which are short.
inline bool mesmos_bytes(const char* a, const char* b, std::size_t n) {
    if (n < 8) return std::memcmp(a, b, n) == 0;
    const std::size_t ultimo = n - 8;
    for (std::size_t i = 0; i < ultimo; i += 8)
        if (oito_bytes(a + i) != oito_bytes(b + i)) return false;
    return oito_bytes(a + ultimo) == oito_bytes(b + ultimo);
}
