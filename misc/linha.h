// Building one line of an output file and handing it to its stream at once.
#pragma once

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>

// Collects the fields of a line; termina() writes them with one call. A line longer than the buffer
// goes out in pieces. Write errors stay in the stream's error flag. A null stream swallows the
// line.
class Linha {
  public:
    explicit Linha(std::FILE* stream) : stream_(stream) {}

    Linha& texto(const char* t, std::size_t n) {
        if (n > sizeof buffer_ - usado_) {
            termina();
            if (n > sizeof buffer_) {
                if (stream_) fwrite_unlocked(t, 1, n, stream_);
                return *this;
            }
        }
        copia(buffer_ + usado_, t, n);
        usado_ += n;
        return *this;
    }
    Linha& texto(const char* t) { return texto(t, std::strlen(t)); }
    Linha& letra(char c) {
        if (usado_ == sizeof buffer_) termina();
        buffer_[usado_++] = c;
        return *this;
    }

    Linha& numero(std::int64_t v, int base = 10) {
        if (v >= 0 && v < 10) return letra(static_cast<char>('0' + v));
        char d[24];
        return texto(d, static_cast<std::size_t>(std::to_chars(d, d + sizeof d, v, base).ptr - d));
    }

    void termina() {
        if (stream_ && usado_ > 0) fwrite_unlocked(buffer_, 1, usado_, stream_);
        usado_ = 0;
    }

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

    std::FILE* stream_;
    std::size_t usado_ = 0;
    char buffer_[1024];
};
