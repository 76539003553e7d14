// Memory for the records of one kind, taken from the system in large blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

// Zeroed memory for a large array, taken from the system on large pages. An array that fills no
// large page comes from the general allocator. Throws std::bad_alloc.
void* toma_zerada(std::size_t n);
// Takes back what toma_zerada(n) gave.
void devolve_zerada(void* p, std::size_t n) noexcept;

// Hands out places of one size. A day holds up to a million messages: without the bookkeeping of a
// general allocator each costs less, and from the second block on the system is asked for large
// pages, since finding the page takes longer than reading the record. A place given back is handed
// out again; a block goes back to the system as soon as no place in it is taken.
//
// One for each kind and thread (records are deleted by the thread that made them). It needs no
// destructor: without records it holds nothing.
class Reserva {
  public:
    static constexpr std::size_t bloco = std::size_t{2} * 1024 * 1024;

    // Under the address sanitizer records come from the general allocator, where the sanitizer sees
    // a use after the end.
#ifdef __SANITIZE_ADDRESS__
    static constexpr bool usada = false;
#else
    static constexpr bool usada = true;
#endif

    // For places of `tamanho` bytes, in blocks of `bytes`, a power of two up to `bloco`.
    constexpr explicit Reserva(std::size_t tamanho, std::size_t bytes = bloco)
        : tamanho_(tamanho), bytes_(bytes) {}

    // A place for one record, aligned for any whose size is a multiple of its alignment. Throws
    // std::bad_alloc.
    void* toma();
    // Takes back a place that toma() gave.
    void devolve(void* lugar) noexcept;

    // Blocks held now.
    std::size_t blocos() const {
        return blocos_;
    }

    // For a class's own operators new and delete: a derived class is larger and goes elsewhere.
    void* nova(std::size_t n) {
        return usada && n == tamanho_ ? toma() : ::operator new(n);
    }
    void apaga(void* p, std::size_t n) noexcept {
        if (usada && n == tamanho_)
            devolve(p);
        else
            ::operator delete(p);
    }

  private:
    struct Bloco;
    struct Livre {
        Livre* proximo;
    };

    Bloco* novo_bloco();
    void tira(Bloco* b);
    void poe(Bloco* b);

    bool cheio(const Bloco* b) const;

    std::size_t tamanho_, bytes_;
    std::size_t blocos_ = 0;
    Bloco* com_lugar_ = nullptr;  // the blocks with a free place
};
