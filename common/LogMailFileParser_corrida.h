// One consolidation: what the lines of the logs do, and what the end of a day does.
#pragma once

#include <cstddef>
#include <ctime>
#include <initializer_list>
#include <memory>
#include <string_view>

#include "common/Evento.h"
#include "common/LogMailFileParser.h"
#include "common/compacta.h"
#include "common/diario.h"

// Works on the tables, files and periods of its parser. What it remembers from one line to the next
// ends with it.
class Corrida {
  public:
    // With `dona` the run owns what the parser's tables and day files hold: its end closes the
    // files, deletes messages and users, and makes the reports forget theirs. Without, somebody
    // hands events to the parser one by one, and sees to that himself.
    Corrida(LogMailFileParser& p, bool dona) : p_(p), dona_(dona) {}
    // Also in mid-day, when an exception ends the run.
    ~Corrida();
    Corrida(const Corrida&) = delete;
    Corrida& operator=(const Corrida&) = delete;

    // The line (_linha.cpp): takes the next ones apart; handles the one in osBuf.lbuf.
    void antecipa(const LeitorLinhas::Trecho* linhas, std::size_t n);
    void trata_linha();

    // The time of an event, and that as field 0 of its compact line.
    struct Hora {
        time_t t;
        std::string_view hexa;
    };
    // For the line in osBuf.lbuf; `T` is its field 0 (_portas.cpp).
    Hora hora(const char* T);

    // The events (_eventos.cpp): what the parser's public handlers do, over the words of the line,
    // measured and hashed. Each text has a NUL behind it, or no data when it is missing.
    using Texto = std::string_view;
    int mailq_submit(Hora h, const Chave& id, Texto tipo, const Chave& remetente, Texto tamanho);
    int mailq_ok(Hora h, const Chave& id, const Chave& destinatario);
    int mailq_end(Hora h, const Chave& id);
    int deliver(Hora h, const Chave& id);
    int smtp_ok(Hora h, const Chave& id, const Chave& destinatario);
    int smtp_end(Hora h, const Chave& id);
    int spam(Hora h, const Chave& id);
    int virus(Hora h, const Chave& id);
    int erro(Status status, Hora h, const Chave& id, Texto texto = {});

    // The day's end (_estatistica.cpp).
    diario::Totais retira_mensagens();
    void escreve_estatistica(const diario::Totais& totais);
    void prepara_proximo_dia();

    bool sem_compacto = false;  // the day's compact file could not be created

  private:
    struct RegraErro;
    struct Despacho;

    void despacha(const Evento& e);
    const char* resto_da_linha(std::size_t coluna) const;

    // Steps that the events share.
    bool registra(const char* metodo, Agent agente, Status status, Hora h,
                  std::initializer_list<Texto> campos, bool fim = true);
    Msg* msg_ou_nova(const Chave& id, time_t inicio = 0);
    TextoPartilhado texto_de(const Chave& remetente);
    Usuario* usuario_ou_novo(const Chave& nome, unsigned periodos);
    void conta_enviada(Msg* m, time_t t, int (Usuario::*tambem)(unsigned, int) = nullptr);
    void conta_recebida(const Chave& destinatario, const Msg* m, time_t t);
    void encerra(Msg* m, time_t t, int (Usuario::*tambem)(unsigned, int) = nullptr);

    static constexpr std::size_t max_remetentes_ = 8192;

    LogMailFileParser& p_;
    const bool dona_;
    Hora hora_{};  // of the line handled last, its text in hexa_
    char hexa_[compacta::maior_hora] = {};
    std::unique_ptr<Evento[]> lote_;                 // the lines taken apart by antecipa()
    std::unique_ptr<TextoPartilhado[]> remetentes_;  // the senders last seen, by hash
};
