// What reports remember of the messages they met.
#include "common/Trabalho.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>

Trabalho* Trabalhos::acha_ou_novo(const Chave& id) {
    Trabalho* t = acha(id);
    return t ? t : novo(id, nullptr);
}

Trabalho* Trabalhos::novo(Chave id, const char* remetente) {
    char cortado[sizeof Trabalho::id];
    if (id.tamanho >= sizeof cortado) {
        std::memcpy(cortado, id.texto, sizeof cortado - 1);
        id = Chave(cortado, sizeof cortado - 1);
    }
    Trabalho* t = indice_.procurar(id);
    if (!t) {
        t = new (memoria_.toma(sizeof(Trabalho))) Trabalho;
        std::memcpy(t->id, id.texto, id.tamanho);
        indice_.putFirst(t, id.hash);
    }
    define_remetente(t, remetente);
    t->size = 0;
    t->int_user = t->spam = t->virus = t->error = t->fatal_error = false;
    return t;
}

// The room is kept for as long as the record. A text that outgrows it moves to one of at least
// twice the size, so that repeated submissions soon stop asking for more.
void Trabalhos::define_remetente(Trabalho* t, const char* nome) {
    t->submetida = nome != nullptr;
    if (!nome) return;
    const auto bytes = static_cast<std::uint32_t>(std::strlen(nome)) + 1;
    if (bytes > t->lugar) {
        const std::uint32_t lugar = std::max(bytes, t->lugar * 2);
        t->texto = static_cast<char*>(memoria_.toma(lugar));
        t->lugar = lugar;
    }
    std::memcpy(t->texto, nome, bytes);
}

void Trabalhos::esquece() noexcept {
    static_assert(std::is_trivially_destructible_v<Trabalho>);
    indice_.esquece();
    memoria_.esquece();
}
