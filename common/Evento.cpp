// One dispatcher line taken apart.
#include "common/Evento.h"

#include <algorithm>
#include <cstring>

void Evento::separa(const char* linha, std::size_t n) {
    n = std::min(n, maior_);
    lidas_ = 0;
    if (n > inicio_das_palavras_ && !tem_nul(linha, inicio_das_palavras_)) {
        linha += inicio_das_palavras_;
        n -= inicio_das_palavras_;
        if (!separa_regular(linha, n)) separa_qualquer(linha, strnlen(linha, n));
    }
    agente_ = getAgent(palavra(0));
    status_ = getStatus(palavra(1));
    id_ = chave_da(3);
    const bool aceita = status_ == OK && (agente_ == MAILQ || agente_ == MAILSMTP);
    toca_usuario_ = aceita || (submissao() && getUserType(palavra(5)) == INTERNO);
    endereco_ = aceita ? chave_da(5) : submissao() ? chave_da(7) : Chave();
}

// Takes a line of the usual kind: not long, one blank between the words, none behind the last, and
// the line's end behind that. False when it is of another kind.
bool Evento::separa_regular(const char* texto, std::size_t n) {
    if (n > Separadores::maior) return false;
    Separadores s = copia_separando(texto_, texto, n);
    const std::size_t fim = s.corta(n);
    if (fim == 0 || texto[fim - 1] == ' ' || s.seguidos()) return false;
    if (fim < n && texto[fim] != '\0' && !marca(texto[fim])) return false;
    std::uint16_t* p = separadores_;
    s.para_cada_branco([&](std::size_t i) {
        texto_[i] = '\0';
        *p++ = static_cast<std::uint16_t>(i);
    });
    texto_[fim] = '\0';
    *p = static_cast<std::uint16_t>(fim);
    lidas_ = static_cast<int>(std::min<std::ptrdiff_t>(p - separadores_, palavras_lidas));
    return true;
}

// Takes any line, and puts its words one behind the other.
void Evento::separa_qualquer(const char* texto, std::size_t n) {
    int lidas = 0;
    std::size_t i = 0;
    // One word more than is read: the last one is cut.
    percorre_palavras(texto, n, palavras_lidas + 1, [&](std::size_t inicio, std::size_t fim) {
        std::memcpy(texto_ + i, texto + inicio, fim - inicio);
        i += fim - inicio;
        texto_[i] = '\0';
        separadores_[lidas++] = static_cast<std::uint16_t>(i++);
    });
    lidas_ = std::clamp(lidas - 1, 0, palavras_lidas);
}

Chave Evento::chave_da(int i) const {
    Chave c;
    if (i >= lidas_) return c;
    return Chave(texto_ + separadores_[i] + 1,
                 static_cast<std::size_t>(separadores_[i + 1] - separadores_[i] - 1));
}
