// Texts that records own: copies made with new char[], and the error text of a message.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

// A copy made with new char[], null for null. The caller owns it.
inline char* copia_texto(const char* texto) {
    if (!texto) return nullptr;
    const std::size_t n = std::strlen(texto) + 1;
    return static_cast<char*>(std::memcpy(new char[n], texto, n));
}

// Reads as C text and costs its kilobyte only once written: a day keeps up to a million
// messages in memory, and hardly one of them ever has an error text.
class TextoErro {
  public:
    static constexpr std::size_t capacidade = 1024;  // bytes, the terminating zero included

    // The text; "" until the first writing.
    operator const char*() const { return texto_ ? texto_.get() : ""; }

    // Replaces the text by `novo`, cut to fit. `novo` may be a piece of the present text.
    TextoErro& operator=(std::string_view novo) {
        if (novo.size() >= capacidade) novo = novo.substr(0, capacidade - 1);
        if (!texto_) texto_ = std::make_unique<char[]>(capacidade);
        std::memmove(texto_.get(), novo.data(), novo.size());
        texto_[novo.size()] = '\0';
        return *this;
    }

  private:
    std::unique_ptr<char[]> texto_;
};
