// A mail user with his counters per period of the day.
#include "common/Usuario.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "misc/reserva.h"

static constinit thread_local Reserva reserva(sizeof(Usuario));

void* Usuario::operator new(std::size_t n) {
    return reserva.nova(n);
}

void Usuario::operator delete(void* p, std::size_t n) noexcept {
    reserva.apaga(p, n);
}

// cppcheck-suppress uninitMemberVar ; the loop sets the arrays
Usuario::Usuario(const char* nome, unsigned periodos)
    : num_periods(periodos ? periodos : contadores::periodos) {
    TextoPartilhado texto;
    if (nome) texto = TextoPartilhado(nome, std::strlen(nome));
    std::uint32_t* bloco = nullptr;
    if (em_um_bloco()) {
        bloco = new std::uint32_t[std::size(arrays_) * num_periods]();
        proprios_ = 0xFF;
    }
    for (std::size_t i = 0; i < std::size(arrays_); ++i)
        this->*arrays_[i] = bloco ? bloco + i * num_periods : contadores::zeros();
    name = texto.larga();
}

Usuario::~Usuario() {
    TextoPartilhado::solta(name);
    if (em_um_bloco())
        delete[] sent;
    else
        for (const auto a : arrays_) contadores::solta(this->*a);
}

void Usuario::reset_vars() {
    msgs_reference = 0;
    if (em_um_bloco()) {
        std::fill_n(sent, std::size(arrays_) * num_periods, 0u);
        return;
    }
    for (const auto a : arrays_) contadores::solta(std::exchange(this->*a, contadores::zeros()));
    proprios_ = 0;
}

void Usuario::soma_ao_comum(InfoType qual, unsigned periodo, std::uint32_t n) {
    std::uint32_t*& a = this->*arrays_[qual];
    bool proprio = false;
    a = contadores::soma(a, periodo, n, proprio);
    proprios_ = static_cast<std::uint8_t>(proprios_ | proprio << qual);
}

std::uint32_t Usuario::total(const std::uint32_t* contadores, int periodo) const {
    if (periodo >= 0) return static_cast<unsigned>(periodo) < num_periods ? contadores[periodo] : 0;
    std::uint32_t t = 0;
    for (unsigned i = 0; i < num_periods; ++i) t += contadores[i];
    return t;
}

unsigned Usuario::count(InfoType qual, int periodo) const {
    if (qual < SENT || qual > ATT_BLOCKED) return 0;
    return total(this->*arrays_[qual], periodo);
}

usuStats Usuario::totais() const {
    return {total(sent, -1),  total(recv, -1), total(bytes_sent, -1), total(bytes_recv, -1),
            total(virus, -1), total(spam, -1), total(error, -1),      total(att_blocked, -1)};
}
