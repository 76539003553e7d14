// Replaying compact files: which lines a report sees, and which of its handlers takes each.
#include <algorithm>
#include <array>
#include <cstring>

#include "common/LogMailFileParser.h"
#include "common/auxiliar.h"
#include "common/compacta.h"
#include "misc/numero.h"

namespace {

constexpr std::size_t maior_linha = 2047;
constexpr std::size_t num_status_replay = SPAM + 1;
constexpr int horas_do_dia = 24;

}  // namespace

// One compact line, split: field 0 the time, 1 the agent, 2 the status, 3 the message id.
struct LogMailFileParser::Lido {
    long t;
    char** campos;
    int n;
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
        (p.*handler)(e.par->msg_id, e.t, e.par->m, e.campos, e.n);
    }
    template <auto handler>
    static void trace_destinatario(P& p, const Lido& e) {
        if (e.n > 4) (p.*handler)(e.par->msg_id, e.campos[4], e.t, e.par->m, e.campos, e.n);
    }
    static void trace_end(P& p, const Lido& e) {
        if (e.n > 3) trace<&P::msg_trace_handle_END>(p, e);
    }
    template <ErrorType tipo>
    static void trace_erro(P& p, const Lido& e) {
        p.msg_trace_handle_ERROR(e.par->msg_id, e.t, e.par->m, e.campos, e.n, tipo);
    }

    // One user's messages.
    static void user_submit(P& p, const Lido& e) {
        const params& q = *e.par;
        p.user_msgs_handle_SUBMIT(q.remetentes, q.destinatarios, q.min_kb, q.max_kb, q.msg_id, e.t,
                                  q.msgs, e.campos, e.n);
    }
    static void user_ok(P& p, const Lido& e) {
        const params& q = *e.par;
        p.user_msgs_handle_OK(q.destinatarios, q.min_kb, q.max_kb, q.msg_id, e.t, q.msgs, e.campos,
                              e.n);
    }
    template <auto handler>
    static void user(P& p, const Lido& e) {
        (p.*handler)(e.t, e.par->msgs, e.campos, e.n);
    }
    template <ErrorType tipo>
    static void user_erro(P& p, const Lido& e) {
        p.user_msgs_handle_ERROR(e.t, e.par->msgs, e.campos, e.n, tipo);
    }

    // The hours of the day.
    template <auto handler>
    static void hora(P& p, const Lido& e) {
        (p.*handler)(e.t, e.hora, e.campos, e.n);
    }
    static void hora_deliver(P& p, const Lido& e) {
        if (e.n > 3) p.msgs_per_hour_handle_DELIVER(e.t, e.hora, e.campos[3]);
    }
    static void hora_end(P& p, const Lido& e) {
        p.msgs_per_hour_handle_END(e.hora, e.par->user, e.campos, e.n);
    }

    struct Regra {
        Status status;
        Acao trace, user, hora;
    };

    static constexpr std::array<Coluna, 3> tabela() {
        constexpr Acao erro_na_hora = hora<&P::msgs_per_hour_handle_ERROR>;
        constexpr Regra regras[] = {
            {SUBMIT, trace<&P::msg_trace_handle_SUBMIT>, user_submit,
             hora<&P::msgs_per_hour_handle_SUBMIT>},
            // An acceptance does not count in its hour, the END does.
            {OK, trace_destinatario<&P::msg_trace_handle_OK>, user_ok, nada},
            {END, trace_end, user<&P::user_msgs_handle_END>, hora_end},
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
            {VIRUS, trace<&P::msg_trace_handle_VIRUS>, user<&P::user_msgs_handle_VIRUS>,
             hora<&P::msgs_per_hour_handle_VIRUS>},
            {RETRY_DEST, nada, user_erro<etRETRY_DEST>, nada},
            {SPAM, nada, nada, hora<&P::msgs_per_hour_handle_SPAM>},
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

// The line being read, and what it is read with.
struct LogMailFileParser::Leitura {
    LeitorLinhas leitor;
    LeitorDeCabecas cabecas;
    char linha[maior_linha + 1];
    char* campos[maior_linha + 1];
    bool usual;  // `cabeca` holds
    Cabeca cabeca;

    bool proxima();
    int divide();
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

int LogMailFileParser::parse_compact_files(InputFiles* files, long start, long end, ReportType type,
                                           params* p) {
    if (!files || !p) {
        traco("LogMailFileParser::parse_compact_file : Params. incorretos.\r\n");
        return 0;
    }
    replay({files, start, end}, start, end, type, p);
    return 1;
}

// What there is to know of a line before it is split: usual lines tell it by their head.
bool LogMailFileParser::Leitura::proxima() {
    const char* lida;
    const std::size_t tamanho = leitor.proxima(&lida, maior_linha);
    std::memcpy(linha, lida, tamanho);
    linha[tamanho] = '\0';
    usual = cabecas.le(linha, tamanho, cabeca);
    return tamanho != 0;
}

int LogMailFileParser::Leitura::divide() {
    return reparte(linha, ' ', campos);
}

void LogMailFileParser::replay(diario::Dias dias, long start, long end, ReportType type,
                               params* par) {
    struct Fim {
        Relogio& relogio;
        ~Fim() { relogio.termina(); }
    } fim{relogio_};
    relogio_.comeca();
    Leitura l;
    Horas horas(type == MSGS_PER_HOUR ? par->m_hour : nullptr, relogio_);
    Crivo crivo(type == MSGTRACE ? par->msg_id : "", end);
    const Replay::Coluna* coluna = Replay::coluna(type);
    bool iniciado = false;
    while (dias.proximo()) {
        const Stream f = dias.abre();
        if (!f) {
            traco("LogMailFileParser::parse_compact_file : Erro ao abrir %s\r\n", dias.path());
            continue;
        }
        l.leitor.abre(fileno(f.get()));
        horas.comeca_arquivo();
        for (;;) {
            if (iniciado && type == MSGTRACE) passa_por_cima(l.leitor, crivo, *par->m);
            if (!l.proxima()) break;
            if (!iniciado) {
                const long t = l.usual ? l.cabeca.t : strhex_to_time(l.linha);
                if (t < start) continue;
                iniciado = true;
                horas.comeca_em(t);
            }
            Lido e{0, l.campos, -1, par, nullptr};
            if (!l.usual) e.n = l.divide();
            e.t = l.usual ? l.cabeca.t : e.n > 0 ? strhex_to_time(l.campos[0]) : 0;
            if (e.t > end) {
                iniciado = false;
                break;
            }
            if (type == MSGS_PER_HOUR && !(e.hora = horas.de(e.t))) continue;
            const int status = l.usual ? l.cabeca.status : e.n > 2 ? decimal32(l.campos[2]) : 0;
            if (!coluna || status < 0 || status > SPAM) continue;
            const Replay::Acao acao = (*coluna)[static_cast<std::size_t>(status)];
            if (acao == Replay::nada) continue;
            if (l.usual) e.n = l.divide();
            acao(*this, e);
        }
    }
}

// Lets the sieve drop what cannot matter to the traced message as it stands now.
void LogMailFileParser::passa_por_cima(LeitorLinhas& leitor, Crivo& crivo, const Msg& m) {
    const bool erros = m.error_list.first() != nullptr;
    bool recusado = false;
    for (const RCPTO* r = m.recipients.first(); r && !recusado; r = r->next) recusado = r->error;
    crivo.define(erros, !m.error && !m.fatal_error && (erros || recusado));
    std::size_t quantos;
    const char* lidos = leitor.lidos(quantos);
    leitor.pula(crivo.sobra(lidos, quantos, maior_linha));
}
