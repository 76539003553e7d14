// One dispatcher line taken apart, before anything is done with it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/auxiliar.h"
#include "misc/palavras.h"

// The words of a line, what kind of event it is, and the hashes of the keys that its handler will
// look for, so that they are computed once and the memory behind them can be fetched ahead.
// The words point into the event: it is neither copied nor moved.
class Evento {
  public:
    static constexpr int palavras_lidas = 10;

    // cppcheck-suppress uninitMemberVar ; separa() writes what is read; one stands in each place of
    // a batch
    Evento() = default;
    Evento(const Evento&) = delete;
    Evento& operator=(const Evento&) = delete;

    // Takes a line of `n` bytes apart; `folga` bytes behind it must be readable. A NUL ends the
    // line. Words beyond the first 299 bytes do not count.
    static constexpr std::size_t folga = Cortes::maior;
    void separa(const char* linha, std::size_t n);

    // Word `i` (below palavras_lidas), with a NUL behind it; without data when the line has fewer
    // words.
    std::string_view palavra(int i) const {
        if (i >= lidas_) return {};
        return {texto_ + separadores_[i] + 1,
                static_cast<std::size_t>(separadores_[i + 1] - separadores_[i] - 1)};
    }
    Agent agente() const { return agente_; }
    Status status() const { return status_; }
    // Word 3, the message's id, as a key; its text is null when there is none.
    const Chave& id() const { return id_; }
    // The address that it names, as a key: who submitted the message or accepted it. Its text is
    // null when it names none.
    const Chave& endereco() const { return endereco_; }
    // The user whose record it will touch: the recipient, or a local sender. Else a null text.
    const char* usuario() const { return toca_usuario_ ? endereco_.texto : nullptr; }
    // Whether it is a submission.
    bool submissao() const { return agente_ == MAILQ && status_ == SUBMIT; }

  private:
    static constexpr std::size_t inicio_das_palavras_ = 26;
    static constexpr std::size_t maior_ = 299;  // bytes of a line that count

    void separa_palavras(const char* linha, std::size_t n);
    bool separa_regular(const char* linha, std::size_t n);
    void separa_qualquer(const char* texto, std::size_t n);
    Chave chave_da(int i) const;

    Agent agente_;
    Status status_;
    int lidas_;
    bool toca_usuario_;
    Chave id_, endereco_;
    // The words, each ended by NUL: word i stands in texto_ between two of these positions, which
    // hold a NUL each (the first one ends a word that is not kept).
    std::uint16_t separadores_[Cortes::maior / 2 + 2];
    char texto_[maior_ - inicio_das_palavras_ + 1];
};
