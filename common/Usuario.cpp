// A mail user with his counters per period of the day.
#include "common/Usuario.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "common/Reserva.h"
#include "common/Texto.h"

static constinit thread_local Reserva reserva(sizeof(Usuario));

void* Usuario::operator new(std::size_t n) {
    return reserva.nova(n);
}

void Usuario::operator delete(void* p, std::size_t n) noexcept {
    reserva.apaga(p, n);
}

Usuario::Usuario(const char* nome, unsigned periodos) : num_periods(periodos ? periodos : 24) {
    std::unique_ptr<std::uint32_t[]> grande;
    if (num_periods > periodos_usuais_)
        grande = std::make_unique_for_overwrite<std::uint32_t[]>(contadores_ * num_periods);
    tamanho_do_nome_ = nome ? std::strlen(nome) : 0;
    const std::size_t n = nome ? tamanho_do_nome_ + 1 : 0;
    name = n > sizeof nome_ ? copia_texto(nome) : nome ? nome_ : nullptr;
    if (name == nome_) std::memcpy(nome_, nome, n);
    std::uint32_t* p = grande ? grande.release() : bloco_;
    for (std::uint32_t** contadores :
         {&sent, &recv, &bytes_sent, &bytes_recv, &virus, &spam, &error, &att_blocked}) {
        *contadores = p;
        p += num_periods;
    }
    reset_vars();
}

Usuario::~Usuario() {
    if (sent != bloco_) delete[] sent;
    if (name != nome_) delete[] name;
}

void Usuario::reset_vars() {
    std::fill_n(sent, contadores_ * num_periods, 0u);
    msgs_reference = 0;
}

std::uint32_t Usuario::total(const std::uint32_t* contadores, int periodo) const {
    if (periodo >= 0) return static_cast<unsigned>(periodo) < num_periods ? contadores[periodo] : 0;
    std::uint32_t t = 0;
    for (unsigned i = 0; i < num_periods; ++i) t += contadores[i];
    return t;
}

unsigned Usuario::count(InfoType qual, int periodo) const {
    if (qual < SENT || qual > ATT_BLOCKED) return 0;
    const std::uint32_t* arrays[] = {sent,  recv, bytes_sent, bytes_recv,
                                     virus, spam, error,      att_blocked};
    return total(arrays[qual], periodo);
}

usuStats Usuario::totais() const {
    return {total(sent, -1),  total(recv, -1), total(bytes_sent, -1), total(bytes_recv, -1),
            total(virus, -1), total(spam, -1), total(error, -1),      total(att_blocked, -1)};
}
