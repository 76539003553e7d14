// The messages of given senders and recipients, from compact lines.
#include <algorithm>
#include <cstring>
#include <string_view>
#include <unordered_map>

#include "common/LogMailFileParser_relatos.h"
#include "misc/escopo.h"
#include "misc/numero.h"

namespace {

struct HashDeId {
    std::size_t operator()(std::string_view id) const { return hash_chave(id.data(), id.size()); }
};

// A filter list. It deletes its users also when an exception ends the report.
class Filtro {
  public:
    // Names separated by ','; null for no filter.
    explicit Filtro(const char* nomes) {
        if (!nomes) return;
        dado_ = true;
        const std::unique_ptr<char[]> copia(copia_texto(nomes));  // explode cuts in place
        const std::unique_ptr<char*[]> lista(explode(copia.get(), ',', nullptr));
        for (char** nome = lista.get(); nome && *nome; ++nome)
            lista_.putFirst(new Usuario(*nome, 24));
    }
    Filtro(const Filtro&) = delete;
    Filtro& operator=(const Filtro&) = delete;

    DList<Usuario>* lista() { return dado_ ? &lista_ : nullptr; }

  private:
    struct Dona : DList<Usuario> {
        ~Dona() { apaga_todos(*this); }
    };
    bool dado_ = false;
    Dona lista_;
};

bool cabe(std::uint32_t tamanho, unsigned min_kb, unsigned max_kb) {
    return (min_kb == 0 || tamanho >= std::uint64_t{min_kb} * 1024) &&
           (max_kb == 0 || tamanho <= std::uint64_t{max_kb} * 1024);
}

params pedido(DList<UserMsgs>* msgs) {
    params p{};
    p.msgs = msgs;
    return p;
}

params pedido(DList<Usuario>* remetentes, DList<Usuario>* destinatarios, unsigned min_kb,
              unsigned max_kb, const char* msg_id, DList<UserMsgs>* msgs) {
    params p = pedido(msgs);
    p.remetentes = remetentes;
    p.destinatarios = destinatarios;
    p.min_kb = min_kb;
    p.max_kb = max_kb;
    p.msg_id = const_cast<char*>(msg_id);
    return p;
}

void define_remetente(UserMsgs* linha, const char* nome) {
    char* novo = copia_texto(nome);
    delete[] linha->sendername;
    linha->sendername = novo;
}

void marca_erro(UserMsgs* linha, std::string_view texto) {
    linha->str_error = texto;
    linha->error = true;
}

}  // namespace

// The rows of a list by id; of equal ids, the one nearest the head.
struct Relatos::IndiceDeLinhas {
    const DList<UserMsgs>* lista;
    std::unordered_map<std::string_view, UserMsgs*, HashDeId> linhas;

    explicit IndiceDeLinhas(const DList<UserMsgs>* l) : lista(l) {
        for (UserMsgs* u = l->first(); u; u = u->next) linhas.emplace(u->msg_id, u);
    }

    UserMsgs* procura(std::string_view id) const {
        const auto achada = linhas.find(id);
        return achada == linhas.end() ? nullptr : achada->second;
    }

    void poe_na_frente(UserMsgs* u) { linhas[u->msg_id] = u; }
};

UserMsgs* Relatos::linha_de(DList<UserMsgs>* msgs, const Chave& id) {
    return indice_ && indice_->lista == msgs ? indice_->procura(id) : procurar_msg(msgs, id.texto);
}

// A new row at the front of the list.
UserMsgs* Relatos::nova_linha(DList<UserMsgs>* msgs, const Chave& id) {
    UserMsgs* u = new UserMsgs{};
    std::memcpy(u->msg_id, id.texto, std::min(id.tamanho, sizeof u->msg_id - 1));
    msgs->putFirst(u);
    if (indice_ && indice_->lista == msgs) indice_->poe_na_frente(u);
    return u;
}

void Relatos::mensagens(const char* destinatarios, const char* remetentes, const char* msg_id,
                        int min_kb, int max_kb, long start, long end, DList<UserMsgs>* msgs) {
    Filtro de(remetentes), para(destinatarios);
    params p = pedido(de.lista(), para.lista(), static_cast<std::uint32_t>(min_kb),
                      static_cast<std::uint32_t>(max_kb), msg_id, msgs);

    IndiceDeLinhas indice(msgs);
    const AoSair fim([this] { indice_ = nullptr; });
    indice_ = &indice;  // cppcheck-suppress danglingLifetime ; `fim` takes it back
    replay({p_.data_dir, diario::compacto, start, end}, start, end, USERMSGS, &p);
}

int Relatos::user_submit(const params& q, const Campos& c) {
    if (c.n <= 5)
        return recusa("LogMailFileParser::user_msgs_handle_SUBMIT : Params inv\xE1lidos.\r\n");
    Trabalho* m = trabalhos_.novo(c.id, c[5]);
    if (c.n > 6) m->size = static_cast<std::uint32_t>(decimal32(c[6]));
    m->int_user = getUserType(c[4]) == INTERNO;

    const bool e_o_pedido = q.msg_id && std::strcmp(q.msg_id, c[3]) == 0;
    if ((q.remetentes || q.destinatarios) && !e_o_pedido &&
        !(q.remetentes && remetido(q.remetentes, c[5])))
        return 1;
    if (!cabe(m->size, q.min_kb, q.max_kb) || (q.msg_id && !e_o_pedido)) return 1;
    UserMsgs* u = nova_linha(q.msgs, c.id);
    u->start_time = c.t;
    u->size = m->size;
    u->enviada = 'S';
    u->int_user = m->int_user;
    define_remetente(u, c[5]);
    return 1;
}

// The sender is in the list, by his address or, when its domain is local, by the part before it.
bool Relatos::remetido(DList<Usuario>* remetentes, const char* endereco) {
    if (procurar_usuario(remetentes, endereco, true)) return true;
    std::string local(endereco);
    return corta_dominio_local(local) && procurar_usuario(remetentes, local.c_str(), true);
}

int Relatos::user_ok(const params& q, const Campos& c) {
    if (c.n <= 4)
        return recusa("LogMailFileParser::user_msgs_handle_OK : Params inv\xE1lidos.\r\n");
    const bool e_o_pedido = q.msg_id && std::strcmp(q.msg_id, c[3]) == 0;
    if (!e_o_pedido && !(q.destinatarios && procurar_usuario(q.destinatarios, c[4], true)))
        return 1;
    Trabalho* m = trabalhos_.acha(c.id);
    if (m) {
        if (!cabe(m->size, q.min_kb, q.max_kb) || (q.msg_id && !e_o_pedido)) return 1;
    } else {
        m = trabalhos_.novo(c.id, nullptr);
    }
    UserMsgs* u = linha_de(q.msgs, c.id);
    if (!u) u = nova_linha(q.msgs, c.id);
    if (m->sendername()) define_remetente(u, m->sendername());
    u->start_time = c.t;
    u->last_time = u->end_time = 0;
    u->size = m->size;
    u->error = m->error;
    u->virus = m->virus;
    u->spam = m->spam;
    u->int_user = m->int_user;
    u->enviada = 'N';  // also when it was listed as sent
    return 1;
}

int Relatos::user_end(const params&, const Campos& c) {
    if (c.n <= 3)
        return recusa("LogMailFileParser::user_msgs_handle_END : Params inv\xE1lidos.\r\n");
    Trabalho* m = trabalhos_.acha(c.id);
    if (!m) return 1;
    // A message without a fatal error counts as one with an error from here on: a later hour report
    // of this object shows it.
    m->error = !m->fatal_error;
    return 1;
}

int Relatos::user_virus(const params& q, const Campos& c) {
    if (c.n <= 3)
        return recusa("LogMailFileParser::user_msgs_handle_VIRUS : Params inv\xE1lidos.\r\n");
    trabalhos_.acha_ou_novo(c.id)->virus = true;
    if (UserMsgs* u = linha_de(q.msgs, c.id)) u->virus = true;
    return 1;
}

// Nobody reads the pending errors and the refused recipients of a working record, so only what
// shows is kept: the flags, and the row's text.
int Relatos::user_erro(const params& q, const Campos& c, ErrorType tipo) {
    if (c.n <= 3)
        return recusa("LogMailFileParser::user_msgs_handle_ERROR : linha do log mal formada\r\n");
    Trabalho* m = trabalhos_.acha_ou_novo(c.id);
    if (tipo == etHELO && c.n < 5) m->error = true;
    if (tipo == etSENDER) m->fatal_error = true;
    UserMsgs* u = linha_de(q.msgs, c.id);
    if (!u) return 1;
    const bool detalhado = c.n > 4;
    switch (tipo) {
        case etCONNECT:
            if (detalhado) marca_erro(u, std::string("Erro conectando ") + c[4] + "\n");
            break;
        case etDATA:
            if (detalhado) marca_erro(u, "Erro na fase data!");
            break;
        case etDEST:
            if (detalhado) marca_erro(u, "Destinat\xE1rio inv\xE1lido.");
            break;
        case etFINAL:
            if (detalhado) u->error = true;
            break;
        case etSENDER:
            marca_erro(u, "Erro no sender!");
            break;
        case etRETRY_DEST:
            marca_erro(u, "Remetente temporiariamente indispon\xEDvel.");
            break;
        case etSIZE:
        case etDOMAIN:
            marca_erro(u, "A mensagem foi rejeitada por ser muito grande.");
            break;
        default:
            break;
    }
    return 1;
}

// --- The public functions.

int LogMailFileParser::get_user_msgs(const char* destinatarios, const char* remetentes,
                                     const char* msg_id, int min_kb, int max_kb, long start,
                                     long end, DList<UserMsgs>* msgs) {
    if (!msgs || start > end)
        return recusa("LogMailFileParser::get_user_msgs : Params inv\xE1lidos.\r\n");
    relatos_->mensagens(destinatarios, remetentes, msg_id, min_kb, max_kb, start, end, msgs);
    return 1;
}

int LogMailFileParser::user_msgs_handle_SUBMIT(DList<Usuario>* remetentes,
                                               DList<Usuario>* destinatarios, unsigned min_kb,
                                               unsigned max_kb, const char* msg_id, long t,
                                               DList<UserMsgs>* msgs, char** campos, int n) {
    return relatos_->user_submit(pedido(remetentes, destinatarios, min_kb, max_kb, msg_id, msgs),
                                 campos_de(campos, n, t));
}
int LogMailFileParser::user_msgs_handle_OK(DList<Usuario>* destinatarios, unsigned min_kb,
                                           unsigned max_kb, const char* msg_id, long t,
                                           DList<UserMsgs>* msgs, char** campos, int n) {
    return relatos_->user_ok(pedido(nullptr, destinatarios, min_kb, max_kb, msg_id, msgs),
                             campos_de(campos, n, t));
}
int LogMailFileParser::user_msgs_handle_END(long, DList<UserMsgs>* msgs, char** campos, int n) {
    return relatos_->user_end(pedido(msgs), campos_de(campos, n));
}
int LogMailFileParser::user_msgs_handle_VIRUS(long, DList<UserMsgs>* msgs, char** campos, int n) {
    return relatos_->user_virus(pedido(msgs), campos_de(campos, n));
}
int LogMailFileParser::user_msgs_handle_ERROR(long, DList<UserMsgs>* msgs, char** campos, int n,
                                              ErrorType tipo) {
    return relatos_->user_erro(pedido(msgs), campos_de(campos, n), tipo);
}
