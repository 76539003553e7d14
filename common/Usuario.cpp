// A mail user with his counters per period of the day.
#include "common/Usuario.h"

#include <algorithm>
#include <memory>

#include "common/Texto.h"

Usuario::Usuario(const char* nome, unsigned periodos) : num_periods(periodos ? periodos : 24) {
    auto bloco = std::make_unique_for_overwrite<std::uint32_t[]>(std::size_t{8} * num_periods);
    name = copia_texto(nome);
    bloco_ = bloco.release();
    std::uint32_t* p = bloco_;
    for (std::uint32_t** contadores :
         {&sent, &recv, &bytes_sent, &bytes_recv, &virus, &spam, &error, &att_blocked}) {
        *contadores = p;
        p += num_periods;
    }
    reset_vars();
}

Usuario::~Usuario() {
    delete[] bloco_;
    delete[] name;
}

void Usuario::reset_vars() {
    std::fill_n(bloco_, std::size_t{8} * num_periods, 0u);
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

usuStats Usuario::getStats(int periodo) const {
    return {total(sent, periodo),       total(recv, periodo),       total(bytes_sent, periodo),
            total(bytes_recv, periodo), total(virus, periodo),      total(spam, periodo),
            total(error, periodo),      total(att_blocked, periodo)};
}
