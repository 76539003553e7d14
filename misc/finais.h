// Finding the ends of lines, sixty-four bytes at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "misc/vetor.h"

// Bit i tells whether p[i] is a line feed, for the 64 bytes at `p`.
inline std::uint64_t finais(const char* p) {
    return mascara_de_64([p](std::size_t i) { return Vetor(p + i).igual('\n').mascara(); });
}

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
    // Notes the lowest bit of `m` and takes it out:
    //
    //     m            ..01 0001 0000    countr_zero: the line feed is byte 4
    //     m - 1        ..01 0000 1111
    //     m & (m - 1)  ..01 0000 0000    the next one is byte 8
    //
    // Without any bit the place is written too, but not counted.
    void nota(std::size_t& achados, std::size_t i, std::uint64_t& m) {
        const std::uint64_t sem_zero = m | std::uint64_t{1} << 63;
        posicoes_[achados] =
            static_cast<std::uint16_t>(i + static_cast<unsigned>(std::countr_zero(sem_zero)));
        achados += m != 0;
        m &= m - 1;
    }

    std::uint16_t posicoes_[maior + 2];
};
