// Reading the lines of a file in large blocks.
#include "misc/leitor.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

void LeitorLinhas::abre(int fd, std::size_t leitura) {
    if (!memoria_) memoria_ = std::make_unique_for_overwrite<char[]>(maior_linha + bloco);
    fd_ = fd;
    leitura_ = std::min(leitura, bloco);
    inicio_ = fim_ = 0;
    erro_ = 0;
}

// Reads once more behind what is left, which moves to the front. False at the end.
bool LeitorLinhas::enche() {
    std::memmove(memoria_.get(), memoria_.get() + inicio_, fim_ - inicio_);
    fim_ -= inicio_;
    inicio_ = 0;
    ssize_t n;
    do {
        n = read(fd_, memoria_.get() + fim_, leitura_);
    } while (n < 0 && errno == EINTR);
    if (n < 0) erro_ = errno;
    if (n <= 0) return false;
    fim_ += static_cast<std::size_t>(n);
    return true;
}

std::size_t LeitorLinhas::proxima(const char** linha, std::size_t limite) {
    std::size_t visto = 0;
    for (;;) {
        const char* resto = memoria_.get() + inicio_;
        const std::size_t ha = std::min(fim_ - inicio_, limite);
        const void* lf = ha > visto ? std::memchr(resto + visto, '\n', ha - visto) : nullptr;
        std::size_t tamanho = lf ? static_cast<const char*>(lf) - resto + 1 : ha;
        if (!lf && ha < limite) {
            visto = ha;
            if (enche()) continue;
            // A line cut off by a failed read is not a line.
            if (erro_) tamanho = 0;
        }
        *linha = memoria_.get() + inicio_;
        inicio_ += tamanho;
        return tamanho;
    }
}
