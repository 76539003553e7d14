// What reports remember of the messages they met.
#include "common/Trabalho.h"

#include <algorithm>
#include <cstring>

#include "common/Reserva.h"

namespace {

constexpr std::size_t bloco = std::size_t{64} * 1024;

constinit thread_local Reserva reserva(sizeof(Trabalho));

}  // namespace

void* Trabalho::operator new(std::size_t n) {
    return reserva.nova(n);
}

void Trabalho::operator delete(void* p, std::size_t n) noexcept {
    reserva.apaga(p, n);
}

Trabalho* Trabalhos::acha_ou_novo(const char* id) {
    Trabalho* t = acha(id);
    return t ? t : novo(id, nullptr);
}

Trabalho* Trabalhos::novo(const char* id, const char* remetente) {
    char cortado[sizeof Trabalho::id];
    Chave chave = chave_de(id);
    if (chave.tamanho >= sizeof cortado) {
        std::memcpy(cortado, id, sizeof cortado - 1);
        chave = Chave(cortado, sizeof cortado - 1);
    }
    Trabalho* t = indice_.procurar(chave);
    if (!t) {
        auto novo = std::make_unique<Trabalho>();
        std::memcpy(novo->id, chave.texto, chave.tamanho);
        indice_.putFirst(novo.get(), chave.hash);
        t = novo.release();
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
    indice_.apaga_se([](const Trabalho*) { return true; });
    textos_.clear();
    livres_ = 0;
}
