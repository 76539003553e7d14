// Memory for the records of one kind.
#include "common/Reserva.h"

#include <sys/mman.h>

#include <new>

// Stands at the start of its block; blocks are aligned to their size, so a place finds its own.
struct alignas(64) Reserva::Bloco {
    Bloco *antes, *depois;  // in the list of those with a free place
    Livre* livres;          // places given back
    char* intocado;         // from here on nothing was handed out yet
    std::size_t tomados;

    bool cheio(std::size_t tamanho) const {
        return !livres && intocado + tamanho > reinterpret_cast<const char*>(this) + bloco;
    }
};

void* Reserva::toma() {
    Bloco* b = com_lugar_ ? com_lugar_ : abre();
    void* lugar = b->livres;
    if (lugar) {
        b->livres = b->livres->proximo;
    } else {
        lugar = b->intocado;
        b->intocado += tamanho_;
    }
    ++b->tomados;
    if (b->cheio(tamanho_)) tira(b);
    return lugar;
}

void Reserva::devolve(void* lugar) noexcept {
    if (!lugar) return;
    const auto endereco = reinterpret_cast<std::uintptr_t>(lugar);
    Bloco* b = reinterpret_cast<Bloco*>(endereco & ~(std::uintptr_t{bloco} - 1));
    if (b->cheio(tamanho_)) poe(b);
    b->livres = new (lugar) Livre{b->livres};
    if (--b->tomados != 0) return;
    tira(b);
    munmap(b, bloco);
    --blocos_;
}

Reserva::Bloco* Reserva::abre() {
    // Twice the size holds an aligned block; what stands before and behind it is given back.
    void* mapa =
        mmap(nullptr, 2 * bloco, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapa == MAP_FAILED) throw std::bad_alloc();
    const auto inicio = reinterpret_cast<std::uintptr_t>(mapa);
    const std::size_t antes = (bloco - inicio % bloco) % bloco;
    char* alinhado = static_cast<char*>(mapa) + antes;
    if (antes != 0) munmap(mapa, antes);
    munmap(alinhado + bloco, bloco - antes);
    if (blocos_ != 0) madvise(alinhado, bloco, MADV_HUGEPAGE);
    ++blocos_;
    Bloco* b = new (alinhado) Bloco{};
    b->intocado = alinhado + sizeof(Bloco);
    poe(b);
    return b;
}

void Reserva::tira(Bloco* b) {
    (b->antes ? b->antes->depois : com_lugar_) = b->depois;
    if (b->depois) b->depois->antes = b->antes;
}

void Reserva::poe(Bloco* b) {
    b->antes = nullptr;
    b->depois = com_lugar_;
    if (com_lugar_) com_lugar_->antes = b;
    com_lugar_ = b;
}
