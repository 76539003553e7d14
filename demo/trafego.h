// The life of one message, as lines of the log: who writes, what befalls it, when.
#pragma once

#include <cstdint>
#include <ctime>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "demo/gerador.h"

namespace gerador {

// Random numbers that are the same on every machine: only the engine is the library's.
class Sorte {
  public:
    explicit Sorte(std::uint64_t semente) : motor_(semente) {}
    // From 0 to below 1.
    double fracao() { return static_cast<double>(motor_() >> 11) * 0x1p-53; }
    // From 0 to below `n`, which is not 0.
    unsigned ate(unsigned n) { return static_cast<unsigned>(motor_() % n); }
    // From 0 to below `n`: number k comes up in proportion to 1 / (k + 1), as heavy senders do.
    unsigned preferido(unsigned n);
    bool acontece(double parte) { return parte > 0 && fracao() < parte; }

  private:
    std::mt19937_64 motor_;
};

// Plans messages one at a time.
class Trafego {
  public:
    // A line of the message planned last, from column 26 on and without its line end.
    struct Evento {
        std::time_t quando;
        std::string texto;
    };

    // Both are kept by reference.
    Trafego(const Parametros& parametros, Sorte& sorte) : p_(parametros), sorte_(sorte) {}

    // Plans a message submitted at second `t` of the day that ends before `meia_noite`. Its events,
    // in time order, stay valid until the next call.
    const std::vector<Evento>& mensagem(std::time_t t, std::time_t meia_noite);

    // No event comes later than this many seconds after its message's submission.
    static constexpr std::time_t prazo = 5 * 86400;

  private:
    void nomeia(std::time_t t);
    void nova(std::time_t t);
    std::string destino();
    std::string remetente_externo();
    void evento(std::string_view agente_status, std::string_view resto);
    void erro(const TipoErro& tipo);
    void tentativa();
    void espera(unsigned segundos) { relogio_ += 1 + sorte_.ate(segundos); }
    void termina(bool sempre);

    void caso();
    void caso_spam();
    void caso_virus();
    void caso_retida();
    void caso_erro(const TipoErro& tipo);
    void insiste(const TipoErro& tipo, unsigned vezes, unsigned intervalo);
    void entrega();
    void desiste();
    void encurta(std::time_t meia_noite);

    const Parametros& p_;
    Sorte& sorte_;
    std::uint64_t numero_ = 0;  // messages planned so far: makes the id
    unsigned nomes_ = 0;        // recipients so far, where each is a new name
    std::vector<Evento> eventos_;

    // The message being planned.
    std::string processo_;  // the two digits of column 26 and a blank
    std::string id_;        // 16 characters: the text of ERROR_FINAL begins at column 71
    std::vector<std::string> destinos_;
    bool local_ = false;  // delivered by the queue itself, not by SMTP
    unsigned tentativas_ = 0;
    std::time_t relogio_ = 0;
};

}  // namespace gerador
