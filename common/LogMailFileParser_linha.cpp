// parser(): one dispatcher line split, classified and handed to its handler.
#include <array>
#include <cstring>

#include "common/LogMailFileParser_corrida.h"

namespace {

using C = Corrida;
using Acao = void (*)(C&, const Evento& e);

struct Regra {
    Agent agente;
    Status status;
    Acao acao;
};

using Tabela_de_acoes = std::array<std::array<Acao, num_status>, num_agents>;

void nada(C&, const Evento&) {}

}  // namespace

// What is done with each kind of event.
struct Corrida::Despacho {
    // A handler of the message that word 3 names: with nothing else, or with the address.
    template <auto handler>
    static void so_id(C& c, const Evento& e) {
        (c.*handler)(c.hora_, e.id());
    }
    template <auto handler>
    static void com_endereco(C& c, const Evento& e) {
        (c.*handler)(c.hora_, e.id(), e.endereco());
    }
    template <Status status, int... palavra>
    static void erro(C& c, const Evento& e) {
        c.erro(status, c.hora_, e.id(), e.palavra(palavra)...);
    }

    // The event is not understood: the raw line from a column on is all that is kept of it.
    template <Agent agente, std::size_t coluna>
    static void copia(C& c, const Evento&) {
        if (c.p_.compact_logfile)
            compacta::copia(c.p_.compact_logfile, c.hora_.hexa, agente, c.resto_da_linha(coluna));
    }

    static void desconhecido(C& c, const Evento& e) {
        copia<AGENT_UNKNOWN, 35>(c, e);
        c.p_.traco("LogMailFileParser::parser : Falha no PARSER, linha = \"%s\"", c.p_.osBuf.lbuf);
    }

    // A bounce has no sender: the words behind it move up by one.
    static void submit(C& c, const Evento& e) {
        const bool sem_remetente = e.palavra(7) == "com";
        c.mailq_submit(c.hora_, e.id(), e.palavra(5), sem_remetente ? Chave("") : e.endereco(),
                       sem_remetente ? e.palavra(8) : e.palavra(9));
    }

    // Here the id is word 4.
    static void spam_da_fila(C& c, const Evento& e) {
        const Texto id = e.palavra(4);
        c.spam(c.hora_, id.data() ? Chave(id.data(), id.size()) : Chave());
    }

    static void dominio(C& c, const Evento& e) {
        if (e.palavra(4) == "Dominio") c.erro(ERROR_DOMAIN, c.hora_, e.id(), e.palavra(5));
    }

    static void final(C& c, const Evento& e) {
        c.erro(ERROR_FINAL, c.hora_, e.id(), c.resto_da_linha(71));
    }

    static void leitura(C& c, const Evento& e) {
        c.registra("", POPSRV, READ, c.hora_, {e.id().texto ? Texto(e.id()) : "(null)"});
    }

    static constexpr Tabela_de_acoes tabela() {
        // What an agent's other events do.
        constexpr Acao outros[num_agents] = {
            desconhecido, copia<MAILQ, 35>, copia<MAILSMTP, 37>, copia<POPSRV, 35>, nada, nada,
        };
        constexpr Regra regras[] = {
            {MAILQ, SUBMIT, submit},
            {MAILQ, DELIVER, so_id<&C::deliver>},
            {MAILQ, OK, com_endereco<&C::mailq_ok>},
            {MAILQ, END, so_id<&C::mailq_end>},
            {MAILQ, SPAM, spam_da_fila},
            {MAILSMTP, OK, com_endereco<&C::smtp_ok>},
            {MAILSMTP, END, so_id<&C::smtp_end>},
            {MAILSMTP, ERROR_CONNECT, erro<ERROR_CONNECT, 6>},
            {MAILSMTP, DELIVER, so_id<&C::deliver>},
            {MAILSMTP, ERROR_SENDER, erro<ERROR_SENDER, 8>},
            {MAILSMTP, ERROR_DEST, erro<ERROR_DEST, 5>},
            {MAILSMTP, ERROR_DOMAIN, dominio},
            {MAILSMTP, ERROR_SIZE, erro<ERROR_SIZE>},
            {MAILSMTP, ERROR_HELO, erro<ERROR_HELO, 5>},
            {MAILSMTP, ERROR_DATA, erro<ERROR_DATA>},
            {MAILSMTP, ERROR_FINAL, final},
            {POPSRV, READ, leitura},
            {ANTIVIRUS, VIRUS, so_id<&C::virus>},
            {SPAMCATCHER, COPY, so_id<&C::spam>},
            {SPAMCATCHER, TAGGED, so_id<&C::spam>},
            {SPAMCATCHER, QUARANTINE, so_id<&C::spam>},
            {SPAMCATCHER, DISCARD, so_id<&C::spam>},
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

void Corrida::antecipa(const LeitorLinhas::Trecho* linhas, std::size_t n) {
    static_assert(LeitorLinhas::folga >= Evento::folga);
    if (!lote_) lote_ = std::make_unique_for_overwrite<Evento[]>(LogMailFileParser::maior_lote);
    for (std::size_t i = 0; i < n; ++i) {
        Evento& e = lote_[i];
        e.separa(linhas[i].inicio, linhas[i].tamanho);
        if (e.id().texto) p_.Lista_msg.busca(e.id().hash);
        if (e.usuario()) p_.Lista_usu.busca(e.endereco().hash);
    }
    // Users only: most messages of these lines were used a moment ago, so that fetching them would
    // cost more than it saves.
    const Usuario* usuarios[LogMailFileParser::maior_lote];
    std::size_t num_usuarios = 0;
    for (std::size_t i = 0; i < n; ++i)
        if (lote_[i].usuario())
            if (const Usuario* u = p_.Lista_usu.provavel(lote_[i].endereco().hash))
                __builtin_prefetch(usuarios[num_usuarios++] = u);
    for (std::size_t i = 0; i < num_usuarios; ++i) usuarios[i]->busca(p_.last_period);
}

void Corrida::trata_linha() {
    const int i = lote_ ? p_.posicao_no_lote() : -1;
    if (i >= 0) {
        despacha(lote_[static_cast<std::size_t>(i)]);
    } else {
        Evento e;
        e.separa(p_.osBuf.lbuf, sizeof p_.osBuf.lbuf - Evento::folga);
        despacha(e);
    }
}

void Corrida::despacha(const Evento& e) {
    static constexpr Tabela_de_acoes tabela = Despacho::tabela();

    const time_t t = p_.hora_do_registro();
    if (t != hora_.t || hora_.hexa.empty()) hora_ = {t, compacta::escreve_hora(hexa_, t)};
    tabela[e.agente()][e.status()](*this, e);
}

// The raw line from a column on, with its own line end; a line feed when nothing stands there.
const char* Corrida::resto_da_linha(std::size_t coluna) const {
    return strnlen(p_.osBuf.lbuf, coluna + 1) > coluna ? p_.osBuf.lbuf + coluna : "\n";
}

// --- The public functions.

void LogMailFileParser::antecipa(const LeitorLinhas::Trecho* linhas, std::size_t n) {
    corrida().antecipa(linhas, n);
}

int LogMailFileParser::parser() {
    corrida().trata_linha();
    return 1;
}
