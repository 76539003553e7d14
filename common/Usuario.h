// A mail user with his counters per period of the day.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/Contadores.h"
#include "misc/tabela.h"
#include "misc/texto.h"

// Selects one counter array.
enum InfoType : std::int32_t {
    SENT = 0,
    RECV = 1,
    BYTES_SENT = 2,
    BYTES_RECV = 3,
    MSG_VIRUS = 4,
    MSG_SPAM = 5,
    MSG_ERROR = 6,
    ATT_BLOCKED = 7,
};

// The eight counters of one period, or their sums over the day.
struct usuStats {
    std::uint32_t sent, recv, bytes_sent, bytes_recv, virus, spam, error, att_blocked;
};

// Created by the first event that names the user. The counters wrap at 32 bits. The arrays may be
// read directly. Only the adding members below write them: several users may share an array
// (Contadores.h), and adding may replace it.
class Usuario {
  public:
    char* name;                 // address or name as logged; perhaps shared with messages
    std::uint32_t num_periods;  // slots in each array
    std::uint32_t* sent;        // messages
    std::uint32_t* recv;
    std::uint32_t* bytes_sent;
    std::uint32_t* bytes_recv;
    std::uint32_t* virus;  // messages with one
    std::uint32_t* spam;
    std::uint32_t* error;  // delivery errors
    std::uint32_t* att_blocked;
    Usuario *prev = nullptr, *next = nullptr;
    // Messages in flight that name this user as sender. Zeroed at each day's end although messages
    // may still be in flight, so an END of the next day takes it below zero, which wraps.
    std::uint32_t msgs_reference = 0;

    // `nome` may be null (the name is then null); `periodos` 0 means 24.
    Usuario(const char* nome, unsigned periodos);
    ~Usuario();
    Usuario(const Usuario&) = delete;
    Usuario& operator=(const Usuario&) = delete;
    static void* operator new(std::size_t n);
    static void operator delete(void* p, std::size_t n) noexcept;

    // Prefetches what an event of a recipient in this period will touch. Reads the record, so that
    // should be fetched first. (Always inline: the compiler thinks that a function which only
    // prefetches has no effect, and drops the call.)
    [[gnu::always_inline]] void busca(unsigned periodo) const {
        __builtin_prefetch(name);
        if (periodo >= num_periods) return;
        __builtin_prefetch(recv + periodo);
        __builtin_prefetch(bytes_recv + periodo);
    }

    // Zeroes all counters and msgs_reference.
    void reset_vars();

    // Add to the counter of a period (0 to num_periods - 1). 0, and nothing changed, outside. Throw
    // std::bad_alloc, with nothing changed.
    int incSent(unsigned periodo, int n) { return soma(SENT, periodo, n); }
    int incRecv(unsigned periodo, int n) { return soma(RECV, periodo, n); }
    int addSentBytes(unsigned periodo, int n) { return soma(BYTES_SENT, periodo, n); }
    int addRecvBytes(unsigned periodo, int n) { return soma(BYTES_RECV, periodo, n); }
    int incVirus(unsigned periodo, int n) { return soma(MSG_VIRUS, periodo, n); }
    int incSpam(unsigned periodo, int n) { return soma(MSG_SPAM, periodo, n); }
    int incErro(unsigned periodo, int n) { return soma(MSG_ERROR, periodo, n); }
    int incAttBlocked(unsigned periodo, int n) { return soma(ATT_BLOCKED, periodo, n); }

    const char* getName() const { return name; }
    std::size_t tamanho_do_nome() const {  // 0 when there is none
        return TextoPartilhado::tamanho(name);
    }
    // The name, to be held by a message as well.
    TextoPartilhado nome() const { return TextoPartilhado::de(name); }
    unsigned getNumPeriods() const { return num_periods; }

    // One counter of a period; of all periods when `periodo` is negative; 0 outside.
    unsigned count(InfoType qual, int periodo) const;
    // All eight of a period; sums when `periodo` is negative; zeros outside.
    usuStats getStats(int periodo) const {
        if (periodo < 0) return totais();
        const auto p = static_cast<unsigned>(periodo);
        if (p >= num_periods) return {};
        return {sent[p],  recv[p], bytes_sent[p], bytes_recv[p],
                virus[p], spam[p], error[p],      att_blocked[p]};
    }

  private:
    // By InfoType.
    static constexpr std::uint32_t* Usuario::*arrays_[] = {
        &Usuario::sent,  &Usuario::recv, &Usuario::bytes_sent, &Usuario::bytes_recv,
        &Usuario::virus, &Usuario::spam, &Usuario::error,      &Usuario::att_blocked};

    int soma(InfoType qual, unsigned periodo, int n) {
        if (periodo >= num_periods) return 0;
        const auto quanto = static_cast<std::uint32_t>(n);
        if (proprios_ >> qual & 1)
            (this->*arrays_[qual])[periodo] += quanto;
        else
            soma_ao_comum(qual, periodo, quanto);
        return 1;
    }
    void soma_ao_comum(InfoType qual, unsigned periodo, std::uint32_t n);
    bool em_um_bloco() const { return num_periods > contadores::periodos; }
    std::uint32_t total(const std::uint32_t* contadores, int periodo) const;
    usuStats totais() const;

    // Which arrays are the user's own, a bit each. With more than 24 periods all of them are, and
    // stand one behind the other.
    std::uint8_t proprios_ = 0;
};

inline const char* chave(const Usuario& u) {
    return u.name ? u.name : "";
}
inline bool tem_chave(const Usuario& u, const Chave& c) {
    return u.tamanho_do_nome() == c.tamanho && mesmos_bytes(chave(u), c.texto, c.tamanho);
}
