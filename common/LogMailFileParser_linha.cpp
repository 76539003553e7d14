// parser(): one dispatcher line split, classified and handed to its handler.
#include <array>
#include <charconv>
#include <cstring>

#include "common/LogMailFileParser.h"

namespace {

using P = LogMailFileParser;
using Acao = void (*)(P&, const char* T, const Evento& e);

struct Regra {
    Agent agente;
    Status status;
    Acao acao;
};

using Tabela_de_acoes = std::array<std::array<Acao, num_status>, num_agents>;

// A handler called with the words at these positions; absent words are null.
template <auto handler, int... palavras>
void com(P& p, const char* T, const Evento& e) {
    (p.*handler)(T, e.palavra(palavras)...);
}

void nada(P&, const char*, const Evento&) {}

}  // namespace

// The actions that are more than a handler and its words.
struct LogMailFileParser::Despacho {
    // The event is not understood: the raw line from a column on is all that is kept of it.
    template <Agent agente, std::size_t coluna>
    static void copia(P& p, const char* T, const Evento&) {
        const char* resto = p.resto_da_linha(coluna);
        const std::size_t n = std::strlen(resto);
        p.escrita_.para(p.compact_logfile);
        Linha(p.escrita_, p.tamanho_de_T_ + Linha::maior_numero + 2 + n)
            .texto(T, p.tamanho_de_T_)
            .letra(' ')
            .numero(agente)
            .letra(' ')
            .texto(resto, n)
            .termina();
    }

    static void desconhecido(P& p, const char* T, const Evento& e) {
        copia<AGENT_UNKNOWN, 35>(p, T, e);
        p.traco("LogMailFileParser::parser : Falha no PARSER, linha = \"%s\"", p.osBuf.lbuf);
    }

    static void submit(P& p, const char* T, const Evento& e) {
        const bool sem_remetente = e.palavra(7) && std::strcmp(e.palavra(7), "com") == 0;
        p.handle_MAILQ_SUBMIT(T, e.palavra(3), e.palavra(5), sem_remetente ? "" : e.palavra(7),
                              sem_remetente ? e.palavra(8) : e.palavra(9));
    }

    static void dominio(P& p, const char* T, const Evento& e) {
        if (e.palavra(4) && std::strcmp(e.palavra(4), "Dominio") == 0)
            p.handle_MAILSMTP_ERROR_DOMAIN(T, e.palavra(3), e.palavra(5));
    }

    static void final(P& p, const char* T, const Evento& e) {
        p.handle_MAILSMTP_ERROR_FINAL(T, e.palavra(3), p.resto_da_linha(71));
    }

    static void leitura(P& p, const char* T, const Evento& e) {
        p.registra("", POPSRV, READ, {T, e.palavra(3) ? e.palavra(3) : "(null)"});
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

void LogMailFileParser::antecipa(const LeitorLinhas::Trecho* linhas, std::size_t n) {
    static_assert(LeitorLinhas::folga >= Evento::folga);
    if (!lote_) lote_ = std::make_unique_for_overwrite<Evento[]>(maior_lote);
    for (std::size_t i = 0; i < n; ++i) {
        Evento& e = lote_[i];
        e.separa(linhas[i].inicio, linhas[i].tamanho);
        if (e.id().texto) Lista_msg.antecipa(e.id().hash);
        if (e.usuario()) Lista_usu.antecipa(e.endereco().hash);
    }
    // Users alone: the messages of these lines were mostly met a moment ago.
    const Usuario* usuarios[maior_lote];
    std::size_t num_usuarios = 0;
    for (std::size_t i = 0; i < n; ++i)
        if (lote_[i].usuario())
            if (const Usuario* u = Lista_usu.provavel(lote_[i].endereco().hash))
                __builtin_prefetch(usuarios[num_usuarios++] = u);
    for (std::size_t i = 0; i < num_usuarios; ++i) usuarios[i]->busca(last_period);
}

int LogMailFileParser::parser() {
    const int i = posicao_no_lote();
    if (i >= 0 && lote_) {
        despacha(lote_[static_cast<std::size_t>(i)]);
    } else {
        Evento e;
        e.separa(osBuf.lbuf, sizeof osBuf.lbuf - Evento::folga);
        despacha(e);
    }
    return 1;
}

void LogMailFileParser::despacha(const Evento& e) {
    static constexpr Tabela_de_acoes tabela = Despacho::tabela();
    struct Fim {
        const Evento*& e;
        ~Fim() { e = nullptr; }
    } fim{evento_};

    evento_ = &e;
    const time_t hora = hora_do_registro();
    if (hora != hora_ || T_[0] == '\0') {
        char* fim = std::to_chars(T_, std::end(T_) - 1, static_cast<std::uint32_t>(hora), 16).ptr;
        *fim = '\0';
        tamanho_de_T_ = static_cast<std::size_t>(fim - T_);
        hora_ = hora;
    }
    tabela[e.agente()][e.status()](*this, T_, e);
}

// The time of the event being handled; 0 when the line has none.
time_t LogMailFileParser::hora_da_linha() {
    return evento_ ? hora_ : convTimeFromLog(osBuf.lbuf);
}

// The raw line from a column on, with its own line end; a line feed when nothing stands there.
const char* LogMailFileParser::resto_da_linha(std::size_t coluna) const {
    return strnlen(osBuf.lbuf, coluna + 1) > coluna ? osBuf.lbuf + coluna : "\n";
}
