// What reports remember of the messages they met.
#include "common/Trabalho.h"

#include <cstring>

#include "common/Texto.h"

void Trabalho::define_remetente(const char* nome) {
    char* novo = copia_texto(nome);
    delete[] sendername;
    sendername = novo;
}

Trabalho* Trabalhos::acha_ou_novo(const char* id) {
    Trabalho* t = acha(id);
    return t ? t : novo(id);
}

Trabalho* Trabalhos::novo(const char* id) {
    char cortado[sizeof Trabalho::id] = {};
    std::memcpy(cortado, id, strnlen(id, sizeof cortado - 1));
    const Chave chave(cortado);
    Trabalho* t = indice_.procurar(chave);
    if (!t) {
        if (!registros_) registros_.emplace();
        t = &registros_->emplace_back();
        std::memcpy(t->id, cortado, sizeof cortado);
        indice_.putFirst(t, chave.hash);
        return t;
    }
    t->define_remetente(nullptr);
    t->size = 0;
    t->int_user = t->spam = t->virus = t->error = t->fatal_error = false;
    return t;
}

void Trabalhos::esquece() noexcept {
    indice_.esquece();
    registros_.reset();
}
