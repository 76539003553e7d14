// Texts that records own: copies made with new char[], and the error text of a message.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "misc/bytes.h"

// A copy made with new char[], null for null. The caller owns it.
inline char* copia_texto(const char* texto) {
    if (!texto) return nullptr;
    const std::size_t n = std::strlen(texto) + 1;
    return static_cast<char*>(std::memcpy(new char[n], texto, n));
}

// A text that several records of one thread hold together; freed with the last of them. A few heavy
// senders write most of a day's messages.
class TextoPartilhado {
  public:
    TextoPartilhado() = default;
    // A new copy of `n` bytes.
    TextoPartilhado(const char* texto, std::size_t n)
        : dados_(new (::operator new(sizeof(Dados) + n + 1)) Dados{1, n}) {
        std::memcpy(this->texto(), texto, n);
        this->texto()[n] = '\0';
    }
    // cppcheck-suppress copyCtorPointerCopying ; to share is the purpose
    TextoPartilhado(const TextoPartilhado& outro) : dados_(outro.dados_) {
        if (dados_) ++dados_->donos;
    }
    TextoPartilhado(TextoPartilhado&& outro) noexcept
        : dados_(std::exchange(outro.dados_, nullptr)) {}
    TextoPartilhado& operator=(TextoPartilhado outro) {
        std::swap(dados_, outro.dados_);
        return *this;
    }
    ~TextoPartilhado() {
        if (dados_ && --dados_->donos == 0) ::operator delete(dados_);
    }

    // Whether it is this text of `n` bytes.
    bool igual(const char* texto, std::size_t n) const {
        return dados_ && dados_->tamanho == n && mesmos_bytes(this->texto(), texto, n);
    }

    // The text, which may not be changed; null when there is none.
    char* texto() const { return dados_ ? reinterpret_cast<char*>(dados_ + 1) : nullptr; }

  private:
    struct Dados {
        std::uint32_t donos;
        std::size_t tamanho;
    };
    Dados* dados_ = nullptr;
};

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
