// Finding the ends of lines, sixty-four bytes at a time where the processor can.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Bit i tells whether p[i] is a line feed, for the 64 bytes at `p`.
inline std::uint64_t finais_um_a_um(const char* p) {
    std::uint64_t m = 0;
    for (unsigned i = 0; i < 64; ++i) m |= std::uint64_t{p[i] == '\n'} << i;
    return m;
}

#ifdef __SSE2__
inline std::uint64_t finais_de_16(const char* p) {
    const __m128i texto = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i achados = _mm_cmpeq_epi8(texto, _mm_set1_epi8('\n'));
    return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(achados)));
}

inline std::uint64_t finais(const char* p) {
    return finais_de_16(p) | finais_de_16(p + 16) << 16 | finais_de_16(p + 32) << 32 |
           finais_de_16(p + 48) << 48;
}
#else
inline std::uint64_t finais(const char* p) {
    return finais_um_a_um(p);
}
#endif
