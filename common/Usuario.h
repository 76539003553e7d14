// A mail user with his counters per period of the day.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/Tabela.h"

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

// Created by the first event that names the user. The counters wrap at 32 bits.
class Usuario {
  public:
    char* name;                 // owned; address or name as logged
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
    std::uint32_t msgs_reference;

    // `nome` may be null (the name is then null); `periodos` 0 means 24.
    Usuario(const char* nome, unsigned periodos);
    ~Usuario();
    Usuario(const Usuario&) = delete;
    Usuario& operator=(const Usuario&) = delete;
    static void* operator new(std::size_t n);
    static void operator delete(void* p, std::size_t n) noexcept;

    // Fetches what an event of a recipient in this period will touch. (Always inline: the compiler
    // takes a function that only fetches for one without effect, and drops the call.)
    [[gnu::always_inline]] void busca(unsigned periodo) const {
        __builtin_prefetch(this);
        __builtin_prefetch(nome_);
        __builtin_prefetch(nome_ + 63);
        if (periodo >= periodos_usuais_) return;
        __builtin_prefetch(bloco_ + periodos_usuais_ + periodo);
        __builtin_prefetch(bloco_ + 3 * periodos_usuais_ + periodo);
    }

    // Zeroes all counters and msgs_reference.
    void reset_vars();

    // Add to the counter of a period (0 to num_periods - 1). 0, and nothing changed, outside.
    int incSent(unsigned periodo, int n) { return soma(sent, periodo, n); }
    int incRecv(unsigned periodo, int n) { return soma(recv, periodo, n); }
    int addSentBytes(unsigned periodo, int n) { return soma(bytes_sent, periodo, n); }
    int addRecvBytes(unsigned periodo, int n) { return soma(bytes_recv, periodo, n); }
    int incVirus(unsigned periodo, int n) { return soma(virus, periodo, n); }
    int incSpam(unsigned periodo, int n) { return soma(spam, periodo, n); }
    int incErro(unsigned periodo, int n) { return soma(error, periodo, n); }
    int incAttBlocked(unsigned periodo, int n) { return soma(att_blocked, periodo, n); }

    const char* getName() const { return name; }
    std::size_t tamanho_do_nome() const { return tamanho_do_nome_; }  // 0 when there is none
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
    int soma(std::uint32_t* contadores, unsigned periodo, int n) {
        if (periodo >= num_periods) return 0;
        contadores[periodo] += static_cast<std::uint32_t>(n);
        return 1;
    }
    std::uint32_t total(const std::uint32_t* contadores, int periodo) const;
    usuStats totais() const;

    static constexpr std::size_t contadores_ = 8;
    static constexpr std::size_t periodos_usuais_ = 24;

    // The name and the eight arrays, one behind the other, stand in the record itself unless they
    // are larger than usual: what an event touches lies together.
    std::size_t tamanho_do_nome_;
    char nome_[88];
    std::uint32_t bloco_[contadores_ * periodos_usuais_];
};

inline const char* chave(const Usuario& u) {
    return u.name ? u.name : "";
}
inline bool tem_chave(const Usuario& u, const Chave& c) {
    return u.tamanho_do_nome() == c.tamanho && mesmos_bytes(chave(u), c.texto, c.tamanho);
}
