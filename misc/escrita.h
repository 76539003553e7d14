// Building the lines of an output file and handing them to its stream.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

// Collects lines for one stream after the other. Write errors stay in the stream's error flag; what
// is meant for a null stream is dropped.
class Escrita {
  public:
    static constexpr std::size_t bloco = std::size_t{256} * 1024;  // bytes written at a time

    Escrita() = default;
    Escrita(const Escrita&) = delete;
    Escrita& operator=(const Escrita&) = delete;

    // From here on, lines are for `stream`.
    void para(std::FILE* stream) { stream_ = stream; }

    // Hands out what was collected and forgets the stream: to be called before anybody else may
    // look at it, close it or write to it.
    void larga() {
        descarrega();
        stream_ = nullptr;
    }

    // Drops what was collected, the stream and the memory.
    void esquece() {
        stream_ = nullptr;
        memoria_.reset();
        capacidade_ = usados_ = 0;
    }

    // Where the next `n` bytes are to be written; avanca() then tells where they ended.
    char* espaco(std::size_t n) {
        if (capacidade_ - usados_ < n) {
            descarrega();
            if (capacidade_ < n) {
                memoria_ = std::make_unique_for_overwrite<char[]>(std::max(n, bloco));
                capacidade_ = std::max(n, bloco);
            }
        }
        return memoria_.get() + usados_;
    }
    void avanca(const char* fim) { usados_ = static_cast<std::size_t>(fim - memoria_.get()); }

  private:
    void descarrega() {
        if (stream_ && usados_ > 0) fwrite_unlocked(memoria_.get(), 1, usados_, stream_);
        usados_ = 0;
    }

    std::FILE* stream_ = nullptr;
    std::unique_ptr<char[]> memoria_;
    std::size_t capacidade_ = 0;
    std::size_t usados_ = 0;
};

// A large buffer for one stream after the other, to which lines come one by one: with stdio's own,
// of 4 KiB, writing a day's lines takes twice as long. The stream stays a stream like any other.
// Whoever takes it away goes on writing through the buffer, so it is never freed under a stream that
// was not seen closed.
class MemoriaDeStream {
  public:
    static constexpr std::size_t bytes = std::size_t{64} * 1024;

    MemoriaDeStream() = default;
    MemoriaDeStream(const MemoriaDeStream&) = delete;
    MemoriaDeStream& operator=(const MemoriaDeStream&) = delete;
    ~MemoriaDeStream() { liberta(); }

    // Lends the buffer to a stream that was just opened, unless another one may still have it.
    void empresta(std::FILE* stream) {
        if (emprestada_) return;
        if (!memoria_) memoria_ = std::make_unique_for_overwrite<char[]>(bytes);
        if (std::setvbuf(stream, memoria_.get(), _IOFBF, bytes) == 0) emprestada_ = stream;
    }

    // To be told of each stream that was closed.
    void fechada(const std::FILE* stream) {
        if (stream == emprestada_) emprestada_ = nullptr;
    }

    // Gives the memory back; what is still lent stays with its stream.
    void liberta() {
        if (emprestada_) static_cast<void>(memoria_.release());
        memoria_.reset();
        emprestada_ = nullptr;
    }

  private:
    std::unique_ptr<char[]> memoria_;
    const std::FILE* emprestada_ = nullptr;
};

// One line on its way into an Escrita: its fields, then termina().
class Linha {
  public:
    // Bytes that a number takes at most.
    static constexpr std::size_t maior_numero = 20;

    // The line will not be longer than `maior` bytes.
    Linha(Escrita& escrita, std::size_t maior) : escrita_(escrita), p_(escrita.espaco(maior)) {}

    Linha& texto(const char* t, std::size_t n) {
        copia(p_, t, n);
        p_ += n;
        return *this;
    }
    Linha& letra(char c) {
        *p_++ = c;
        return *this;
    }
    Linha& numero(std::int64_t v, int base = 10) {
        if (v >= 0 && v < 10) return letra(static_cast<char>('0' + v));
        p_ = std::to_chars(p_, p_ + maior_numero, v, base).ptr;
        return *this;
    }
    void termina() { escrita_.avanca(p_); }

  private:
    // Nearly all fields are of these lengths; two moves that may overlap are less than a call.
    static void copia(char* para, const char* de, std::size_t n) {
        if (n >= 8 && n <= 16)
            copia_pontas<8>(para, de, n);
        else if (n > 16 && n <= 32)
            copia_pontas<16>(para, de, n);
        else
            std::memcpy(para, de, n);
    }
    template <std::size_t k>
    static void copia_pontas(char* para, const char* de, std::size_t n) {
        char inicio[k], fim[k];
        std::memcpy(inicio, de, k);
        std::memcpy(fim, de + n - k, k);
        std::memcpy(para, inicio, k);
        std::memcpy(para + n - k, fim, k);
    }

    Escrita& escrita_;
    char* p_;
};
