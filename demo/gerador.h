// Generated dispatcher logs: the traffic of an invented mail relay, the same for the same seed.
// Used by the demo, the tests and the bench.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "demo/saida_log.h"

namespace gerador {

// What becomes of a message after an error.
enum class Depois {
    tenta_de_novo,  // further attempts, in the end delivered or given up
    segue,          // this recipient is lost, the others get it
    desiste,        // the error was the last word
};

// A kind of delivery error as the dispatcher logs it.
struct TipoErro {
    const char* opcao;   // name of its share on the command line
    const char* status;  // status word of the line
    const char* texto;   // words after the id: "@" stands for the domain, "*" for the recipient
    Depois depois;
    double parte;  // usual share of messages
};
constexpr std::size_t n_tipos_erro = 11;
extern const std::array<TipoErro, n_tipos_erro> tipos_erro;

// All shares lie between 0 and 1; those of messages exclude each other, in the order given here.
struct Parametros {
    std::string diretorio;     // created when missing; must hold no logs yet
    std::string primeiro_dia;  // YYYY-MM-DD, local time of the process
    unsigned dias = 1;
    unsigned mensagens = 20000;  // submitted each day, exactly
    unsigned usuarios = 400;     // local users; the outside correspondents are three times as many
    unsigned destinatarios = 0;  // of each message, all of them new names; 0: few, and they repeat
    // Outside senders are drawn from so many names in each of so many domains, evenly; 0: from the
    // outside correspondents, the heavy ones first.
    unsigned nomes_externos = 0, dominios_externos = 0;
    std::uint64_t semente = 1;
    std::string inicio_dos_ids;  // what all ids begin with, at most 8 characters; "": their time

    double spam = 0.06;
    double virus = 0.004;
    double retidas = 0.004;                  // held for many hours by a server that is down
    std::array<double, n_tipos_erro> erros;  // shares of messages, by tipos_erro
    double sem_remetente = 0.02;             // bounces: the line of submission lacks the sender
    bool travessia = true;                   // false: nothing is in flight at any midnight

    std::uint64_t rotacao = rotacao_diaria;  // lines a file, rotacao_diaria or rotacao_nenhuma
    double crlf = 0;                         // share of lines that end in CR LF
    double estranhas = 0;   // share of lines followed by one that is no event of a message
    double partem_dia = 0;  // share of lines followed by one that ends the day for its readers

    Parametros();
    // Every message is delivered: no spam, virus, held message or error.
    void so_entregas();
};

struct Resumo {
    std::uint64_t mensagens = 0;
    std::uint64_t linhas = 0;
    std::uint64_t bytes = 0;
    unsigned arquivos = 0;
};

// Writes the log of `dias` calendar days. Lines are in time order, 6 to 8 a message. What is still
// under way when the last day ends is cut off there. The memory needed grows with the lines in
// flight, not with the days. Throws std::invalid_argument for parameters that make no sense,
// std::system_error for what the disk refuses.
Resumo gera(const Parametros& parametros);

}  // namespace gerador
