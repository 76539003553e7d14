// The hash of the tables' keys.
#include "common/Tabela.h"

#include <random>

namespace {

const std::uint64_t semente = [] {
    std::random_device fonte;
    return (std::uint64_t{fonte()} << 32) | fonte();
}();

std::uint64_t mistura(std::uint64_t h, std::uint64_t palavra) {
    h = (h ^ palavra) * 0x9E3779B97F4A7C15u;
    return h ^ (h >> 32);
}

}  // namespace

std::uint32_t hash_chave(const char* chave, std::size_t tamanho) {
    std::uint64_t h = semente ^ tamanho;
    std::uint64_t palavra;
    if (tamanho < sizeof palavra) {
        palavra = 0;
        std::memcpy(&palavra, chave, tamanho);
    } else {
        const char* ultima = chave + tamanho - sizeof palavra;
        for (; chave < ultima; chave += sizeof palavra) {
            std::memcpy(&palavra, chave, sizeof palavra);
            h = mistura(h, palavra);
        }
        std::memcpy(&palavra, ultima, sizeof palavra);
    }
    h = mistura(h, palavra);
    h = mistura(h, h >> 29);
    return static_cast<std::uint32_t>(h);
}
