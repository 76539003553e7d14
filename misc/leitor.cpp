// Reading the lines of a file in large blocks.
#include "misc/leitor.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "misc/ncutils.h"

void LeitorLinhas::comeca(int fd, std::size_t leitura) {
    if (!memoria_) memoria_ = std::make_unique_for_overwrite<char[]>(maior_linha + bloco + folga);
    fd_ = fd;
    leitura_ = std::min(leitura, bloco);
    inicio_ = fim_ = 0;
    erro_ = 0;
}

// Reads once more behind what is left, which moves to the front. False at the end.
//
//     | handed out | rest |          |  folga  |
//     0            inicio_ fim_
//
//     | rest | what was just read    |  folga  |
//     inicio_                        fim_
//
// What is left is shorter than the longest line piece, so it always has room.
bool LeitorLinhas::enche() {
    std::memmove(memoria_.get(), memoria_.get() + inicio_, fim_ - inicio_);
    fim_ -= inicio_;
    inicio_ = 0;
    const ssize_t n = insiste([this] { return read(fd_, memoria_.get() + fim_, leitura_); });
    if (n < 0) erro_ = errno;
    if (n <= 0) return false;
    fim_ += static_cast<std::size_t>(n);
    std::memset(memoria_.get() + fim_, 0, folga);  // no old memory shows there
    return true;
}

// The length of the next line, 0 when its end has not been read. Its first `visto` bytes are known
// to hold no line feed.
std::size_t LeitorLinhas::completa(std::size_t visto, std::size_t limite) const {
    const char* resto = memoria_.get() + inicio_;
    const std::size_t ha = std::min(fim_ - inicio_, limite);
    const void* lf = ha > visto ? std::memchr(resto + visto, '\n', ha - visto) : nullptr;
    if (lf) return static_cast<std::size_t>(static_cast<const char*>(lf) - resto) + 1;
    return ha < limite ? 0 : ha;
}

std::size_t LeitorLinhas::proxima(const char** linha, std::size_t limite) {
    std::size_t visto = 0;
    std::size_t tamanho;
    while ((tamanho = completa(visto, limite)) == 0) {
        visto = fim_ - inicio_;
        if (enche()) continue;
        // A line cut off by a failed read is not a line.
        tamanho = erro_ ? 0 : visto;
        break;
    }
    *linha = memoria_.get() + inicio_;
    inicio_ += tamanho;
    return tamanho;
}

std::size_t LeitorLinhas::varias(Trecho* linhas, std::size_t max, std::size_t limite) {
    linhas[0].tamanho = proxima(&linhas[0].inicio, limite);
    if (linhas[0].tamanho == 0) return 0;
    std::size_t n = 1;
    if (max == 1) return n;
    const char* p = memoria_.get();
    const std::size_t base = inicio_;
    const std::size_t achados = finais_.acha(p + base, std::min(fim_ - base, FinaisDeLinha::maior));
    for (std::size_t i = 0; i < achados && n < max; ++i) {
        const std::size_t fim = base + finais_[i] + 1;
        if (fim - inicio_ > limite) break;
        linhas[n++] = {p + inicio_, fim - inicio_};
        inicio_ = fim;
    }
    return n;
}
