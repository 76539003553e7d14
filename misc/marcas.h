// Finding the ends of words, sixteen bytes at a time where the processor can.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

inline bool marca(char c) {
    return c == ' ' || c == '\n' || c == '\r';
}

// Bit i tells whether p[i] is a blank, LF or CR; at most 64 bytes, and none behind them is read.
inline std::uint64_t marcas_uma_a_uma(const char* p, std::size_t n) {
    std::uint64_t m = 0;
    for (std::size_t i = 0; i < n; ++i) m |= std::uint64_t{marca(p[i])} << i;
    return m;
}

#ifdef __SSE2__
inline std::uint64_t marcas_de_16(const char* p) {
    const __m128i texto = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i branco = _mm_cmpeq_epi8(texto, _mm_set1_epi8(' '));
    const __m128i lf = _mm_cmpeq_epi8(texto, _mm_set1_epi8('\n'));
    const __m128i cr = _mm_cmpeq_epi8(texto, _mm_set1_epi8('\r'));
    const int m = _mm_movemask_epi8(_mm_or_si128(branco, _mm_or_si128(lf, cr)));
    return static_cast<std::uint64_t>(static_cast<unsigned>(m));
}

inline std::uint64_t marcas(const char* p, std::size_t n) {
    if (n < 16) return marcas_uma_a_uma(p, n);
    // The last sixteen may overlap those before them, and say the same about them.
    std::uint64_t m = marcas_de_16(p + n - 16) << (n - 16);
    for (std::size_t i = 0; i + 16 < n; i += 16) m |= marcas_de_16(p + i) << i;
    return m;
}
#else
inline std::uint64_t marcas(const char* p, std::size_t n) {
    return marcas_uma_a_uma(p, n);
}
#endif

// Walks over the marks of a text of known end. The text before the point asked for may change.
class Marcas {
  public:
    Marcas(char* texto, char* fim) : bloco_(texto), fim_(fim) { examina(); }

    // The first blank, LF or CR at `p` or behind it, or the end. `p` never goes back.
    char* a_partir(char* p) {
        for (;;) {
            const auto visto = static_cast<std::size_t>(p - bloco_);
            if (visto < tamanho_) {
                const std::uint64_t m = marcas_ >> visto;
                if (m != 0) return p + std::countr_zero(m);
            }
            if (bloco_ + tamanho_ == fim_) return fim_;
            bloco_ += tamanho_;
            if (p < bloco_) p = bloco_;
            // A short rest is examined together with what stands before it.
            if (static_cast<std::size_t>(fim_ - bloco_) < maior_) bloco_ = fim_ - maior_;
            examina();
        }
    }

  private:
    static constexpr std::size_t maior_ = 64;

    void examina() {
        const auto resto = static_cast<std::size_t>(fim_ - bloco_);
        tamanho_ = resto < maior_ ? resto : maior_;
        marcas_ = marcas(bloco_, tamanho_);
    }

    char* bloco_;
    char* fim_;
    std::size_t tamanho_;
    std::uint64_t marcas_;
};
