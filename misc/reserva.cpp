// Memory for the records of one kind.
#include "misc/reserva.h"

#include <sys/mman.h>

#include <cstdlib>
#include <new>

// Stands at the start of its block; blocks are aligned to their size, so a place finds its own.
//
//     | Bloco | taken | free | taken | free |       ...        |
//       livres ---------^----------------^  intocado
//
// Free places are a chain through themselves; those behind `intocado` were never touched, so the
// system has given no memory for them yet.
struct alignas(64) Reserva::Bloco {
    Bloco *antes, *depois;  // in the list of those with a free place
    Livre* livres;          // places given back
    char* intocado;         // from here on nothing was handed out yet
    std::size_t tomados;
};

namespace {

// `n` bytes, a multiple of the block's size, aligned to it.
char* mapeia(std::size_t n, std::size_t bloco, bool paginas_grandes) {
    // One block more holds an aligned part; what stands before and behind it is given back.
    void* mapa =
        mmap(nullptr, n + bloco, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapa == MAP_FAILED) throw std::bad_alloc();
    const auto inicio = reinterpret_cast<std::uintptr_t>(mapa);
    const std::size_t antes = (bloco - inicio % bloco) % bloco;
    char* alinhado = static_cast<char*>(mapa) + antes;
    if (antes != 0) munmap(mapa, antes);
    munmap(alinhado + n, bloco - antes);
    if (paginas_grandes) madvise(alinhado, n, MADV_HUGEPAGE);
    return alinhado;
}

constexpr std::size_t em_blocos(std::size_t n) {
    return (n + Reserva::bloco - 1) / Reserva::bloco * Reserva::bloco;
}

}  // namespace

void* toma_zerada(std::size_t n) {
    if (n >= Reserva::bloco) return mapeia(em_blocos(n), Reserva::bloco, true);
    if (void* p = std::calloc(n, 1)) return p;
    throw std::bad_alloc();
}

void devolve_zerada(void* p, std::size_t n) noexcept {
    n >= Reserva::bloco ? static_cast<void>(munmap(p, em_blocos(n))) : std::free(p);
}

void* Reserva::toma() {
    Bloco* b = com_lugar_ ? com_lugar_ : novo_bloco();
    void* lugar = b->livres;
    if (lugar) {
        b->livres = b->livres->proximo;
    } else {
        lugar = b->intocado;
        b->intocado += tamanho_;
    }
    ++b->tomados;
    if (cheio(b)) tira(b);
    return lugar;
}

void Reserva::devolve(void* lugar) noexcept {
    if (!lugar) return;
    const std::size_t no_bloco = reinterpret_cast<std::uintptr_t>(lugar) & (bytes_ - 1);
    Bloco* b = reinterpret_cast<Bloco*>(static_cast<char*>(lugar) - no_bloco);
    if (cheio(b)) poe(b);
    b->livres = new (lugar) Livre{b->livres};
    if (--b->tomados != 0) return;
    tira(b);
    munmap(b, bytes_);
    --blocos_;
}

Reserva::Bloco* Reserva::novo_bloco() {
    char* b = mapeia(bytes_, bytes_, blocos_ != 0 && bytes_ == bloco);
    ++blocos_;
    Bloco* novo = new (b) Bloco{};
    novo->intocado = b + sizeof(Bloco);
    poe(novo);
    return novo;
}

bool Reserva::cheio(const Bloco* b) const {
    return !b->livres && b->intocado + tamanho_ > reinterpret_cast<const char*>(b) + bytes_;
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
