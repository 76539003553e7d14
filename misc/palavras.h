// Splitting a line into words, sixteen bytes at a time where the processor can.
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

// What separates the words of a text of up to 128 bytes: bit i of the first or second half stands
// for its byte i.
struct Separadores {
    static constexpr std::size_t maior = 128;

    std::uint64_t brancos[2];
    std::uint64_t controles[2];  // bytes up to CR: what ends a line is among them

    // Forgets the blanks behind the first of the controls. Answers where it stands, or `n`.
    std::size_t corta(std::size_t n) {
        for (std::size_t metade = 0; metade < 2; ++metade) {
            if (controles[metade] == 0) continue;
            brancos[metade] &= (controles[metade] & -controles[metade]) - 1;
            if (metade == 0) brancos[1] = 0;
            return metade * 64 + static_cast<unsigned>(std::countr_zero(controles[metade]));
        }
        return n;
    }

    // Whether a blank stands directly behind another.
    bool seguidos() const {
        return ((brancos[0] & brancos[0] >> 1) | (brancos[1] & brancos[1] >> 1) |
                (brancos[0] >> 63 & brancos[1])) != 0;
    }

    // Where the first blank from `inicio` (in the first half) on stands, or `fim`.
    std::size_t branco_desde(std::size_t inicio, std::size_t fim) const {
        if (const std::uint64_t m = brancos[0] >> inicio)
            return inicio + static_cast<unsigned>(std::countr_zero(m));
        return brancos[1] ? 64 + static_cast<unsigned>(std::countr_zero(brancos[1])) : fim;
    }

    template <class Acao>
    void para_cada_branco(Acao acao) const {
        for (std::size_t metade = 0; metade < 2; ++metade)
            for (std::uint64_t m = brancos[metade]; m != 0; m &= m - 1)
                acao(metade * 64 + static_cast<unsigned>(std::countr_zero(m)));
    }
};

// Copies `n` bytes, at most Separadores::maior, and tells what separates their words.
inline Separadores copia_separando_um_a_um(char* para, const char* de, std::size_t n) {
    Separadores s{};
    for (std::size_t i = 0; i < n; ++i) {
        para[i] = de[i];
        s.brancos[i / 64] |= std::uint64_t{de[i] == ' '} << i % 64;
        s.controles[i / 64] |= std::uint64_t{static_cast<unsigned char>(de[i]) <= '\r'} << i % 64;
    }
    return s;
}

#ifdef __SSE2__
struct Dezesseis {
    std::uint64_t brancos, controles;
};

inline Dezesseis copia_16(char* para, const char* de) {
    const __m128i texto = _mm_loadu_si128(reinterpret_cast<const __m128i*>(de));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(para), texto);
    const __m128i branco = _mm_cmpeq_epi8(texto, _mm_set1_epi8(' '));
    const __m128i controle = _mm_cmpeq_epi8(texto, _mm_min_epu8(texto, _mm_set1_epi8('\r')));
    return {static_cast<unsigned>(_mm_movemask_epi8(branco)),
            static_cast<unsigned>(_mm_movemask_epi8(controle))};
}

// Always inline: sixteen bytes at a time leave no time for an answer in memory.
[[gnu::always_inline]] inline Separadores copia_separando(char* para, const char* de,
                                                          std::size_t n) {
    if (n < 16) return copia_separando_um_a_um(para, de, n);
    Dezesseis primeira{}, segunda{};
    const auto junta = [](Dezesseis& metade, const Dezesseis& d, std::size_t i) {
        metade.brancos |= d.brancos << i;
        metade.controles |= d.controles << i;
    };
    if (n >= 64) {
        junta(primeira, copia_16(para, de), 0);
        junta(primeira, copia_16(para + 16, de + 16), 16);
        junta(primeira, copia_16(para + 32, de + 32), 32);
        junta(primeira, copia_16(para + 48, de + 48), 48);
    }
    const std::size_t antes = n >= 64 ? 64 : 0;
    const std::size_t resto = n - antes;
    for (std::size_t i = 0; i + 16 < resto; i += 16)
        junta(segunda, copia_16(para + antes + i, de + antes + i), i);
    // The last sixteen may overlap those before them, and say the same about them.
    const Dezesseis d = copia_16(para + n - 16, de + n - 16);
    if (resto >= 16)
        junta(segunda, d, resto - 16);
    else if (resto > 0)
        junta(segunda, {d.brancos >> (16 - resto), d.controles >> (16 - resto)}, 0);
    if (antes == 0) return {{segunda.brancos, 0}, {segunda.controles, 0}};
    return {{primeira.brancos, segunda.brancos}, {primeira.controles, segunda.controles}};
}
#else
inline Separadores copia_separando(char* para, const char* de, std::size_t n) {
    return copia_separando_um_a_um(para, de, n);
}
#endif

// Walks over the marks of a text of known length.
class Marcas {
  public:
    Marcas(const char* texto, std::size_t n) : texto_(texto), n_(n) { examina(); }

    // The position of the next blank, LF or CR, or the end. What stands before it may have changed.
    std::size_t proxima() {
        if (marcas_ == 0 && !avanca()) return n_;
        const std::size_t i = inicio_ + static_cast<unsigned>(std::countr_zero(marcas_));
        marcas_ &= marcas_ - 1;
        return i;
    }

  private:
    static constexpr std::size_t maior_ = 64;

    void examina() {
        const std::size_t tamanho = n_ - inicio_ < maior_ ? n_ - inicio_ : maior_;
        marcas_ = marcas(texto_ + inicio_, tamanho);
        fim_ = inicio_ + tamanho;
    }

    // Goes on to the next part of the text that has a mark.
    bool avanca() {
        while (marcas_ == 0) {
            if (fim_ == n_) return false;
            const std::size_t visto = fim_;
            // A short rest is examined together with what stands before it.
            inicio_ = n_ - visto < maior_ ? n_ - maior_ : visto;
            examina();
            marcas_ = marcas_ >> (visto - inicio_) << (visto - inicio_);
        }
        return true;
    }

    const char* texto_;
    std::size_t n_;
    std::size_t inicio_ = 0, fim_;  // what was examined last
    std::uint64_t marcas_;          // its marks that were not told yet
};

// Shows the words of a dispatcher line, as positions [inicio, fim): the one that begins the text
// (it may be empty), then at most `max` more, the last of which is cut to its first character.
// Words end at runs of blanks; the line ends at LF, at its `n` bytes, or at a CR, but a CR behind a
// blank is a word. Answers where the line ended. palavra() may write at `fim`.
template <class Palavra>
std::size_t percorre_palavras(const char* texto, std::size_t n, int max, Palavra palavra) {
    Marcas marcas(texto, n);
    std::size_t inicio = 0;
    std::size_t fim = max > 0 ? marcas.proxima() : 0;
    for (; max > 0 && fim < n && texto[fim] == ' '; --max) {
        palavra(inicio, fim);
        inicio = fim + 1;
        while (inicio < n && texto[inicio] == ' ') ++inicio;
        if (inicio == n || texto[inicio] == '\n') return inicio;
        do {
            fim = max > 1 ? marcas.proxima() : inicio + 1;
        } while (fim <= inicio);
    }
    palavra(inicio, fim);
    return fim;
}
