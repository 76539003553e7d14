// Splitting a line into words, sixteen bytes at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "misc/vetor.h"

inline bool marca(char c) {
    return c == ' ' || c == '\n' || c == '\r';
}

// Bit i tells whether p[i] is a blank, LF or CR, for at most 64 bytes. Nothing behind them is read.
inline std::uint64_t marcas_uma_a_uma(const char* p, std::size_t n) {
    std::uint64_t m = 0;
    for (std::size_t i = 0; i < n; ++i) m |= std::uint64_t{marca(p[i])} << i;
    return m;
}

inline std::uint64_t marcas(const char* p, std::size_t n) {
    if (n < 16) return marcas_uma_a_uma(p, n);
    const auto de_16 = [p](std::size_t i) {
        const Vetor v(p + i);
        return (v.igual(' ') | v.igual('\n') | v.igual('\r')).mascara();
    };
    // The last sixteen may overlap those before them; both say the same about the overlap.
    std::uint64_t m = de_16(n - 16) << (n - 16);
    for (std::size_t i = 0; i + 16 < n; i += 16) m |= de_16(i) << i;
    return m;
}

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

    // Whether one stands directly behind another. Shifted by one, a half has its bit i where bit
    // i + 1 was, so both have a bit in common just where two are neighbours:
    //
    //     m        0110 0100
    //     m >> 1   0011 0010
    //     both     0010 0000    5 and 6
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
inline Cortes copia_palavras(char* para, const char* de) {
    const auto de_16 = [para, de](std::size_t i) {
        const Vetor texto(de + i);
        const Vetor cortes = texto.ate(' ');
        texto.sem(cortes).guarda(para + i);
        return cortes.mascara();
    };
    return {{mascara_de_64(de_16), mascara_de_64(de_16, 64)}};
}

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

    // Goes on to the next part of the text that has a mark. A text of 148 bytes is examined so:
    //
    //     |0             64|             128|  148|    two parts
    //                         |84             148|    the third begins earlier,
    //                          ^^^^^^^^^^^^^           and what was seen of it is shifted out
    bool avanca() {
        while (marcas_ == 0) {
            if (fim_ == n_) return false;
            const std::size_t visto = fim_;
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
//
//     " MAILQ  OK \r\n", max = 3
//
//     [0, 0)     empty, since the text begins with a blank
//     [1, 6)     "MAILQ"; the blank at 7 is skipped, and its mark too (the inner loop)
//     [8, 10)    "OK"
//     [11, 12)   the CR behind a blank; the last of three, so cut to one character
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
