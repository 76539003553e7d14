// parser(): one dispatcher line split, classified and handed to its handler.
#include <array>
#include <charconv>
#include <cstring>

#include "common/LogMailFileParser.h"

namespace {

using P = LogMailFileParser;
using Acao = void (*)(P&, const char* T, char** tok);

constexpr std::size_t inicio_das_palavras = 26;
constexpr int palavras_lidas = 10;

struct Regra {
    Agent agente;
    Status status;
    Acao acao;
};

using Tabela_de_acoes = std::array<std::array<Acao, num_status>, num_agents>;

// A handler called with the words at these positions; absent words are null.
template <auto handler, int... palavras>
void com(P& p, const char* T, char** tok) {
    (p.*handler)(T, tok[palavras]...);
}

void nada(P&, const char*, char**) {}

}  // namespace

// The actions that are more than a handler and its words.
struct LogMailFileParser::Despacho {
    // The event is not understood: the raw line from a column on is all that is kept of it.
    template <Agent agente, std::size_t coluna>
    static void copia(P& p, const char* T, char**) {
        Linha(p.compact_logfile)
            .texto(T)
            .letra(' ')
            .numero(agente)
            .letra(' ')
            .texto(p.resto_da_linha(coluna))
            .termina();
    }

    static void desconhecido(P& p, const char* T, char** tok) {
        copia<AGENT_UNKNOWN, 35>(p, T, tok);
        p.traco("LogMailFileParser::parser : Falha no PARSER, linha = \"%s\"", p.osBuf.lbuf);
    }

    static void submit(P& p, const char* T, char** tok) {
        const bool sem_remetente = tok[7] && std::strcmp(tok[7], "com") == 0;
        p.handle_MAILQ_SUBMIT(T, tok[3], tok[5], sem_remetente ? "" : tok[7],
                              sem_remetente ? tok[8] : tok[9]);
    }

    static void dominio(P& p, const char* T, char** tok) {
        if (tok[4] && std::strcmp(tok[4], "Dominio") == 0)
            p.handle_MAILSMTP_ERROR_DOMAIN(T, tok[3], tok[5]);
    }

    static void final(P& p, const char* T, char** tok) {
        p.handle_MAILSMTP_ERROR_FINAL(T, tok[3], p.resto_da_linha(71));
    }

    static void leitura(P& p, const char* T, char** tok) {
        p.registra("", POPSRV, READ, {T, tok[3] ? tok[3] : "(null)"});
    }

    static constexpr Tabela_de_acoes tabela() {
        // What an agent's other events do.
        constexpr Acao outros[num_agents] = {
            desconhecido, copia<MAILQ, 35>, copia<MAILSMTP, 37>, copia<POPSRV, 35>, nada, nada,
        };
        constexpr Regra regras[] = {
            {MAILQ, SUBMIT, submit},
            {MAILQ, DELIVER, com<&P::handle_MAILSMTP_DELIVER, 3>},
            {MAILQ, OK, com<&P::handle_MAILQ_OK, 3, 5>},
            {MAILQ, END, com<&P::handle_MAILQ_END, 3>},
            {MAILQ, SPAM, com<&P::handle_SPAM, 4>},
            {MAILSMTP, OK, com<&P::handle_MAILSMTP_OK, 3, 5>},
            {MAILSMTP, END, com<&P::handle_MAILSMTP_END, 3>},
            {MAILSMTP, ERROR_CONNECT, com<&P::handle_MAILSMTP_ERROR_CONNECT, 3, 6>},
            {MAILSMTP, DELIVER, com<&P::handle_MAILSMTP_DELIVER, 3>},
            {MAILSMTP, ERROR_SENDER, com<&P::handle_MAILSMTP_ERROR_SENDER, 3, 8>},
            {MAILSMTP, ERROR_DEST, com<&P::handle_MAILSMTP_ERROR_DEST, 3, 5>},
            {MAILSMTP, ERROR_DOMAIN, dominio},
            {MAILSMTP, ERROR_SIZE, com<&P::handle_MAILSMTP_ERROR_SIZE, 3>},
            {MAILSMTP, ERROR_HELO, com<&P::handle_MAILSMTP_ERROR_HELO, 3, 5>},
            {MAILSMTP, ERROR_DATA, com<&P::handle_MAILSMTP_ERROR_DATA, 3>},
            {MAILSMTP, ERROR_FINAL, final},
            {POPSRV, READ, leitura},
            {ANTIVIRUS, VIRUS, com<&P::handle_ANTIVIRUS_VIRUS, 3>},
            {SPAMCATCHER, COPY, com<&P::handle_SPAM, 3>},
            {SPAMCATCHER, TAGGED, com<&P::handle_SPAM, 3>},
            {SPAMCATCHER, QUARANTINE, com<&P::handle_SPAM, 3>},
            {SPAMCATCHER, DISCARD, com<&P::handle_SPAM, 3>},
        };
        Tabela_de_acoes t{};
        for (std::size_t a = 0; a < num_agents; ++a) t[a].fill(outros[a]);
        bool tomado[num_agents][num_status] = {};
        for (const Regra& r : regras) {
            if (tomado[r.agente][r.status])
                throw "a second rule for the same pair";  // fails the build
            tomado[r.agente][r.status] = true;
            t[r.agente][r.status] = r.acao;
        }
        return t;
    }
};

int LogMailFileParser::parser() {
    static constexpr Tabela_de_acoes tabela = Despacho::tabela();

    hora_ = convTimeFromLog(osBuf.lbuf);
    hora_pronta_ = true;
    char T[40];
    *std::to_chars(T, T + sizeof T - 1, static_cast<std::uint32_t>(hora_), 16).ptr = '\0';

    // One word more than is read: getTokens cuts the last one.
    char* tok[palavras_lidas + 1] = {};
    char copia[300];
    const std::size_t n = strnlen(osBuf.lbuf, sizeof copia - 1);
    std::memcpy(copia, osBuf.lbuf, n);
    copia[n] = '\0';
    if (n > inicio_das_palavras)
        getTokens(copia + inicio_das_palavras, copia + n, tok, palavras_lidas + 1);

    tabela[getAgent(tok[0])][getStatus(tok[1])](*this, T, tok);
    hora_pronta_ = false;
    return 1;
}

// The time of the event being handled; 0 when the line has none.
time_t LogMailFileParser::hora_da_linha() {
    return hora_pronta_ ? hora_ : convTimeFromLog(osBuf.lbuf);
}

// The raw line from a column on, with its own line end; a line feed when nothing stands there.
const char* LogMailFileParser::resto_da_linha(std::size_t coluna) const {
    return strnlen(osBuf.lbuf, coluna + 1) > coluna ? osBuf.lbuf + coluna : "\n";
}
