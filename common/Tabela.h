// A DList with a hash index beside it: the same newest-first answers as a walk, in constant time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "common/DList.h"

// Hash of a key's bytes. Seeded once a process: the keys come from whoever sends mail, who must not
// be able to choose texts that all fall into one chain.
std::uint32_t hash_chave(const char* chave, std::size_t tamanho);

// `T` brings, besides its links, the members `chave_prox` (T*) and `chave_hash` (32 bits), which
// belong to the table, and a free function `chave(const T&)` that answers its key as C text. The
// key may not change while the element is in a table.
//
// Keys may repeat; the element nearest the head answers first, as in a walk from first(). Removing
// it lets the next one answer again. All changes go through the operations below; the table owns
// its index and, like the list, none of the elements.
template <class T>
class Tabela : public DList<T> {
  public:
    Tabela() = default;
    Tabela(const Tabela&) = delete;
    Tabela& operator=(const Tabela&) = delete;

    void putFirst(T* e) {
        reserva(e);
        T** cadeia = &cadeias_[e->chave_hash & mascara_];
        e->chave_prox = *cadeia;
        *cadeia = e;
        DList<T>::putFirst(e);
    }

    void putLast(T* e) {
        reserva(e);
        T** fim = &cadeias_[e->chave_hash & mascara_];
        while (*fim) fim = &(*fim)->chave_prox;
        e->chave_prox = nullptr;
        *fim = e;
        DList<T>::putLast(e);
    }

    // As DList::remove; the index gives its memory back when the last element leaves.
    void remove(T* e) {
        T** elo = &cadeias_[e->chave_hash & mascara_];
        while (*elo != e) elo = &(*elo)->chave_prox;
        *elo = e->chave_prox;
        DList<T>::remove(e);
        if (--total_ == 0 && mascara_ >= minimo_) {
            cadeias_.reset();
            mascara_ = 0;
        }
    }

    T* removeAndGetNext(T* e) {
        remove(e);
        return e->next;
    }

    // The first element whose key equals `procurada` byte for byte, or null.
    T* procurar(const char* procurada) const {
        if (total_ == 0) return nullptr;
        const std::uint32_t h = hash_chave(procurada, std::strlen(procurada));
        for (T* e = cadeias_[h & mascara_]; e; e = e->chave_prox)
            if (e->chave_hash == h && std::strcmp(chave(*e), procurada) == 0) return e;
        return nullptr;
    }

    std::size_t total() const { return total_; }

  private:
    static constexpr std::size_t minimo_ = 64;

    // Computes the hash of `e` and makes room for one more element.
    void reserva(T* e) {
        const char* c = chave(*e);
        e->chave_hash = hash_chave(c, std::strlen(c));
        if (!cadeias_) {
            cadeias_ = std::make_unique<T*[]>(minimo_);
            mascara_ = minimo_ - 1;
        } else if (total_ > mascara_) {
            dobra();
        }
        ++total_;
    }

    // Doubles the number of chains. Each old chain splits in two, both in the old order, so that
    // equal keys go on answering newest first.
    void dobra() {
        const std::size_t antes = mascara_ + 1;
        auto novas = std::make_unique<T*[]>(antes * 2);
        for (std::size_t i = 0; i < antes; ++i) {
            T** fim[2] = {&novas[i], &novas[i + antes]};
            for (T* e = cadeias_[i]; e; e = e->chave_prox) {
                T**& f = fim[(e->chave_hash & antes) != 0];
                *f = e;
                f = &e->chave_prox;
            }
            *fim[0] = *fim[1] = nullptr;
        }
        cadeias_ = std::move(novas);
        mascara_ = antes * 2 - 1;
    }

    std::unique_ptr<T*[]> cadeias_;
    std::size_t mascara_ = 0;
    std::size_t total_ = 0;
};
