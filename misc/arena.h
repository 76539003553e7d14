// Memory that is given back all at once.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "misc/reserva.h"

// Hands out pieces of large blocks, zeroed. No piece is given back alone, so records and texts that
// live as long as their owner need no bookkeeping and lie side by side.
class Arena {
  public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    // `bytes` of memory, aligned for pointers and numbers. Throws std::bad_alloc.
    void* toma(std::size_t bytes) {
        bytes = (bytes + alinhamento_ - 1) / alinhamento_ * alinhamento_;
        if (bytes > livres_) novo_bloco(bytes);
        livres_ -= bytes;
        return fim_ - livres_ - bytes;
    }

    // Takes all of it back.
    void esquece() noexcept {
        blocos_.clear();
        livres_ = tomados_ = 0;
    }

  private:
    struct Devolve {
        std::size_t n;
        void operator()(char* p) const noexcept { devolve_zerada(p, n); }
    };
    static constexpr std::size_t alinhamento_ = 8;
    static constexpr std::size_t menor_bloco_ = std::size_t{64} * 1024;

    // Takes a block as large as all before it together, but no larger than a large page needs.
    void novo_bloco(std::size_t bytes) {
        const std::size_t n = std::max(bytes, std::clamp(tomados_, menor_bloco_, Reserva::bloco));
        blocos_.reserve(blocos_.size() + 1);
        blocos_.emplace_back(static_cast<char*>(toma_zerada(n)), Devolve{n});
        fim_ = blocos_.back().get() + n;
        livres_ = n;
        tomados_ += n;
    }

    std::vector<std::unique_ptr<char[], Devolve>> blocos_;
    char* fim_ = nullptr;      // of the last one
    std::size_t livres_ = 0;   // bytes before it
    std::size_t tomados_ = 0;  // bytes of all blocks
};
