// Building the lines of an output file in the buffer of its stream.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

// A large buffer for the stream to which lines come one by one: with stdio's own, of 4 KiB, writing
// a day's lines takes twice as long. Each thread has one, which lives until the thread ends,
// because whoever takes the stream over goes on writing through it. Other streams keep stdio's own
// buffer meanwhile.
class MemoriaDeStream {
  public:
    static constexpr std::size_t bytes = std::size_t{64} * 1024;

    // Lends the buffer to a stream that was just opened, unless another stream may still have it. A
    // borrower at the same address cannot: it was closed.
    static void empresta(std::FILE* stream) {
        if (emprestada_ && stream != emprestada_) return;
        if (std::setvbuf(stream, memoria_, _IOFBF, bytes) == 0) emprestada_ = stream;
    }

    // Must be called for each stream that was closed.
    static void fechada(const std::FILE* stream) {
        if (stream == emprestada_) emprestada_ = nullptr;
    }

  private:
    static inline thread_local char memoria_[bytes];
    static inline thread_local const std::FILE* emprestada_ = nullptr;
};

// Where the next `n` bytes for a stream may be written at once, without a call; null when they do
// not fit into its buffer. avanca_no_buffer() then tells where they ended. putc_unlocked, which is
// compiled into programs, uses the same pointers, so their meaning cannot change. Unbuffered and
// line-buffered streams never show any room.
inline char* lugar_no_buffer(std::FILE* stream, std::size_t n) {
    const std::ptrdiff_t livres = stream->_IO_write_end - stream->_IO_write_ptr;
    return livres >= static_cast<std::ptrdiff_t>(n) ? stream->_IO_write_ptr : nullptr;
}
inline void avanca_no_buffer(std::FILE* stream, char* fim) {
    stream->_IO_write_ptr = fim;
}

// One line on its way into a stream: its fields, then termina(). When a handler returns, its line
// must be in the stream, since anybody may use the stream from then on. So nothing is kept for
// later: the line is built in the stream's own buffer. Write errors stay in the stream's error
// flag.
class Escrita {
  public:
    // Bytes that a number takes at most.
    static constexpr std::size_t maior_numero = 20;

    // The line will not be longer than `maior` bytes.
    Escrita(std::FILE* stream, std::size_t maior)
        : stream_(stream), p_(lugar_no_buffer(stream, maior)) {
        if (p_) return;
        propria_ = std::make_unique_for_overwrite<char[]>(maior);
        p_ = propria_.get();
    }

    Escrita& texto(std::string_view t) {
        copia(p_, t.data(), t.size());
        p_ += t.size();
        return *this;
    }
    Escrita& letra(char c) {
        *p_++ = c;
        return *this;
    }
    Escrita& numero(std::int64_t v, int base = 10) {
        if (v >= 0 && v < 10) return letra(static_cast<char>('0' + v));
        p_ = std::to_chars(p_, p_ + maior_numero, v, base).ptr;
        return *this;
    }
    void termina() {
        if (!propria_)
            avanca_no_buffer(stream_, p_);
        else
            fwrite_unlocked(propria_.get(), 1, static_cast<std::size_t>(p_ - propria_.get()),
                            stream_);
    }

  private:
    // Nearly all fields have these lengths; two moves that may overlap cost less than a call.
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

    std::FILE* stream_;
    std::unique_ptr<char[]> propria_;  // the line, when it does not fit into the buffer
    char* p_;
};
