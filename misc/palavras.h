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

// Bit i tells whether p[i] is a blank, LF or CR, for at most 64 bytes. Nothing behind them is read.
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
    // The last sixteen may overlap those before them; both say the same about the overlap.
    std::uint64_t m = marcas_de_16(p + n - 16) << (n - 16);
    for (std::size_t i = 0; i + 16 < n; i += 16) m |= marcas_de_16(p + i) << i;
    return m;
}
#else
inline std::uint64_t marcas(const char* p, std::size_t n) {
    return marcas_uma_a_uma(p, n);
}
#endif

// Which bytes of a text of up to 128 are blanks or less: bit i of the first or second half stands
// for its byte i.
struct Cortes {
    static constexpr std::size_t maior = 128;

    std::uint64_t metades[2];

    bool operator==(const Cortes&) const = default;

    // Forgets those from `n` on.
    void limita(std::size_t n) {
        if (n < 64) metades[0] &= (std::uint64_t{1} << n) - 1;
        if (n < 128) metades[1] &= n <= 64 ? 0 : (std::uint64_t{1} << (n - 64)) - 1;
    }

    // Whether one stands directly behind another.
    bool seguidos() const {
        return ((metades[0] & metades[0] >> 1) | (metades[1] & metades[1] >> 1) |
                (metades[0] >> 63 & metades[1])) != 0;
    }

    // Calls `acao` with each position, in ascending order, until it answers false. True when it
    // never did.
    template <class Acao>
    bool para_cada(Acao acao) const {
        for (std::size_t metade = 0; metade < 2; ++metade)
            for (std::uint64_t m = metades[metade]; m != 0; m &= m - 1)
                if (!acao(metade * 64 + static_cast<unsigned>(std::countr_zero(m)))) return false;
        return true;
    }
};

// Copies Cortes::maior bytes, with a NUL in place of each that is a blank or less. All of them must
// be readable, however long the text is.
inline Cortes copia_palavras_uma_a_uma(char* para, const char* de) {
    Cortes c{};
    for (std::size_t i = 0; i < Cortes::maior; ++i) {
        const bool corte = static_cast<unsigned char>(de[i]) <= ' ';
        para[i] = corte ? '\0' : de[i];
        c.metades[i / 64] |= std::uint64_t{corte} << i % 64;
    }
    return c;
}

#ifdef __SSE2__
inline std::uint64_t copia_palavras_16(char* para, const char* de) {
    const __m128i texto = _mm_loadu_si128(reinterpret_cast<const __m128i*>(de));
    const __m128i cortes = _mm_cmpeq_epi8(texto, _mm_min_epu8(texto, _mm_set1_epi8(' ')));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(para), _mm_andnot_si128(cortes, texto));
    return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(cortes)));
}

inline std::uint64_t copia_palavras_64(char* para, const char* de) {
    return copia_palavras_16(para, de) | copia_palavras_16(para + 16, de + 16) << 16 |
           copia_palavras_16(para + 32, de + 32) << 32 |
           copia_palavras_16(para + 48, de + 48) << 48;
}

inline Cortes copia_palavras(char* para, const char* de) {
    return {{copia_palavras_64(para, de), copia_palavras_64(para + 64, de + 64)}};
}
#else
inline Cortes copia_palavras(char* para, const char* de) {
    return copia_palavras_uma_a_uma(para, de);
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
    std::uint64_t marcas_;          // its marks not yet answered
};

// Calls `palavra` for the words of a dispatcher line, with positions [inicio, fim): the one that
// begins the text (it may be empty), then at most `max` more, the last of which is cut to its first
// character. Words end at runs of blanks; the line ends at LF, at its `n` bytes, or at a CR, but a
// CR behind a blank is a word. Answers where the line ended. palavra() may write at `fim`.
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
