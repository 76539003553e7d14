// Memory of the texts that records share.
#include "misc/texto.h"

#include <array>
#include <utility>

#include "misc/reserva.h"

namespace {

// Most senders of a day write once, so that a general allocator's bookkeeping would cost half as
// much as the text: a reserve for each multiple of 8 bytes instead. Its blocks are small, since
// some of these sizes are rare.
constexpr std::size_t passo = 8;
constexpr std::size_t bloco = std::size_t{256} * 1024;

template <std::size_t... i>
constexpr std::array<Reserva, sizeof...(i)> cria(std::index_sequence<i...>) {
    return {Reserva((i + 1) * passo, bloco)...};
}

constinit thread_local auto reservas = cria(std::make_index_sequence<16>());

Reserva* reserva_de(std::size_t n) {
    const std::size_t i = (n - 1) / passo;
    return Reserva::usada && i < reservas.size() ? &reservas[i] : nullptr;
}

}  // namespace

void* TextoPartilhado::toma(std::size_t n) {
    Reserva* const r = reserva_de(n);
    return r ? r->toma() : ::operator new(n);
}

void TextoPartilhado::devolve(void* p, std::size_t n) noexcept {
    if (Reserva* const r = reserva_de(n))
        r->devolve(p);
    else
        ::operator delete(p);
}
