// What reports remember of the messages they met.
#pragma once

#include <cstdint>

#include "misc/arena.h"
#include "misc/tabela.h"

// A message as the lines replayed so far tell it.
struct Trabalho {
    Trabalho *prev = nullptr, *next = nullptr;
    char id[24] = {};         // cut to 23 characters
    char* texto = nullptr;    // room for the sender, owned by the records' owner
    std::uint32_t lugar = 0;  // its bytes
    std::uint32_t size = 0;   // bytes
    bool submetida = false;   // a submission was seen, and the room holds its sender
    bool int_user = false, spam = false, virus = false, error = false, fatal_error = false;

    const char* sendername() const { return submetida ? texto : nullptr; }
};

inline const char* chave(const Trabalho& t) {
    return t.id;
}
inline bool tem_chave(const Trabalho& t, const Chave& c) {
    return igual_ao_campo(t.id, c);
}

// Kept from one report of a parser to the next: lines whose submission lies before the range find
// the record that an earlier report left. There is one record an id, so that repeated reports cost
// nothing more.
class Trabalhos {
  public:
    Trabalhos() = default;
    Trabalhos(const Trabalhos&) = delete;
    Trabalhos& operator=(const Trabalhos&) = delete;

    // The record of exactly this id, or null. Ids over 23 characters are never found.
    Trabalho* acha(const Chave& id) const { return indice_.procurar(id); }
    // The same, or a new one.
    Trabalho* acha_ou_novo(const Chave& id);
    // A record with nothing in it but the sender (null: unknown), in place of the one that the id
    // had.
    Trabalho* novo(Chave id, const char* remetente);
    void esquece() noexcept;

    // A hint, for an id that will be looked up soon, by the hash of its key.
    void busca(std::uint32_t hash) const { indice_.busca(hash); }

  private:
    void define_remetente(Trabalho* t, const char* nome);

    Arena memoria_;  // of the records and of their senders' texts
    Tabela<Trabalho> indice_;
};
