// The counter arrays of users: zeros, arrays shared, arrays of one user.
#include "common/Contadores.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <new>

#include "misc/reserva.h"

namespace contadores {

namespace {

// Users know the address of `valores`.
struct Bloco {
    std::uint32_t donos = 1;    // users who hold it
    std::uint32_t periodo = 0;  // of the only number, while it is shared
    std::uint32_t valores[periodos] = {};
};

constexpr Bloco vazio;

constinit thread_local Reserva reserva(sizeof(Bloco));

// The shared arrays made last, by what they hold. An array leaves this table with its last user, or
// when it becomes one user's own.
constinit thread_local std::array<Bloco*, 256> recentes{};

Bloco*& recente(std::uint32_t periodo, std::uint32_t n) {
    const std::uint32_t mistura = (n * 0x9E3779B1u + periodo) * 0x85EBCA6Bu;
    return recentes[mistura >> 24];
}

void esquece(const Bloco* b) {
    Bloco*& r = recente(b->periodo, b->valores[b->periodo]);
    if (r == b) r = nullptr;
}

Bloco* bloco_de(std::uint32_t* a) {
    return reinterpret_cast<Bloco*>(reinterpret_cast<char*>(a) - offsetof(Bloco, valores));
}

Bloco* novo() {
    return new (reserva.nova(sizeof(Bloco))) Bloco;
}

}  // namespace

std::uint32_t* zeros() {
    return const_cast<std::uint32_t*>(vazio.valores);
}

// What becomes of a user's array:
//
//     zeros  --first number-->  shared, with one number  --another-->  his own
//
// He who is alone with a shared one takes it over as it is. It must leave `recentes` then: the next
// user with the same first number would get what this one counts later.
std::uint32_t* soma(std::uint32_t* a, std::uint32_t periodo, std::uint32_t n, bool& proprio) {
    if (n == 0) return a;
    if (a == zeros()) {
        Bloco*& r = recente(periodo, n);
        if (r && r->valores[periodo] == n) {
            ++r->donos;
        } else {
            r = novo();
            r->periodo = periodo;
            r->valores[periodo] = n;
        }
        return r->valores;
    }
    Bloco* b = bloco_de(a);
    if (b->donos == 1) {
        esquece(b);
    } else {
        Bloco* copia = novo();
        std::copy_n(b->valores, periodos, copia->valores);
        --b->donos;
        b = copia;
    }
    b->valores[periodo] += n;
    proprio = true;
    return b->valores;
}

void solta(std::uint32_t* a) noexcept {
    if (a == zeros()) return;
    Bloco* b = bloco_de(a);
    if (--b->donos != 0) return;
    esquece(b);
    reserva.apaga(b, sizeof(Bloco));
}

}  // namespace contadores
