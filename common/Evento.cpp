// One dispatcher line taken apart.
#include "common/Evento.h"

#include <algorithm>
#include <cstring>

#include "misc/palavras.h"

void Evento::separa(const char* linha, std::size_t n) {
    n = std::min(n, maior_);
    lidas_ = 0;
    // The line is read where it came from: what was only just written to the copy, in pieces of
    // other sizes, would have to be waited for.
    const char* texto = linha + inicio_das_palavras_;
    if (n > inicio_das_palavras_ && !std::memchr(linha, '\0', inicio_das_palavras_) &&
        !separa_regular(texto, n - inicio_das_palavras_)) {
        n = strnlen(texto, n - inicio_das_palavras_);
        std::memcpy(texto_, texto, n);
        separa_qualquer(n);
    }
    agente_ = getAgent(palavra(0));
    status_ = getStatus(palavra(1));
    id_ = chave_da(3, texto);
    const bool aceita = status_ == OK && (agente_ == MAILQ || agente_ == MAILSMTP);
    const bool submetida = status_ == SUBMIT && agente_ == MAILQ;
    usuario_ = Chave();
    if (aceita)
        usuario_ = chave_da(5, texto);
    else if (submetida && getUserType(palavra(5)) == INTERNO)
        usuario_ = chave_da(7, texto);
}

// Takes a line of the usual kind: not long, one blank between the words, none behind the last. The
// first word is not kept, and no more than palavras_lidas are. False when it is of another kind.
bool Evento::separa_regular(const char* texto, std::size_t n) {
    if (n > Separadores::maior) return false;
    Separadores s;
    copia_separando(texto_, texto, n, s);
    const std::size_t fim = s.fim(n);
    if (fim < 64) {
        s.brancos[0] &= (std::uint64_t{1} << fim) - 1;
        s.brancos[1] = 0;
    } else if (fim < Separadores::maior) {
        s.brancos[1] &= (std::uint64_t{1} << (fim - 64)) - 1;
    }
    const std::uint64_t seguidos = (s.brancos[0] & s.brancos[0] >> 1) |
                                   (s.brancos[1] & s.brancos[1] >> 1) |
                                   (s.brancos[0] >> 63 & s.brancos[1]);
    if (seguidos || fim == 0 || texto[fim - 1] == ' ') return false;
    int i = -1;
    for (std::size_t metade = 0; metade < 2; ++metade)
        for (std::uint64_t m = s.brancos[metade]; m != 0; m &= m - 1) {
            const std::size_t b = metade * 64 + static_cast<unsigned>(std::countr_zero(m));
            texto_[b] = '\0';
            if (i >= 0) palavras_[i].fim = static_cast<std::uint16_t>(b);
            if (++i == palavras_lidas) {
                lidas_ = i;
                return true;
            }
            palavras_[i].inicio = static_cast<std::uint16_t>(b + 1);
        }
    texto_[fim] = '\0';
    if (i >= 0) palavras_[i].fim = static_cast<std::uint16_t>(fim);
    lidas_ = i + 1;
    return true;
}

// Takes the `n` bytes in texto_, whatever they are.
void Evento::separa_qualquer(std::size_t n) {
    int lidas = -1;
    const std::size_t fim = percorre_palavras(
        texto_, n, palavras_lidas + 1, [&](std::size_t inicio, std::size_t fim_da_palavra) {
            texto_[fim_da_palavra] = '\0';
            if (lidas >= 0)
                palavras_[lidas] = {static_cast<std::uint16_t>(inicio),
                                    static_cast<std::uint16_t>(fim_da_palavra)};
            ++lidas;
        });
    texto_[fim] = '\0';
    lidas_ = std::clamp(lidas, 0, palavras_lidas);
}

Chave Evento::chave_da(int i, const char* texto) const {
    Chave c;
    if (i >= lidas_) return c;
    const Palavra& p = palavras_[i];
    c.texto = texto_ + p.inicio;
    c.tamanho = static_cast<std::size_t>(p.fim - p.inicio);
    c.hash = hash_chave(texto + p.inicio, c.tamanho);
    return c;
}
