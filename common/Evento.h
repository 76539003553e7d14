// One dispatcher line taken apart, before anything is done with it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/auxiliar.h"

// The words of a line, what kind of event it is, and the hashes of the keys that its handler will
// look for, so that they are computed once and the memory behind them can be fetched ahead.
// The words point into the event: it is neither copied nor moved.
class Evento {
  public:
    static constexpr int palavras_lidas = 10;

    Evento() = default;
    Evento(const Evento&) = delete;
    Evento& operator=(const Evento&) = delete;

    // Takes a line of `n` bytes apart; of one with a NUL, what stands before it. Words beyond the
    // first 299 bytes do not count.
    void separa(const char* linha, std::size_t n);

    // The word `i`, null when the line has fewer.
    const char* palavra(int i) const { return i < lidas_ ? texto_ + palavras_[i].inicio : nullptr; }
    Agent agente() const { return agente_; }
    Status status() const { return status_; }
    // Word 3, the message's id, as a key; its text is null when there is none.
    const Chave& id() const { return id_; }
    // The word that names the user whose record the event will touch; a null text when it is none.
    const Chave& usuario() const { return usuario_; }

  private:
    // Positions in texto_.
    struct Palavra {
        std::uint16_t inicio, fim;
    };
    static constexpr std::size_t inicio_das_palavras_ = 26;
    static constexpr std::size_t maior_ = 299;  // bytes of a line that count

    bool separa_regular(const char* texto, std::size_t n);
    void separa_qualquer(std::size_t n);
    Chave chave_da(int i, const char* linha) const;

    Agent agente_;
    Status status_;
    int lidas_;
    Chave id_, usuario_;
    // One word more than is read: the last one is cut.
    Palavra palavras_[palavras_lidas + 1];
    char texto_[maior_ - inicio_das_palavras_ +
                1];  // the line from inicio_das_palavras_ on, its words ended by NUL
};
