// One dispatcher line taken apart.
#include "common/Evento.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t inicio_das_palavras = 26;

Chave chave_da(const char* palavra) {
    return palavra ? Chave(palavra) : Chave();
}

}  // namespace

void Evento::separa(const char* linha, std::size_t n) {
    n = strnlen(linha, std::min(n, sizeof texto_ - 1));
    std::memcpy(texto_, linha, n);
    texto_[n] = '\0';
    int lidas = 0;
    if (n > inicio_das_palavras)
        lidas = getTokens(texto_ + inicio_das_palavras, texto_ + n, palavras_, palavras_lidas + 1);
    std::fill(palavras_ + lidas, std::end(palavras_), nullptr);

    agente_ = getAgent(palavras_[0]);
    status_ = getStatus(palavras_[1]);
    id_ = chave_da(palavras_[3]);
    const bool aceita = status_ == OK && (agente_ == MAILQ || agente_ == MAILSMTP);
    const bool submetida = status_ == SUBMIT && agente_ == MAILQ;
    usuario_ = Chave();
    if (aceita)
        usuario_ = chave_da(palavras_[5]);
    else if (submetida && getUserType(palavras_[5]) == INTERNO)
        usuario_ = chave_da(palavras_[7]);
}
