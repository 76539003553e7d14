// Sixteen bytes looked at together: by the processor's vector instructions where it has SSE2, else
// one by one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// A comparison answers a vector, with 0xFF in each byte for which it holds and 0 in the others.
// mascara() makes a number of that, a bit for each byte, the first byte's lowest:
//
//     bytes      a    n    a    ' '  5    \n   ...
//     ate(' ')   00   00   00   FF   00   FF
//     mascara()  bits 3 and 5
class Vetor {
  public:
    static constexpr std::size_t bytes = 16;

#ifdef __SSE2__
    explicit Vetor(const char* p) : v_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))) {}
    void guarda(char* p) const {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v_);
    }

    Vetor igual(char c) const {
        return Vetor(_mm_cmpeq_epi8(v_, _mm_set1_epi8(c)));
    }
    // At most `c`, both unsigned. (There is no such instruction: the lesser of both is the byte.)
    Vetor ate(char c) const {
        return Vetor(_mm_cmpeq_epi8(v_, _mm_min_epu8(v_, _mm_set1_epi8(c))));
    }
    Vetor operator|(Vetor outro) const {
        return Vetor(_mm_or_si128(v_, outro.v_));
    }
    // The bytes, with a NUL in place of each for which the comparison `quais` holds.
    Vetor sem(Vetor quais) const {
        return Vetor(_mm_andnot_si128(quais.v_, v_));
    }

    std::uint64_t mascara() const {
        return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(v_)));
    }

  private:
    explicit Vetor(__m128i v) : v_(v) {}

    __m128i v_;
#else
    explicit Vetor(const char* p) {
        std::memcpy(v_, p, bytes);
    }
    void guarda(char* p) const {
        std::memcpy(p, v_, bytes);
    }

    Vetor igual(char c) const {
        return de([&](std::size_t i) { return todos(v_[i] == static_cast<std::uint8_t>(c)); });
    }
    Vetor ate(char c) const {
        return de([&](std::size_t i) { return todos(v_[i] <= static_cast<std::uint8_t>(c)); });
    }
    Vetor operator|(Vetor outro) const {
        return de([&](std::size_t i) { return v_[i] | outro.v_[i]; });
    }
    Vetor sem(Vetor quais) const {
        return de([&](std::size_t i) { return v_[i] & ~quais.v_[i]; });
    }

    std::uint64_t mascara() const {
        std::uint64_t m = 0;
        for (std::size_t i = 0; i < bytes; ++i) m |= std::uint64_t{v_[i]} >> 7 << i;
        return m;
    }

  private:
    Vetor() = default;
    static int todos(bool sim) {
        return sim ? 0xFF : 0;
    }
    template <class Byte>
    static Vetor de(Byte byte) {
        Vetor r;
        for (std::size_t i = 0; i < bytes; ++i) r.v_[i] = static_cast<std::uint8_t>(byte(i));
        return r;
    }

    std::uint8_t v_[bytes] = {};
#endif
};

// The masks of four vectors as one number: `de_16` answers that of the sixteen bytes which begin at
// `i`, 16 behind it and so on. (Always inline: called, it would take longer than what it does.)
template <class De16>
[[gnu::always_inline]] inline std::uint64_t mascara_de_64(De16 de_16, std::size_t i = 0) {
    return de_16(i) | de_16(i + 16) << 16 | de_16(i + 32) << 32 | de_16(i + 48) << 48;
}
