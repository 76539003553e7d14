// The 17 event handlers, over a few shared steps.
#include <algorithm>
#include <cstring>

#include "common/LogMailFileParser.h"
#include "misc/numero.h"

// What an error event does beyond its compact line.
struct LogMailFileParser::RegraErro {
    const char* metodo;
    Status status;
    bool conta;         // counts an error of the sender
    bool marca_hora;    // moves the message's last_time
    bool fatal;         // the delivery failed for good
    bool tentativa;     // counts as an attempt when none was seen
    ErrorType tipo;     // pending error to record; etFINAL records none
    const char* texto;  // its text; null: the event's own
    bool fim = true;    // its compact line needs a line end
};

// Refuses the event when a text is null; else writes its compact line: time, agent, status, the
// other texts, a line end unless one of them brings it. `campos` begins with the time. False when
// refused.
template <std::size_t n>
bool LogMailFileParser::registra(const char* metodo, Agent agente, Status status,
                                 const char* const (&campos)[n], bool fim) {
    std::size_t tamanhos[n];
    std::size_t maior = 2 * Linha::maior_numero + n + 2;
    for (std::size_t i = 0; i < n; ++i) {
        if (!campos[i]) {
            traco("%s : Params. inv\xE1lidos.\r\n", metodo);
            return false;
        }
        maior += tamanhos[i] = tamanho_de(campos[i]);
    }
    escrita_.para(compact_logfile);
    Linha linha(escrita_, maior);
    linha.texto(campos[0], tamanhos[0]).letra(' ').numero(agente).letra(' ').numero(status);
    for (std::size_t i = 1; i < n; ++i) linha.letra(' ').texto(campos[i], tamanhos[i]);
    if (fim) linha.letra('\n');
    linha.termina();
    return true;
}
template bool LogMailFileParser::registra(const char*, Agent, Status, const char* const (&)[2],
                                          bool);

Msg* LogMailFileParser::msg_ou_nova(const char* id, time_t inicio) {
    const Chave c = chave_de(id);
    Msg* m = Lista_msg.procurar(c);
    if (!m) {
        auto nova = std::make_unique<Msg>(id, inicio);
        // A long id is kept cut, so its key is another one.
        c.tamanho < sizeof m->id ? Lista_msg.putFirst(nova.get(), c.hash)
                                 : Lista_msg.putFirst(nova.get());
        m = nova.release();
    }
    return m;
}

Usuario* LogMailFileParser::usuario_ou_novo(const char* nome, unsigned periodos) {
    const Chave c = chave_de(nome);
    Usuario* u = Lista_usu.procurar(c);
    if (!u) {
        auto novo = std::make_unique<Usuario>(nome, periodos);
        Lista_usu.putFirst(novo.get(), c.hash);
        u = novo.release();
    }
    return u;
}

// A sender's text, shared with the earlier messages of the same sender while he is remembered: the
// last one of each place does.
TextoPartilhado LogMailFileParser::texto_de(const char* remetente) {
    if (!remetentes_) remetentes_ = std::make_unique<TextoPartilhado[]>(max_remetentes);
    const Chave c = chave_de(remetente);
    TextoPartilhado& t = remetentes_[c.hash % max_remetentes];
    if (!t.igual(c.texto, c.tamanho)) t = TextoPartilhado(c.texto, c.tamanho);
    return t;
}

// Counts the message for its local sender in the period of `t`, and one more in another counter of
// his. A time that could not be read counts nowhere.
void LogMailFileParser::conta_enviada(Msg* m, time_t t, int (Usuario::*tambem)(unsigned, int)) {
    if (t == 0 || !m->int_user || !m->sender) return;
    const unsigned p = getPeriodByTime(t);
    m->sender->incSent(p, 1);
    m->sender->addSentBytes(p, static_cast<int>(m->size));
    if (tambem) (m->sender->*tambem)(p, 1);
}

void LogMailFileParser::conta_recebida(const char* destinatario, const Msg* m) {
    Usuario* u = usuario_ou_novo(destinatario, sfile_num_periods);
    const time_t t = hora_da_linha();
    if (t == 0) return;
    const unsigned p = getPeriodByTime(t);
    u->incRecv(p, 1);
    u->addRecvBytes(p, static_cast<int>(m->size));
}

// The message is over: a local sender is counted and no longer waited for.
void LogMailFileParser::encerra(Msg* m, int (Usuario::*tambem)(unsigned, int)) {
    m->end_time = hora_da_linha();
    conta_enviada(m, m->end_time, tambem);
    if (m->int_user && m->sender) --m->sender->msgs_reference;
}

int LogMailFileParser::handle_MAILQ_SUBMIT(const char* T, const char* id, const char* tipo,
                                           const char* remetente, const char* tamanho) {
    if (!registra("LogMailFileParser::handle_MAILQ:SUBMIT", MAILQ, SUBMIT,
                  {T, id, tipo, remetente, tamanho}))
        return 0;
    const bool interno = getUserType(tipo) == INTERNO;
    Usuario* u = nullptr;
    if (interno) {
        u = usuario_ou_novo(remetente, std::max(24u, sfile_num_periods));
        ++u->msgs_reference;
    }
    Msg* m = msg_ou_nova(id, hora_da_linha());
    m->size = static_cast<std::uint32_t>(decimal32(tamanho));
    m->sender = u;
    m->define_remetente(u ? u->nome() : texto_de(remetente));
    if (interno) m->int_user = true;
    return 1;
}

int LogMailFileParser::handle_MAILQ_OK(const char* T, const char* id, const char* destinatario) {
    if (!registra("LogMailFileParser::handle_MAILQ:OK", MAILQ, OK, {T, id, destinatario})) return 0;
    Msg* m = msg_ou_nova(id);
    if (m->tries == 0) m->tries = 1;
    conta_recebida(destinatario, m);
    m->sent = true;
    return 1;
}

int LogMailFileParser::handle_MAILQ_END(const char* T, const char* id) {
    if (!registra("LogMailFileParser::handle_MAILQ:END", MAILQ, END, {T, id})) return 0;
    encerra(msg_ou_nova(id));
    return 1;
}

int LogMailFileParser::handle_MAILSMTP_DELIVER(const char* T, const char* id) {
    if (!registra("LogMailFileParser::handle_MAILSMTP:DELIVER", MAILSMTP, DELIVER, {T, id}))
        return 0;
    Msg* m = msg_ou_nova(id);
    m->last_time = hora_da_linha();
    ++m->tries;
    return 1;
}

int LogMailFileParser::handle_MAILSMTP_OK(const char* T, const char* id, const char* destinatario) {
    if (!registra("LogMailFileParser::handle_MAILSMTP:OK", MAILSMTP, OK, {T, id, destinatario}))
        return 0;
    Msg* m = Lista_msg.procurar(chave_de(id));
    if (m) {
        if (const char* arroba = std::strchr(destinatario, '@')) remover_error(m, arroba + 1);
        remover_error(m, nullptr);
    } else {
        m = msg_ou_nova(id);
    }
    conta_recebida(destinatario, m);
    m->sent = true;
    if (m->tries == 0) m->tries = 1;
    return 1;
}

int LogMailFileParser::handle_MAILSMTP_END(const char* T, const char* id) {
    if (!registra("LogMailFileParser::handle_MAILSMTP:END", MAILSMTP, END, {T, id})) return 0;
    Msg* m = Lista_msg.procurar(chave_de(id));
    if (m)
        m->error = m->error_list.first() != nullptr;
    else
        m = msg_ou_nova(id);
    encerra(m);
    return 1;
}

int LogMailFileParser::handle_SPAM(const char* T, const char* id) {
    // Agent 2 for every spam and virus event, whoever found it: the replay counts on it.
    if (!registra("LogMailFileParser::handle_SPAM", MAILSMTP, SPAM, {T, id})) return 0;
    Msg* m = msg_ou_nova(id);
    m->spam = true;
    conta_enviada(m, hora_da_linha(), &Usuario::incSpam);
    return 1;
}

int LogMailFileParser::handle_ANTIVIRUS_VIRUS(const char* T, const char* id) {
    if (!registra("LogMailFileParser::handle_ANTIVIRUS_VIRUS", MAILSMTP, VIRUS, {T, id})) return 0;
    Msg* m = Lista_msg.procurar(chave_de(id));
    if (!m) return 1;  // like an error, a virus does not make a message known
    m->virus = true;
    encerra(m, &Usuario::incVirus);
    return 1;
}

// An error of a message that is not known leaves no trace but its compact line. `campos`: the time,
// the id and, where the event has one, its text.
template <std::size_t n>
int LogMailFileParser::evento_erro(const RegraErro& regra, const char* const (&campos)[n]) {
    if (!registra(regra.metodo, MAILSMTP, regra.status, campos, regra.fim)) return 0;
    Msg* m = Lista_msg.procurar(chave_de(campos[1]));
    if (!m) return 1;
    const time_t t = hora_da_linha();
    if (regra.conta && m->sender && t != 0) m->sender->incErro(getPeriodByTime(t), 1);
    if (regra.marca_hora) m->last_time = t;
    if (regra.fatal) m->fatal_error = true;
    if (regra.tentativa && m->tries == 0) m->tries = 1;
    if (regra.tipo != etFINAL) {
        m->add_error(regra.tipo, regra.texto ? regra.texto : campos[n - 1]);
        m->error = true;
    }
    return 1;
}

int LogMailFileParser::handle_MAILSMTP_ERROR_CONNECT(const char* T, const char* id,
                                                     const char* texto) {
    static constexpr RegraErro regra{"LogMailFileParser::handle_MAILSMTP:CONNECT",
                                     ERROR_CONNECT,
                                     true,
                                     true,
                                     false,
                                     false,
                                     etCONNECT,
                                     nullptr};
    return evento_erro(regra, {T, id, texto});
}

int LogMailFileParser::handle_MAILSMTP_ERROR_SENDER(const char* T, const char* id,
                                                    const char* texto) {
    static constexpr RegraErro regra{"LogMailFileParser::handle_MAILSMTP:ERROR_SENDER",
                                     ERROR_SENDER,
                                     true,
                                     true,
                                     false,
                                     false,
                                     etSENDER,
                                     nullptr};
    return evento_erro(regra, {T, id, texto});
}

int LogMailFileParser::handle_MAILSMTP_ERROR_DEST(const char* T, const char* id,
                                                  const char* texto) {
    static constexpr RegraErro regra{"LogMailFileParser::handle_MAILSMTP:ERROR_DEST",
                                     ERROR_DEST,
                                     true,
                                     false,
                                     false,
                                     false,
                                     etDEST,
                                     "dest"};
    return evento_erro(regra, {T, id, texto});
}

int LogMailFileParser::handle_MAILSMTP_ERROR_FINAL(const char* T, const char* id,
                                                   const char* texto) {
    // The text is the rest of the log line and brings its own line end.
    static constexpr RegraErro regra{"LogMailFileParser::handle_MAILSMTP:ERROR_FINAL",
                                     ERROR_FINAL,
                                     true,
                                     false,
                                     true,
                                     true,
                                     etFINAL,
                                     nullptr,
                                     false};
    return evento_erro(regra, {T, id, texto});
}

int LogMailFileParser::handle_MAILSMTP_ERROR_DATA(const char* T, const char* id) {
    static constexpr RegraErro regra{"LogMailFileParser::handle_MAILSMTP:ERROR_DATA",
                                     ERROR_DATA,
                                     true,
                                     false,
                                     false,
                                     false,
                                     etDATA,
                                     ""};
    return evento_erro(regra, {T, id});
}

int LogMailFileParser::handle_MAILSMTP_ERROR_HELO(const char* T, const char* id,
                                                  const char* texto) {
    static constexpr RegraErro regra{"LogMailFileParser::handle_MAILSMTP:ERROR_HELO",
                                     ERROR_HELO,
                                     true,
                                     false,
                                     false,
                                     false,
                                     etHELO,
                                     nullptr};
    return evento_erro(regra, {T, id, texto});
}

int LogMailFileParser::handle_MAILSMTP_ERROR_SIZE(const char* T, const char* id) {
    static constexpr RegraErro regra{"LogMailFileParser::handle_MAILSMTP:ERROR_SIZE",
                                     ERROR_SIZE,
                                     true,
                                     false,
                                     true,
                                     false,
                                     etFINAL,
                                     nullptr};
    return evento_erro(regra, {T, id});
}

int LogMailFileParser::handle_MAILSMTP_ERROR_DOMAIN(const char* T, const char* id,
                                                    const char* texto) {
    static constexpr RegraErro regra{"LogMailFileParser::handle_MAILSMTP:ERROR_DOMAIN",
                                     ERROR_DOMAIN,
                                     false,
                                     false,
                                     false,
                                     false,
                                     etDOMAIN,
                                     nullptr};
    return evento_erro(regra, {T, id, texto});
}

int LogMailFileParser::handle_MAILSMTP_RETRY_DEST(const char* T, const char* id,
                                                  const char* texto) {
    static constexpr RegraErro regra{"LogMailFileParser::handle_MAILSMTP_RETRY_DEST",
                                     RETRY_DEST,
                                     false,
                                     false,
                                     false,
                                     false,
                                     etRETRY_DEST,
                                     nullptr};
    return evento_erro(regra, {T, id, texto});
}

void LogMailFileParser::remover_error(Msg* m, const char* texto) {
    if (!m || !m->error_list.first()) return;
    for (ErrorType tipo : {etSENDER, etHELO, etCONNECT, etDOMAIN}) m->remove_error(tipo, texto);
    m->remove_error(etDATA, "");
}
