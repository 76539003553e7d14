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

// The positions of the line feeds in a piece of text, in ascending order.
class FinaisDeLinha {
  public:
    static constexpr std::size_t maior = 4096;  // bytes of a piece

    // Finds those in the first `n` bytes at `p`, at most `maior`; a rest that does not fill 64
    // bytes is left out. Answers how many. Whether 64 bytes hold none, one or two is unpredictable,
    // so up to two are noted without a branch.
    std::size_t acha(const char* p, std::size_t n) {
        std::size_t achados = 0;
        for (std::size_t i = 0; i + 64 <= n; i += 64) {
            std::uint64_t m = finais(p + i);
            for (int vez = 0; vez < 2; ++vez) nota(achados, i, m);
            while (m != 0) nota(achados, i, m);
        }
        return achados;
    }

    std::size_t operator[](std::size_t i) const { return posicoes_[i]; }

  private:
    void nota(std::size_t& achados, std::size_t i, std::uint64_t& m) {
        const std::uint64_t sem_zero = m | std::uint64_t{1} << 63;
        posicoes_[achados] =
            static_cast<std::uint16_t>(i + static_cast<unsigned>(std::countr_zero(sem_zero)));
        achados += m != 0;
        m &= m - 1;
    }

    std::uint16_t posicoes_[maior + 2];
};
