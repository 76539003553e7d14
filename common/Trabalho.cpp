// What reports remember of the messages they met.
#include "common/Trabalho.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t bloco = std::size_t{64} * 1024;

}  // namespace

Trabalho* Trabalhos::acha_ou_novo(const char* id) {
    Trabalho* t = acha(id);
    return t ? t : novo(id, nullptr);
}

Trabalho* Trabalhos::novo(const char* id, const char* remetente) {
    char cortado[sizeof Trabalho::id] = {};
    std::memcpy(cortado, id, strnlen(id, sizeof cortado - 1));
    const Chave chave(cortado);
    Trabalho* t = indice_.procurar(chave);
    if (!t) {
        if (!registros_) registros_.emplace();
        t = &registros_->emplace_back();
        std::memcpy(t->id, cortado, sizeof cortado);
        indice_.putFirst(t, chave.hash);
    }
    define_remetente(t, remetente);
    t->size = 0;
    t->int_user = t->spam = t->virus = t->error = t->fatal_error = false;
    return t;
}

// A text that grows moves to a place of at least twice the room, so that submissions which are
// repeated come to an end of asking for more.
void Trabalhos::define_remetente(Trabalho* t, const char* nome) {
    const auto bytes = nome ? static_cast<std::uint32_t>(std::strlen(nome)) + 1 : 0;
    if (bytes > t->lugar) {
        const std::uint32_t lugar = std::max(bytes, t->lugar * 2);
        t->sendername = toma(lugar);
        t->lugar = lugar;
    }
    if (bytes == 0) {
        t->sendername = nullptr;
        t->lugar = 0;
    } else {
        std::memcpy(t->sendername, nome, bytes);
    }
}

char* Trabalhos::toma(std::uint32_t bytes) {
    if (bytes > livres_) {
        const std::size_t novos = std::max<std::size_t>(bytes, bloco);
        textos_.push_back(std::make_unique_for_overwrite<char[]>(novos));
        fim_ = textos_.back().get() + novos;
        livres_ = novos;
    }
    livres_ -= bytes;
    return fim_ - livres_ - bytes;
}

void Trabalhos::esquece() noexcept {
    indice_.esquece();
    registros_.reset();
    textos_.clear();
    livres_ = 0;
}
