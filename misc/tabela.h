// A DList with a hash index beside it: the same newest-first answers as a walk, in constant time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "misc/chave.h"
#include "misc/dlist.h"
#include "misc/reserva.h"

// Whether a record's key is this one; records that know the length of theirs have a quicker answer.
template <class T>
bool tem_chave(const T& e, const Chave& c) {
    return std::strcmp(chave(e), c.texto) == 0;
}

// `T` brings its links and a free function `chave(const T&)` that answers its key as C text. The
// key may not change while the element is in a table.
//
// Keys may repeat; the element nearest the head answers first, as in a walk from first(). Removing
// it lets the next one answer again. All changes go through the operations below; the table owns
// its index and, like the list, none of the elements. A put that throws std::bad_alloc has changed
// nothing.
//
// The index holds the hash beside the pointer, so that a mismatch touches no element: what costs in
// a large table is not the comparing but the memory that it has to fetch.
template <class T>
class Tabela {
  public:
    Tabela() = default;
    Tabela(const Tabela&) = delete;
    Tabela& operator=(const Tabela&) = delete;

    // Can be read as the list that it keeps, but not changed as one: the index would not know.
    operator const DList<T>&() const { return lista_; }
    T* first() const { return lista_.first(); }
    T* last() const { return lista_.last(); }
    T* next(const T* e) const { return lista_.next(e); }

    void putFirst(T* e) { putFirst(e, Chave(chave(*e)).hash); }

    // As above, with the hash of its key known.
    void putFirst(T* e, std::uint32_t hash) {
        conta_mais_um();
        indexa_primeiro(e, hash);
        lista_.putFirst(e);
    }

    void putLast(T* e) {
        conta_mais_um();
        indexa_ultimo({e, Chave(chave(*e)).hash});
        lista_.putLast(e);
    }

    // As DList::remove; the index gives its memory back when the last element leaves.
    void remove(T* e) {
        std::size_t i = Chave(chave(*e)).hash & mascara_;
        while (vagas_[i].e != e) i = seguinte(i);
        lista_.remove(e);
        if (--total_ == 0) {
            vagas_.reset();
            mascara_ = 0;
        } else {
            desocupa(i);
        }
    }

    T* removeAndGetNext(T* e) {
        remove(e);
        return e->next;
    }

    // Unlinks and deletes, in list order, the elements for which `sai` answers true. Cheaper than
    // one by one: the index is built anew over those that stay.
    template <class Teste>
    void apaga_se(Teste sai) {
        const std::size_t antes = total_;
        for (T* e = lista_.head; e;) {
            T* atual = e;
            e = e->next;
            if (!sai(atual)) continue;
            lista_.remove(atual);
            delete atual;
            --total_;
        }
        if (total_ != antes) reindexa();
    }

    // Empties list and index without touching the elements; their owner releases them.
    void esquece() {
        lista_.head = lista_.tail = nullptr;
        total_ = 0;
        reindexa();
    }

    // The first element whose key equals `procurada` byte for byte, or null.
    T* procurar(const Chave& procurada) const {
        if (!vagas_) return nullptr;
        for (std::size_t i = procurada.hash & mascara_; vagas_[i].e; i = seguinte(i))
            if (vagas_[i].hash == procurada.hash && tem_chave(*vagas_[i].e, procurada))
                return vagas_[i].e;
        return nullptr;
    }
    T* procurar(const char* procurada) const { return procurar(Chave(procurada)); }

    // Hints for lookups that come soon. busca() prefetches the place where the search for a hash
    // begins; provavel() answers the first element of that hash, or null, without touching it.
    [[gnu::always_inline]] void busca(std::uint32_t hash) const {
        if (vagas_) __builtin_prefetch(&vagas_[hash & mascara_]);
    }
    T* provavel(std::uint32_t hash) const {
        if (!vagas_) return nullptr;
        std::size_t i = hash & mascara_;
        while (vagas_[i].e && vagas_[i].hash != hash) i = seguinte(i);
        return vagas_[i].e;
    }

    std::size_t total() const { return total_; }

  private:
    // A place of the index; free when `e` is null. An element stands at its hash's place or, past
    // an unbroken row of others, behind it. Of equal hashes the newest stands first. Packed to 12
    // bytes where pointers have 8, since places take a fifth of the memory of a day's messages.
    struct [[gnu::packed, gnu::aligned(4)]] Vaga {
        T* e;
        std::uint32_t hash;
    };
    struct Devolve {
        std::size_t quantas;
        void operator()(Vaga* v) const { devolve_zerada(v, quantas * sizeof(Vaga)); }
    };
    using Vagas = std::unique_ptr<Vaga[], Devolve>;
    static constexpr std::size_t minimo_ = 64;

    std::size_t seguinte(std::size_t i) const { return (i + 1) & mascara_; }

    // Takes the place of the newest of its hash; each older one moves on to the next one's place.
    void indexa_primeiro(T* e, std::uint32_t hash) {
        std::size_t i = hash & mascara_;
        for (; vagas_[i].e; i = seguinte(i))
            if (vagas_[i].hash == hash) {
                T* const mais_antigo = vagas_[i].e;
                vagas_[i].e = e;
                e = mais_antigo;
            }
        vagas_[i] = {e, hash};
    }

    void indexa_ultimo(const Vaga& v) {
        std::size_t i = v.hash & mascara_;
        while (vagas_[i].e) i = seguinte(i);
        vagas_[i] = v;
    }

    // Frees a place: whatever stands behind it and may stand in it moves up, and so on.
    void desocupa(std::size_t livre) {
        for (std::size_t i = seguinte(livre); vagas_[i].e; i = seguinte(i)) {
            const std::size_t casa = vagas_[i].hash & mascara_;
            if (((i - casa) & mascara_) < ((i - livre) & mascara_)) continue;
            vagas_[livre] = vagas_[i];
            livre = i;
        }
        vagas_[livre] = {};
    }

    // Counts one more element, and makes room for it: at least a quarter of the places stay free.
    void conta_mais_um() {
        if (!vagas_ || (total_ + 1) * 4 > (mascara_ + 1) * 3) cresce();
        ++total_;
    }

    // Doubles the places; when there is no memory for them, all stays as it was. The walk begins
    // behind a free one, so that no row is cut in two and equal hashes keep their order.
    void cresce() {
        const std::size_t quantas = vagas_ ? mascara_ + 1 : 0;
        std::size_t livre = 0;
        while (livre < quantas && vagas_[livre].e) ++livre;
        const Vagas antigas = troca(quantas ? quantas * 2 : minimo_);
        for (std::size_t i = 0; i < quantas; ++i) {
            const Vaga& v = antigas[(livre + i) & (quantas - 1)];
            if (v.e) indexa_ultimo(v);
        }
    }

    // Never fails: fewer elements fit into the present places.
    void reindexa() noexcept {
        std::size_t quantas = minimo_;
        while (total_ * 4 > quantas * 3) quantas *= 2;
        try {
            if (total_ == 0)
                vagas_.reset();
            else
                troca(quantas);
        } catch (const std::bad_alloc&) {
            std::fill_n(vagas_.get(), mascara_ + 1, Vaga{});
        }
        if (!vagas_) mascara_ = 0;
        for (T* e = lista_.tail; e; e = e->prev) indexa_primeiro(e, Chave(chave(*e)).hash);
    }

    // Replaces the places by free ones and answers the old ones.
    Vagas troca(std::size_t quantas) {
        Vagas novas(static_cast<Vaga*>(toma_zerada(quantas * sizeof(Vaga))), {quantas});
        mascara_ = quantas - 1;
        vagas_.swap(novas);
        return novas;
    }

    DList<T> lista_;
    Vagas vagas_;
    std::size_t mascara_ = 0;
    std::size_t total_ = 0;
};
