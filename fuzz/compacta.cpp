// Compact files in the three reports that replay them: by the days of a range and by an array of
// files, against a naive replay that hands every line to the handlers, and repeated.
#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>

#include "common/LogMailFileParser.h"
#include "fuzz/apoio.h"
#include "fuzz/referencia.h"

namespace {

// 2009-03-15 00:00:00 UTC: the first of the days whose files there are.
constexpr long primeiro_dia = 1237075200;
constexpr unsigned num_dias = 3;

const Arvore& arvore() {
    static const Arvore a;
    return a;
}

std::string do_dia(unsigned dia) {
    return "DAT/rels_03-09/compact_mail_" + std::to_string(15 + dia) + ".txt";
}

struct Pedido {
    ReportType tipo;
    long inicio, fim;
    std::string id, remetentes, destinatarios;
    bool com_id, com_remetentes, com_destinatarios;
    int min_kb, max_kb;
};

// What a report gives, as text.
class Resposta {
  public:
    Msg m{"0", 0};
    DList<UserMsgs> mensagens;
    DList<MsgsData> horas;

    Resposta() = default;
    Resposta(const Resposta&) = delete;
    Resposta& operator=(const Resposta&) = delete;
    ~Resposta() {
        for (UserMsgs* u = mensagens.first(); u; u = u->next) delete[] u->sendername;
        apaga_todos(mensagens);
        apaga_todos(horas);
    }

    std::string texto() const {
        std::string t;
        campo(t, {m.id, m.sendername ? m.sendername : "-", m.str_error});
        numeros(t, {m.size, m.start_time, m.end_time, m.virus, m.error, m.fatal_error, m.int_user});
        for (const RCPTO* r = m.recipients.first(); r; r = r->next) {
            campo(t, {r->username, r->status_msg});
            numeros(t, {r->last_time, r->error});
        }
        for (const UserMsgs* u = mensagens.first(); u; u = u->next) {
            campo(t, {u->msg_id, u->sendername ? u->sendername : "-", u->str_error});
            numeros(t, {u->size, u->start_time, u->last_time, u->end_time, u->virus, u->spam,
                        u->int_user, u->error, u->enviada});
        }
        for (const MsgsData* h = horas.first(); h; h = h->next)
            numeros(t, {h->timestamp, h->msgs_int, h->msgs_ext, h->bytes_int, h->bytes_ext,
                        h->virus, h->spam, h->error, h->att_blocked});
        return t;
    }

  private:
    static void campo(std::string& t, std::initializer_list<const char*> textos) {
        for (const char* c : textos) t += std::string(c) + "|";
    }
    static void numeros(std::string& t, std::initializer_list<long> n) {
        for (long v : n) t += std::to_string(v) + " ";
        t += "\n";
    }
};

// The filters as the handlers take them.
class Filtro {
  public:
    Filtro(bool dado, const std::string& nomes) : dado_(dado) {
        for (const std::string& n : referencia::pedacos(nomes.c_str(), ','))
            lista_.putFirst(new Usuario(n.c_str(), 24));
    }
    ~Filtro() { apaga_todos(lista_); }
    Filtro(const Filtro&) = delete;
    Filtro& operator=(const Filtro&) = delete;
    DList<Usuario>* lista() { return dado_ ? &lista_ : nullptr; }

  private:
    bool dado_;
    DList<Usuario> lista_;
};

class Parser : public LogMailFileParser {
  public:
    Parser() { std::strcpy(data_dir, arvore().path("DAT").c_str()); }

    // The report as pages ask for it.
    std::string preguicoso(const Pedido& q) {
        Resposta r;
        if (q.tipo == MSGTRACE)
            msg_trace(q.id.c_str(), q.inicio, q.fim, &r.m);
        else if (q.tipo == USERMSGS)
            get_user_msgs(q.com_destinatarios ? q.destinatarios.c_str() : nullptr,
                          q.com_remetentes ? q.remetentes.c_str() : nullptr,
                          q.com_id ? q.id.c_str() : nullptr, q.min_kb, q.max_kb, q.inicio, q.fim,
                          &r.mensagens);
        else
            get_msgs_per_hour(q.inicio, q.fim, &r.horas);
        return r.texto();
    }

    // The same by an array of files.
    std::string por_arquivos(const Pedido& q) {
        const auto quantos = static_cast<std::size_t>((q.fim - q.inicio) / 86400 + 2);
        const std::unique_ptr<InputFiles[]> files(new InputFiles[quantos]());
        getFiles(files.get(), "compact_mail_", q.inicio, q.fim);
        Resposta r;
        Filtro de(q.com_remetentes, q.remetentes), para(q.com_destinatarios, q.destinatarios);
        params p = parametros(q, r, de, para);
        parse_compact_files(files.get(), q.inicio, q.fim, q.tipo, &p);
        for (std::size_t i = 0; i < quantos; ++i) delete[] files[i].file;
        return r.texto();
    }

    // The same by a reading of its own: every line split, every handler called by name.
    std::string devagar(const Pedido& q) {
        Resposta r;
        Filtro de(q.com_remetentes, q.remetentes), para(q.com_destinatarios, q.destinatarios);
        params p = parametros(q, r, de, para);
        MsgsData* horas[24] = {};
        if (q.tipo == MSGS_PER_HOUR)
            for (MsgsData*& h : horas) r.horas.putLast(h = new MsgsData{});
        bool iniciado = false;
        for (unsigned d = 0; d < num_dias; ++d) {
            // Only the days of the range's steps.
            bool pedido = false;
            for (long t = q.inicio; t <= q.fim && q.inicio < q.fim; t += 86400)
                pedido |= (t - primeiro_dia) / 86400 == static_cast<long>(d) && t >= primeiro_dia;
            if (pedido) arquivo(arvore().le(do_dia(d)), q, p, horas, iniciado);
        }
        return r.texto();
    }

  private:
    static params parametros(const Pedido& q, Resposta& r, Filtro& de, Filtro& para) {
        params p{};
        p.m = &r.m;
        p.msgs = &r.mensagens;
        p.m_hour = &r.horas;
        const bool id = q.tipo == MSGTRACE || q.com_id;
        p.msg_id = id ? const_cast<char*>(q.id.c_str()) : nullptr;
        p.remetentes = de.lista();
        p.destinatarios = para.lista();
        p.min_kb = static_cast<std::uint32_t>(q.min_kb);
        p.max_kb = static_cast<std::uint32_t>(q.max_kb);
        return p;
    }

    static int hora_local(long t) {
        const time_t quando = t;
        struct tm tm;
        return localtime_r(&quando, &tm) ? tm.tm_hour : -1;
    }

    void arquivo(const std::string& texto, const Pedido& q, params& p, MsgsData* (&horas)[24],
                 bool& iniciado) {
        int agora = 0;
        for (const std::string& l : referencia::linhas(texto, 2047)) {
            const auto tempo = [](const std::string& s) {
                return std::strtoll(s.c_str(), nullptr, 16);
            };
            if (!iniciado) {
                if (tempo(l) < q.inicio) continue;
                iniciado = true;
                agora = std::max(hora_local(tempo(l)), 0);
            }
            referencia::Palavras campos = referencia::pedacos(l.c_str(), ' ');
            const long t = campos.empty() ? 0 : tempo(campos[0]);
            if (t > q.fim) {
                iniciado = false;
                return;
            }
            MsgsData* hora = nullptr;
            if (q.tipo == MSGS_PER_HOUR) {
                const int h = hora_local(t);
                if (h < 0) continue;
                if (h != agora) horas[agora]->timestamp = t;
                hora = horas[agora = h];
            }
            entrega(q.tipo, t, campos, p, hora);
        }
    }

    void entrega(ReportType tipo, long t, referencia::Palavras& textos, params& p, MsgsData* hora) {
        std::vector<char*> c;
        for (std::string& s : textos) c.push_back(s.data());
        const int n = static_cast<int>(c.size());
        const int status = n > 2 ? referencia::decimal(textos[2]) : 0;
        if (tipo == MSGTRACE)
            no_trace(status, t, c.data(), n, p);
        else if (tipo == USERMSGS)
            no_usuario(status, t, c.data(), n, p);
        else
            na_hora(status, t, c.data(), n, p, hora);
    }

    void no_trace(int status, long t, char** c, int n, params& p) {
        const auto erro = [&](ErrorType e) { msg_trace_handle_ERROR(p.msg_id, t, p.m, c, n, e); };
        if (status == SUBMIT) msg_trace_handle_SUBMIT(p.msg_id, t, p.m, c, n);
        if (status == OK && n > 4) msg_trace_handle_OK(p.msg_id, c[4], t, p.m, c, n);
        if (status == ERROR_DEST && n > 4)
            msg_trace_handle_ERROR_DEST(p.msg_id, c[4], t, p.m, c, n);
        if (status == END) msg_trace_handle_END(p.msg_id, t, p.m, c, n);
        if (status == ERROR_FINAL) msg_trace_handle_ERROR_FINAL(p.msg_id, t, p.m, c, n);
        if (status == VIRUS) msg_trace_handle_VIRUS(p.msg_id, t, p.m, c, n);
        if (status == ERROR_CONNECT) erro(etCONNECT);
        if (status == ERROR_SENDER) erro(etSENDER);
        if (status == ERROR_DATA) erro(etDATA);
        if (status == ERROR_SIZE) erro(etSIZE);
    }

    void no_usuario(int status, long t, char** c, int n, params& p) {
        const auto erro = [&](ErrorType e) { user_msgs_handle_ERROR(t, p.msgs, c, n, e); };
        if (status == SUBMIT)
            user_msgs_handle_SUBMIT(p.remetentes, p.destinatarios, p.min_kb, p.max_kb, p.msg_id, t,
                                    p.msgs, c, n);
        if (status == OK)
            user_msgs_handle_OK(p.destinatarios, p.min_kb, p.max_kb, p.msg_id, t, p.msgs, c, n);
        if (status == END) user_msgs_handle_END(t, p.msgs, c, n);
        if (status == VIRUS) user_msgs_handle_VIRUS(t, p.msgs, c, n);
        if (status == ERROR_CONNECT) erro(etCONNECT);
        if (status == ERROR_SENDER) erro(etSENDER);
        if (status == ERROR_DEST) erro(etDEST);
        if (status == ERROR_FINAL) erro(etFINAL);
        if (status == ERROR_DATA) erro(etDATA);
        if (status == ERROR_HELO) erro(etHELO);
        if (status == ERROR_SIZE) erro(etSIZE);
        if (status == RETRY_DEST) erro(etRETRY_DEST);
    }

    void na_hora(int status, long t, char** c, int n, params& p, MsgsData* hora) {
        const bool erro = (status >= ERROR_CONNECT && status <= ERROR_DOMAIN) &&
                          status != DELIVER && status != ERROR_SIZE;
        if (status == SUBMIT) msgs_per_hour_handle_SUBMIT(t, hora, c, n);
        if (status == END) msgs_per_hour_handle_END(hora, p.user, c, n);
        if (erro) msgs_per_hour_handle_ERROR(t, hora, c, n);
        if (status == VIRUS) msgs_per_hour_handle_VIRUS(t, hora, c, n);
        if (status == SPAM) msgs_per_hour_handle_SPAM(t, hora, c, n);
    }
};

void confere(const Pedido& q) {
    Parser novo, por_arquivos, devagar;
    for (Parser* p : {&novo, &por_arquivos, &devagar}) {
        char dominios[] = "local.test;b";
        p->add_domain(dominios);
    }
    const std::string quer = novo.preguicoso(q);
    exige(por_arquivos.por_arquivos(q) == quer, "an array of files gives what the days give");
    exige(devagar.devagar(q) == quer, "a naive replay gives the same");
    if (q.tipo == MSGTRACE) exige(novo.preguicoso(q) == quer, "a trace repeated is the same");
    // What is remembered of messages that began before the range settles with the second report.
    novo.preguicoso(q);
    const std::string terceiro = novo.preguicoso(q);
    exige(novo.preguicoso(q) == terceiro, "from the third on, a repeated report is the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* dados, std::size_t n) {
    Entrada e(dados, n);
    define_zona(e.byte());
    const unsigned opcoes = e.byte();
    Pedido q{};
    q.inicio = primeiro_dia + static_cast<long>(e.byte()) * 800 - 3600;
    q.fim = q.inicio + static_cast<long>(e.byte()) * 1400;
    q.com_id = (opcoes & 1) != 0;
    q.com_remetentes = (opcoes & 2) != 0;
    q.com_destinatarios = (opcoes & 4) != 0;
    q.min_kb = (opcoes & 8) != 0 ? 1 : 0;
    q.max_kb = (opcoes & 16) != 0 ? 2 : 0;
    q.id = e.parte().c_str();
    q.remetentes = e.parte().c_str();
    q.destinatarios = e.parte().c_str();
    for (unsigned d = 0; d < num_dias; ++d) arvore().grava(do_dia(d), e.parte());
    for (const ReportType tipo : {MSGTRACE, USERMSGS, MSGS_PER_HOUR}) {
        q.tipo = tipo;
        confere(q);
    }
    return 0;
}
