// Replaying compact files: which lines a report sees, and which of its handlers takes each.
#include <algorithm>
#include <array>
#include <memory>

#include "common/LogMailFileParser.h"
#include "common/auxiliar.h"
#include "common/compacta.h"
#include "misc/numero.h"

namespace {

constexpr std::size_t num_status_replay = SPAM + 1;
constexpr int horas_do_dia = 24;

}  // namespace

// One compact line, split: field 0 the time, 1 the agent, 2 the status, 3 the message id.
struct LogMailFileParser::Lido {
    long t;
    const Campos& campos;
    params* par;
    MsgsData* hora;  // the row of the current hour, in the hour report
};

struct LogMailFileParser::Replay {
    using P = LogMailFileParser;
    using Acao = void (*)(P&, const Lido&);
    using Coluna = std::array<Acao, num_status_replay>;

    static void nada(P&, const Lido&) {}

    // The trace.
    template <auto handler>
    static void trace(P& p, const Lido& e) {
        (p.*handler)(e.par->msg_id, e.t, e.par->m, e.campos.texto, e.campos.n);
    }
    template <auto handler>
    static void trace_destinatario(P& p, const Lido& e) {
        if (e.campos.n > 4)
            (p.*handler)(e.par->msg_id, e.campos[4], e.t, e.par->m, e.campos.texto, e.campos.n);
    }
    static void trace_end(P& p, const Lido& e) {
        if (e.campos.n > 3) trace<&P::msg_trace_handle_END>(p, e);
    }
    template <ErrorType tipo>
    static void trace_erro(P& p, const Lido& e) {
        p.msg_trace_handle_ERROR(e.par->msg_id, e.t, e.par->m, e.campos.texto, e.campos.n, tipo);
    }

    // One user's messages.
    static void user_submit(P& p, const Lido& e) { p.user_submit(*e.par, e.t, e.campos); }
    static void user_ok(P& p, const Lido& e) { p.user_ok(*e.par, e.t, e.campos); }
    static void user_end(P& p, const Lido& e) { p.user_end(e.campos); }
    static void user_virus(P& p, const Lido& e) { p.user_virus(e.par->msgs, e.campos); }
    template <ErrorType tipo>
    static void user_erro(P& p, const Lido& e) {
        p.user_erro(e.par->msgs, e.campos, tipo);
    }

    // The hours of the day.
    template <auto handler>
    static void hora(P& p, const Lido& e) {
        (p.*handler)(e.hora, e.campos);
    }
    static void hora_deliver(P& p, const Lido& e) {
        if (e.campos.n > 3) p.msgs_per_hour_handle_DELIVER(e.t, e.hora, e.campos[3]);
    }

    struct Regra {
        Status status;
        Acao trace, user, hora;
    };

    static constexpr std::array<Coluna, 3> tabela() {
        constexpr Acao erro_na_hora = hora<&P::hora_erro>;
        constexpr Regra regras[] = {
            {SUBMIT, trace<&P::msg_trace_handle_SUBMIT>, user_submit, hora<&P::hora_submit>},
            // An acceptance does not count in its hour, the END does.
            {OK, trace_destinatario<&P::msg_trace_handle_OK>, user_ok, nada},
            {END, trace_end, user_end, hora<&P::hora_end>},
            {ERROR_CONNECT, trace_erro<etCONNECT>, user_erro<etCONNECT>, erro_na_hora},
            {ERROR_CONNECTION, nada, nada, erro_na_hora},
            {DELIVER, nada, nada, hora_deliver},
            {ERROR_SENDER, trace_erro<etSENDER>, user_erro<etSENDER>, erro_na_hora},
            {ERROR_DEST, trace_destinatario<&P::msg_trace_handle_ERROR_DEST>, user_erro<etDEST>,
             erro_na_hora},
            {ERROR_FINAL, trace<&P::msg_trace_handle_ERROR_FINAL>, user_erro<etFINAL>,
             erro_na_hora},
            {ERROR_DATA, trace_erro<etDATA>, user_erro<etDATA>, erro_na_hora},
            {ERROR_HELO, nada, user_erro<etHELO>, erro_na_hora},
            // A refusal for size was never an error of the hour.
            {ERROR_SIZE, trace_erro<etSIZE>, user_erro<etSIZE>, nada},
            {ERROR_DOMAIN, nada, nada, erro_na_hora},
            {VIRUS, trace<&P::msg_trace_handle_VIRUS>, user_virus, hora<&P::hora_virus>},
            {RETRY_DEST, nada, user_erro<etRETRY_DEST>, nada},
            {SPAM, nada, nada, hora<&P::hora_spam>},
        };
        std::array<Coluna, 3> t{};
        for (Coluna& c : t) c.fill(nada);
        bool tomado[num_status_replay] = {};
        for (const Regra& r : regras) {
            if (tomado[r.status]) throw "a second rule for the same status";  // fails the build
            tomado[r.status] = true;
            t[0][r.status] = r.trace;
            t[1][r.status] = r.user;
            t[2][r.status] = r.hora;
        }
        return t;
    }

    // Null for a report that is not answered from compact files.
    static const Coluna* coluna(ReportType type) {
        static constexpr std::array<Coluna, 3> t = tabela();
        return type == MSGTRACE        ? &t[0]
               : type == USERMSGS      ? &t[1]
               : type == MSGS_PER_HOUR ? &t[2]
                                       : nullptr;
    }
};

// The rows of the hour report and the hour that the replay is in.
class LogMailFileParser::Horas {
  public:
    // Appends 24 rows to `m_hour`; null for the other reports, which have no hours.
    Horas(DList<MsgsData>* m_hour, Relogio& relogio) : relogio_(relogio) {
        if (!m_hour) return;
        for (MsgsData*& h : horas_) m_hour->putLast(h = new MsgsData{});
    }

    void comeca_arquivo() { agora_ = 0; }
    void comeca_em(time_t t) {
        if (horas_[0]) agora_ = std::max(relogio_.hora_do_dia(t), 0);
    }

    // Whether all of a stretch of time is surely of the hour that the replay is in.
    bool mesma(time_t de, time_t ate) const {
        return !horas_[0] || (relogio_.mesmo_quarto(de, ate) && relogio_.hora_do_dia(de) == agora_);
    }
    MsgsData* agora() const { return horas_[agora_]; }

    // The row of the hour at `t`; null when the local time cannot be had. When the hour changes,
    // the row that is left takes this time as its own.
    MsgsData* de(time_t t) {
        const int h = relogio_.hora_do_dia(t);
        if (h < 0) return nullptr;
        if (h != agora_) horas_[agora_]->timestamp = t;
        agora_ = h;
        return horas_[h];
    }

  private:
    Relogio& relogio_;
    MsgsData* horas_[horas_do_dia] = {};
    int agora_ = 0;
};

// One run over the compact files of a range: what it reads with, and how far it is.
class LogMailFileParser::Passada {
  public:
    // cppcheck-suppress uninitMemberVar ; kilobytes that are written before they are read
    Passada(LogMailFileParser& p, long start, long end, ReportType type, params* par)
        : p_(p),
          par_(par),
          start_(start),
          end_(end),
          peneira_(type == MSGTRACE && par->msg_id),
          por_hora_(type == MSGS_PER_HOUR),
          coluna_(Replay::coluna(type)),
          horas_(por_hora_ ? par->m_hour : nullptr, p.relogio_),
          crivo_(peneira_ ? par->msg_id : "", end) {
        for (int s = 0; s < LeitorDeCabecas::num_status; ++s)
            serve_[s] = acao({1, s, 0}) != nullptr;
    }

    void arquivo(int fd) {
        leitor_.abre(fd);
        horas_.comeca_arquivo();
        for (bool segue = true; segue;) {
            if (leitor_.vazio()) {
                if (iniciado_ && peneira_) passa_por_cima();
                if (!leitor_.le_lote(iniciado_ && peneira_, serve_)) return;
                if (!peneira_ && iniciado_ && tranquilo()) {
                    antecipa();
                    for (std::size_t i = 0; i < leitor_.servem(); ++i) trata(partes_[i]);
                    leitor_.toma_todas();
                    continue;
                }
            }
            segue = linha(leitor_.toma());
        }
    }

  private:
    bool linha(const LeitorCompacto::Linha& l);
    bool estranha(char* texto);
    bool termina_arquivo() { return iniciado_ = false; }
    void trata(LeitorCompacto::Partes& p);
    void passa_por_cima();
    void antecipa();
    bool tranquilo() const;

    // The handler for a status; null when the report ignores it.
    Replay::Acao acao(int status) const {
        if (!coluna_ || status < 0 || status > SPAM) return nullptr;
        const Replay::Acao a = (*coluna_)[static_cast<std::size_t>(status)];
        return a == Replay::nada ? nullptr : a;
    }

    // The same for a usual line. An attempt changes no hour: its handler only refuses lines without
    // a time or an id.
    Replay::Acao acao(const Cabeca& c) const {
        const Replay::Acao a = acao(c.status);
        return a == Replay::hora_deliver && c.t != 0 ? nullptr : a;
    }

    LogMailFileParser& p_;
    params* par_;
    long start_, end_;
    bool peneira_;  // a trace with an id: lines may be passed over
    bool por_hora_;
    bool iniciado_ = false;  // a line not earlier than the start was met
    const Replay::Coluna* coluna_;
    Horas horas_;
    Crivo crivo_;
    LeitorCompacto leitor_;
    bool serve_[LeitorDeCabecas::num_status] = {};  // the statuses that the report looks at
    LeitorCompacto::Partes partes_[LeitorCompacto::maior_lote];  // of lines with a handler
    char* campos_[LeitorCompacto::maior_linha + 1];
};

// Hands a line to its handler. False when it lies behind the end, which closes the file.
bool LogMailFileParser::Passada::linha(const LeitorCompacto::Linha& l) {
    char* texto = l.usual ? nullptr : leitor_.copia(l);
    if (!iniciado_) {
        const long t = l.usual ? l.cabeca.t : strhex_to_time(texto);
        if (t < start_) return true;
        iniciado_ = true;
        horas_.comeca_em(t);
    }
    if (!l.usual) return estranha(texto);
    const long t = l.cabeca.t;
    if (t > end_) return termina_arquivo();
    MsgsData* hora = nullptr;
    if (por_hora_ && !(hora = horas_.de(t))) return true;
    const Replay::Acao a = acao(l.cabeca);
    if (!a) return true;
    LeitorCompacto::Partes p;
    LeitorCompacto::separa(l, p);
    const int n = leitor_.campos(p, campos_);
    a(p_, {t, {campos_, n, p.id}, par_, hora});
    return true;
}

// The same for a line of another kind, which is taken apart first.
bool LogMailFileParser::Passada::estranha(char* texto) {
    const int n = reparte(texto, ' ', campos_);
    const long t = n > 0 ? strhex_to_time(campos_[0]) : 0;
    if (t > end_) return termina_arquivo();
    MsgsData* hora = nullptr;
    if (por_hora_ && !(hora = horas_.de(t))) return true;
    if (const Replay::Acao a = acao(n > 2 ? decimal32(campos_[2]) : 0))
        a(p_, {t, {campos_, n, id_de(campos_, n)}, par_, hora});
    return true;
}

// The same for a usual line that is known to be in range and of this hour.
void LogMailFileParser::Passada::trata(LeitorCompacto::Partes& p) {
    const Cabeca& c = p.linha->cabeca;
    const int n = leitor_.campos(p, campos_);
    (*coluna_)[static_cast<std::size_t>(c.status)](p_,
                                                   {c.t, {campos_, n, p.id}, par_, horas_.agora()});
}

// Whether all the lines read are usual, not later than the end and of the hour that the replay is
// in: then those that no handler takes need not be looked at one by one.
bool LogMailFileParser::Passada::tranquilo() const {
    // An attempt without a time is refused and traced, so it must be looked at.
    return leitor_.usuais() && leitor_.primeira() != 0 && leitor_.ultima() <= end_ &&
           horas_.mesma(leitor_.primeira(), leitor_.ultima());
}

// Lets the sieve drop what cannot matter to the traced message as it stands now. An acceptance
// settles the connection error whose text it names; the first END turns what is pending into an
// error.
void LogMailFileParser::Passada::passa_por_cima() {
    const Msg& m = *par_->m;
    const bool erros = m.error_list.first() != nullptr;
    bool recusado = false;
    for (const RCPTO* r = m.recipients.first(); r && !recusado; r = r->next) recusado = r->error;
    crivo_.define(!m.error && !m.fatal_error && (erros || recusado));
    for (const ErrorInfo* e = m.error_list.first(); e; e = e->next)
        if (e->error_type == etCONNECT && e->error) crivo_.espera(e->error);
    leitor_.passa(crivo_);
}

// Takes apart the lines read that matter, and fetches the places where their messages will be
// looked up, all of them at once.
void LogMailFileParser::Passada::antecipa() {
    const std::size_t n = leitor_.servem();
    for (std::size_t i = 0; i < n; ++i) {
        LeitorCompacto::separa(leitor_.que_serve(i), partes_[i]);
        p_.trabalhos_.antecipa(partes_[i].id.hash);
    }
}

int LogMailFileParser::parse_compact_files(InputFiles* files, long start, long end, ReportType type,
                                           params* p) {
    if (!files || !p) {
        traco("LogMailFileParser::parse_compact_file : Params. incorretos.\r\n");
        return 0;
    }
    replay({files, start, end}, start, end, type, p);
    return 1;
}

void LogMailFileParser::replay(diario::Dias dias, long start, long end, ReportType type,
                               params* par) {
    struct Fim {
        Relogio& relogio;
        ~Fim() { relogio.termina(); }
    } fim{relogio_};
    relogio_.comeca();
    const auto passada = std::make_unique<Passada>(*this, start, end, type, par);
    while (dias.proximo())
        if (const Stream f = dias.abre())
            passada->arquivo(fileno(f.get()));
        else
            traco("LogMailFileParser::parse_compact_file : Erro ao abrir %s\r\n", dias.path());
}
