// The seed of the tables' keys.
#include "misc/chave.h"

#include <random>

const std::uint64_t semente_das_chaves = [] {
    std::random_device fonte;
    return (std::uint64_t{fonte()} << 32) | fonte();
}();
