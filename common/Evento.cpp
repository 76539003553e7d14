// One dispatcher line taken apart.
#include "common/Evento.h"

#include <algorithm>
#include <cstring>

#include "misc/palavras.h"

void Evento::separa(const char* linha, std::size_t n) {
    n = strnlen(linha, std::min(n, sizeof texto_ - 1));
    std::memcpy(texto_, linha, n);
    texto_[n] = '\0';
    // The line is read where it came from: what was only just written to the copy, in pieces of
    // other sizes, would have to be waited for.
    int lidas = -1;
    if (n > inicio_das_palavras_) {
        char* copia = texto_ + inicio_das_palavras_;
        const std::size_t fim = percorre_palavras(
            linha + inicio_das_palavras_, n - inicio_das_palavras_, palavras_lidas + 1,
            [&](std::size_t inicio, std::size_t fim_da_palavra) {
                copia[fim_da_palavra] = '\0';
                if (lidas >= 0) {
                    palavras_[lidas] = copia + inicio;
                    tamanhos_[lidas] = fim_da_palavra - inicio;
                }
                ++lidas;
            });
        copia[fim] = '\0';
    }
    std::fill(palavras_ + std::max(lidas, 0), std::end(palavras_), nullptr);

    agente_ = getAgent(palavras_[0]);
    status_ = getStatus(palavras_[1]);
    id_ = chave_da(3, linha);
    const bool aceita = status_ == OK && (agente_ == MAILQ || agente_ == MAILSMTP);
    const bool submetida = status_ == SUBMIT && agente_ == MAILQ;
    usuario_ = Chave();
    if (aceita)
        usuario_ = chave_da(5, linha);
    else if (submetida && getUserType(palavras_[5]) == INTERNO)
        usuario_ = chave_da(7, linha);
}

Chave Evento::chave_da(int i, const char* linha) const {
    Chave c;
    if (!palavras_[i]) return c;
    c.texto = palavras_[i];
    c.tamanho = tamanhos_[i];
    c.hash = hash_chave(linha + (palavras_[i] - texto_), c.tamanho);
    return c;
}
