// Reading the lines of a file in large blocks, with the line limits of fgets.
#pragma once

#include <cstddef>
#include <memory>

#include "misc/finais.h"

class LeitorLinhas {
  public:
    // Bytes asked of the system at a time, unless told otherwise.
    static constexpr std::size_t bloco = std::size_t{256} * 1024;
    // The longest line piece that can be asked for.
    static constexpr std::size_t maior_linha = 4096;
    // So many bytes behind a line may be read; what they hold means nothing.
    static constexpr std::size_t folga = 128;

    // Starts reading at the current position of `fd`, which stays the caller's.
    void comeca(int fd, std::size_t leitura = bloco);

    // The next line with its line feed, or its first `limite` bytes: what is longer goes on as the
    // next line. Answers the number of bytes (0: end of file, or the read failed, see erro()).
    // `*linha` points into the block and holds until the next call; it is not NUL-terminated and
    // may hold any bytes.
    std::size_t proxima(const char** linha, std::size_t limite);

    // errno of the read that ended the file early, or 0.
    int erro() const { return erro_; }

    // A line, as proxima() answers it.
    struct Trecho {
        const char* inicio;
        std::size_t tamanho;
    };

    // The next line, as proxima(), and the lines behind it that were read already, up to `max` in
    // all. Answers how many; 0 where proxima() answers 0. All hold until the next call.
    std::size_t varias(Trecho* linhas, std::size_t max, std::size_t limite);

    // Takes back `linha`, one of those handed out last, and the lines behind it: they will come
    // again.
    void devolve(const Trecho& linha) {
        inicio_ = static_cast<std::size_t>(linha.inicio - memoria_.get());
    }

    // The bytes that are read and not yet handed out; pula() passes over the first of them.
    const char* lidos(std::size_t& quantos) const {
        quantos = fim_ - inicio_;
        return memoria_.get() + inicio_;
    }
    void pula(std::size_t quantos) { inicio_ += quantos; }

  private:
    bool enche();
    std::size_t completa(std::size_t visto, std::size_t limite) const;

    FinaisDeLinha finais_;
    std::unique_ptr<char[]> memoria_;
    std::size_t leitura_ = 0;
    std::size_t inicio_ = 0;  // the bytes [inicio_, fim_) are read and not yet handed out
    std::size_t fim_ = 0;
    int fd_ = -1;
    int erro_ = 0;
};
