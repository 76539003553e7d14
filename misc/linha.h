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
        std::memcpy(buffer_ + usado_, t, n);
        usado_ += n;
        return *this;
    }
    Linha& texto(const char* t) { return texto(t, std::strlen(t)); }
    Linha& letra(char c) { return texto(&c, 1); }

    Linha& numero(std::int64_t v, int base = 10) {
        char d[24];
        return texto(d, static_cast<std::size_t>(std::to_chars(d, d + sizeof d, v, base).ptr - d));
    }

    void termina() {
        if (stream_ && usado_ > 0) fwrite_unlocked(buffer_, 1, usado_, stream_);
        usado_ = 0;
    }

  private:
    std::FILE* stream_;
    std::size_t usado_ = 0;
    char buffer_[1024];
};
