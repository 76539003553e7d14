// Allocations that fail when they are told to.
#pragma once

#include <cstddef>

namespace falhas {

// While it lives, allocations are counted, and the one numbered `em` (from 1; 0: none) fails, or
// all from it on. One at a time.
class SemMemoria {
  public:
    explicit SemMemoria(std::size_t em, bool dali_em_diante = false);
    SemMemoria(const SemMemoria&) = delete;
    SemMemoria& operator=(const SemMemoria&) = delete;
    ~SemMemoria();

    // Allocations asked for so far.
    std::size_t contados() const;
};

}  // namespace falhas
