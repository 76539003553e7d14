// The events of the log: what each writes into the compact file, counts and remembers.
#include <algorithm>

#include "common/LogMailFileParser_corrida.h"
#include "misc/numero.h"

// What an error event does beyond its compact line.
struct Corrida::RegraErro {
    enum Faz : unsigned {
        conta = 1,       // counts an error of the sender
        marca_hora = 2,  // moves the message's last_time
        fatal = 4,       // the delivery failed for good
        tentativa = 8,   // counts as an attempt when none was seen
        sem_texto = 16,  // the event has no text
        sem_fim = 32,    // its text is the rest of the log line and brings the line end
    };
    const char* metodo;            // named by a refusal
    const char* guarda = nullptr;  // the text kept with the pending error; null: the event's own
    Status status;
    ErrorType pendente = etFINAL;  // the pending error that it records; etFINAL: none
    unsigned faz = 0;
};

// Refuses the event when a text is missing; else writes its compact line. False when refused.
bool Corrida::registra(const char* metodo, Agent agente, Status status, Hora h,
                       std::initializer_list<Texto> campos, bool fim) {
    bool falta = !h.hexa.data();
    for (const Texto t : campos) falta |= !t.data();
    if (falta) {
        p_.traco("%s : Params. inv\xE1lidos.\r\n", metodo);
        return false;
    }
    if (p_.compact_logfile)
        compacta::escreve(p_.compact_logfile, h.hexa, agente, status, campos, fim);
    return true;
}

Msg* Corrida::msg_ou_nova(const Chave& id, time_t inicio) {
    if (Msg* m = p_.Lista_msg.procurar(id)) return m;
    auto nova = std::make_unique<Msg>(id.texto, inicio);
    // A long id is kept cut, so its key is another one.
    id.tamanho < sizeof nova->id ? p_.Lista_msg.putFirst(nova.get(), id.hash)
                                 : p_.Lista_msg.putFirst(nova.get());
    return nova.release();
}

Usuario* Corrida::usuario_ou_novo(const Chave& nome, unsigned periodos) {
    if (Usuario* u = p_.Lista_usu.procurar(nome)) return u;
    auto novo = std::make_unique<Usuario>(nome.texto, periodos);
    p_.Lista_usu.putFirst(novo.get(), nome.hash);
    return novo.release();
}

// A sender's text, shared with the earlier messages of the same sender while he is remembered. Each
// place remembers its last sender.
TextoPartilhado Corrida::texto_de(const Chave& remetente) {
    if (!remetentes_) remetentes_ = std::make_unique<TextoPartilhado[]>(max_remetentes_);
    TextoPartilhado& t = remetentes_[remetente.hash % max_remetentes_];
    if (!t.igual(remetente.texto, remetente.tamanho))
        t = TextoPartilhado(remetente.texto, remetente.tamanho);
    return t;
}

// Counts the message for its local sender in the period of `t`, and one more in another counter of
// his. A time that could not be read counts nowhere.
void Corrida::conta_enviada(Msg* m, time_t t, int (Usuario::*tambem)(unsigned, int)) {
    if (t == 0 || !m->int_user || !m->sender) return;
    const unsigned p = p_.getPeriodByTime(t);
    m->sender->incSent(p, 1);
    m->sender->addSentBytes(p, static_cast<int>(m->size));
    if (tambem) (m->sender->*tambem)(p, 1);
}

void Corrida::conta_recebida(const Chave& destinatario, const Msg* m, time_t t) {
    Usuario* u = usuario_ou_novo(destinatario, p_.sfile_num_periods);
    if (t == 0) return;
    const unsigned p = p_.getPeriodByTime(t);
    u->incRecv(p, 1);
    u->addRecvBytes(p, static_cast<int>(m->size));
}

// The message is over: a local sender is counted and no longer waited for.
void Corrida::encerra(Msg* m, time_t t, int (Usuario::*tambem)(unsigned, int)) {
    m->end_time = t;
    conta_enviada(m, t, tambem);
    if (m->int_user && m->sender) --m->sender->msgs_reference;
}

int Corrida::mailq_submit(Hora h, const Chave& id, Texto tipo, const Chave& remetente,
                          Texto tamanho) {
    if (!registra("LogMailFileParser::handle_MAILQ:SUBMIT", MAILQ, SUBMIT, h,
                  {id, tipo, remetente, tamanho}))
        return 0;
    const bool interno = getUserType(tipo.data()) == INTERNO;
    Usuario* u = nullptr;
    if (interno) {
        u = usuario_ou_novo(remetente, std::max(24u, p_.sfile_num_periods));
        ++u->msgs_reference;
    }
    Msg* m = msg_ou_nova(id, h.t);
    m->size = static_cast<std::uint32_t>(decimal32(tamanho.data()));
    m->sender = u;
    m->define_remetente(u ? u->nome() : texto_de(remetente));
    if (interno) m->int_user = true;
    return 1;
}

int Corrida::mailq_ok(Hora h, const Chave& id, const Chave& destinatario) {
    if (!registra("LogMailFileParser::handle_MAILQ:OK", MAILQ, OK, h, {id, destinatario})) return 0;
    Msg* m = msg_ou_nova(id);
    if (m->tries == 0) m->tries = 1;
    conta_recebida(destinatario, m, h.t);
    m->sent = true;
    return 1;
}

int Corrida::mailq_end(Hora h, const Chave& id) {
    if (!registra("LogMailFileParser::handle_MAILQ:END", MAILQ, END, h, {id})) return 0;
    encerra(msg_ou_nova(id), h.t);
    return 1;
}

int Corrida::deliver(Hora h, const Chave& id) {
    if (!registra("LogMailFileParser::handle_MAILSMTP:DELIVER", MAILSMTP, DELIVER, h, {id}))
        return 0;
    Msg* m = msg_ou_nova(id);
    m->last_time = h.t;
    ++m->tries;
    return 1;
}

int Corrida::smtp_ok(Hora h, const Chave& id, const Chave& destinatario) {
    if (!registra("LogMailFileParser::handle_MAILSMTP:OK", MAILSMTP, OK, h, {id, destinatario}))
        return 0;
    Msg* m = p_.Lista_msg.procurar(id);
    if (m) {
        const std::size_t arroba = Texto(destinatario).find('@');
        if (arroba != Texto::npos) p_.remover_error(m, destinatario.texto + arroba + 1);
        p_.remover_error(m, nullptr);  // settles one more DATA error, and nothing else
    } else {
        m = msg_ou_nova(id);
    }
    conta_recebida(destinatario, m, h.t);
    m->sent = true;
    if (m->tries == 0) m->tries = 1;
    return 1;
}

int Corrida::smtp_end(Hora h, const Chave& id) {
    if (!registra("LogMailFileParser::handle_MAILSMTP:END", MAILSMTP, END, h, {id})) return 0;
    Msg* m = p_.Lista_msg.procurar(id);
    if (m)
        m->error = m->error_list.first() != nullptr;
    else
        m = msg_ou_nova(id);
    encerra(m, h.t);
    return 1;
}

int Corrida::spam(Hora h, const Chave& id) {
    // Agent 2 for every spam and virus event, whoever found it: the replay counts on it.
    if (!registra("LogMailFileParser::handle_SPAM", MAILSMTP, SPAM, h, {id})) return 0;
    Msg* m = msg_ou_nova(id);
    m->spam = true;
    conta_enviada(m, h.t, &Usuario::incSpam);
    return 1;
}

int Corrida::virus(Hora h, const Chave& id) {
    if (!registra("LogMailFileParser::handle_ANTIVIRUS_VIRUS", MAILSMTP, VIRUS, h, {id})) return 0;
    Msg* m = p_.Lista_msg.procurar(id);
    if (!m) return 1;  // like an error, a virus does not make a message known
    m->virus = true;
    encerra(m, h.t, &Usuario::incVirus);
    return 1;
}

// An error of an unknown message leaves nothing but its compact line.
int Corrida::erro(Status status, Hora h, const Chave& id, Texto texto) {
    using R = RegraErro;
    static constexpr R regras[] = {
        {.metodo = "LogMailFileParser::handle_MAILSMTP:CONNECT",
         .status = ERROR_CONNECT,
         .pendente = etCONNECT,
         .faz = R::conta | R::marca_hora},
        {.metodo = "LogMailFileParser::handle_MAILSMTP:ERROR_SENDER",
         .status = ERROR_SENDER,
         .pendente = etSENDER,
         .faz = R::conta | R::marca_hora},
        {.metodo = "LogMailFileParser::handle_MAILSMTP:ERROR_DEST",
         .guarda = "dest",
         .status = ERROR_DEST,
         .pendente = etDEST,
         .faz = R::conta},
        {.metodo = "LogMailFileParser::handle_MAILSMTP:ERROR_FINAL",
         .status = ERROR_FINAL,
         .faz = R::conta | R::fatal | R::tentativa | R::sem_fim},
        {.metodo = "LogMailFileParser::handle_MAILSMTP:ERROR_DATA",
         .guarda = "",
         .status = ERROR_DATA,
         .pendente = etDATA,
         .faz = R::conta | R::sem_texto},
        {.metodo = "LogMailFileParser::handle_MAILSMTP:ERROR_HELO",
         .status = ERROR_HELO,
         .pendente = etHELO,
         .faz = R::conta},
        {.metodo = "LogMailFileParser::handle_MAILSMTP:ERROR_SIZE",
         .status = ERROR_SIZE,
         .faz = R::conta | R::fatal | R::sem_texto},
        {.metodo = "LogMailFileParser::handle_MAILSMTP:ERROR_DOMAIN",
         .status = ERROR_DOMAIN,
         .pendente = etDOMAIN},
        {.metodo = "LogMailFileParser::handle_MAILSMTP_RETRY_DEST",
         .status = RETRY_DEST,
         .pendente = etRETRY_DEST},
    };
    const RegraErro& regra =
        *std::find_if(std::begin(regras), std::end(regras) - 1,
                      [status](const RegraErro& r) { return r.status == status; });
    const auto faz = [&regra](R::Faz o_que) { return (regra.faz & o_que) != 0; };
    const bool escrito = faz(R::sem_texto) ? registra(regra.metodo, MAILSMTP, status, h, {id})
                                           : registra(regra.metodo, MAILSMTP, status, h,
                                                      {id, texto}, !faz(R::sem_fim));
    if (!escrito) return 0;
    Msg* m = p_.Lista_msg.procurar(id);
    if (!m) return 1;
    if (faz(R::conta) && m->sender && h.t != 0) m->sender->incErro(p_.getPeriodByTime(h.t), 1);
    if (faz(R::marca_hora)) m->last_time = h.t;
    if (faz(R::fatal)) m->fatal_error = true;
    if (faz(R::tentativa) && m->tries == 0) m->tries = 1;
    if (regra.pendente != etFINAL) {
        m->add_error(regra.pendente, regra.guarda ? regra.guarda : texto.data());
        m->error = true;
    }
    return 1;
}

void LogMailFileParser::remover_error(Msg* m, const char* texto) {
    if (!m || !m->error_list.first()) return;
    for (ErrorType tipo : {etSENDER, etHELO, etCONNECT, etDOMAIN}) m->remove_error(tipo, texto);
    m->remove_error(etDATA, "");
}
