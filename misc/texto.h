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
// senders write most of a day's messages. The text lies behind its header, so a record may keep its
// bare address, which reads as C text: `larga` gives it, and whoever takes it must `solta` it.
class TextoPartilhado {
  public:
    TextoPartilhado() = default;
    // A new copy of `n` bytes. Throws std::bad_alloc.
    TextoPartilhado(const char* texto, std::size_t n)
        : texto_(static_cast<char*>(toma(sizeof(Dados) + n + 1)) + sizeof(Dados)) {
        new (dados(texto_)) Dados{1, static_cast<std::uint32_t>(n)};
        std::memcpy(texto_, texto, n);
        texto_[n] = '\0';
    }
    // cppcheck-suppress copyCtorPointerCopying ; to share is the purpose
    TextoPartilhado(const TextoPartilhado& outro) : texto_(outro.texto_) {
        if (texto_) ++dados(texto_)->donos;
    }
    TextoPartilhado(TextoPartilhado&& outro) noexcept : texto_(outro.larga()) {}
    TextoPartilhado& operator=(TextoPartilhado outro) {
        std::swap(texto_, outro.texto_);
        return *this;
    }
    ~TextoPartilhado() { solta(texto_); }

    // Whether it is this text of `n` bytes.
    bool igual(const char* texto, std::size_t n) const {
        return texto_ && tamanho(texto_) == n && mesmos_bytes(texto_, texto, n);
    }

    // The text, which may not be changed; null when there is none.
    char* texto() const { return texto_; }

    // The same, now held by the caller and no longer by this object.
    char* larga() noexcept { return std::exchange(texto_, nullptr); }

    // For an address that `larga` gave, or null: `de` makes one more holder of the text, `tamanho`
    // answers its length (0 for null), `solta` releases it.
    static TextoPartilhado de(char* largado) {
        TextoPartilhado t;
        if (largado) ++dados(largado)->donos;
        t.texto_ = largado;
        return t;
    }
    static std::size_t tamanho(const char* largado) {
        return largado ? dados(largado)->tamanho : 0;
    }
    static void solta(char* largado) noexcept {
        if (largado && --dados(largado)->donos == 0)
            devolve(dados(largado), sizeof(Dados) + tamanho(largado) + 1);
    }

  private:
    struct Dados {
        std::uint32_t donos, tamanho;
    };
    static Dados* dados(char* texto) { return reinterpret_cast<Dados*>(texto) - 1; }
    static const Dados* dados(const char* texto) {
        return reinterpret_cast<const Dados*>(texto) - 1;
    }
    // Memory of `n` bytes (Texto.cpp).
    static void* toma(std::size_t n);
    static void devolve(void* p, std::size_t n) noexcept;

    char* texto_ = nullptr;
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
