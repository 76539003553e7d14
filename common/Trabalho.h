// What reports remember of the messages they met.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>

#include "common/Tabela.h"

// A message as the lines replayed so far tell it.
struct Trabalho {
    Trabalho *prev = nullptr, *next = nullptr;
    char id[24] = {};            // cut to 23 characters
    char* sendername = nullptr;  // owned; null until a submission was seen
    std::uint32_t size = 0;      // bytes
    bool int_user = false, spam = false, virus = false, error = false, fatal_error = false;

    Trabalho() = default;
    ~Trabalho() { delete[] sendername; }
    Trabalho(const Trabalho&) = delete;
    Trabalho& operator=(const Trabalho&) = delete;

    void define_remetente(const char* nome);
};

inline const char* chave(const Trabalho& t) {
    return t.id;
}

// Kept from one report of a parser to the next: lines whose submission lies before the range find
// the record that an earlier report left. One record an id, so that reports which are repeated cost
// nothing more.
class Trabalhos {
  public:
    // The record of exactly this id, or null. Ids over 23 characters are never found.
    Trabalho* acha(const char* id) const { return indice_.procurar(id); }
    // The same, or a new one.
    Trabalho* acha_ou_novo(const char* id);
    // A record without anything in it, in place of the one that the id had.
    Trabalho* novo(const char* id);
    void esquece() noexcept;

  private:
    Tabela<Trabalho> indice_;
    std::optional<std::deque<Trabalho>> registros_;  // an empty deque would hold memory, too
};
