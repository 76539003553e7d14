// Replaying compact files: which lines a report sees, and which of its handlers takes each.
#include <array>
#include <cstring>

#include "common/LogMailFileParser.h"
#include "common/auxiliar.h"
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
    static void hora_ok(P& p, const Lido& e) {
        p.msgs_per_hour_handle_OK(e.t, e.par->user, e.hora, e.campos, e.n);
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
            {OK, trace_destinatario<&P::msg_trace_handle_OK>, user_ok, hora_ok},
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
    const Replay::Coluna* coluna = Replay::coluna(type);
    MsgsData* horas[horas_do_dia] = {};
    if (type == MSGS_PER_HOUR)
        for (MsgsData*& h : horas) par->m_hour->putLast(h = new MsgsData{});

    relogio_.comeca();
    LeitorLinhas leitor;
    bool iniciado = false;
    while (dias.proximo()) {
        const Stream f = dias.abre();
        if (!f) {
            traco("LogMailFileParser::parse_compact_file : Erro ao abrir %s\r\n", dias.path());
            continue;
        }
        leitor.abre(fileno(f.get()));
        int hora = 0;
        char linha[maior_linha + 1];
        char* campos[maior_linha + 1];
        const char* lida;
        while (const std::size_t tamanho = leitor.proxima(&lida, maior_linha)) {
            std::memcpy(linha, lida, tamanho);
            linha[tamanho] = '\0';
            if (!iniciado) {
                const long t = strhex_to_time(linha);
                if (t < start) continue;
                iniciado = true;
                hora = std::max(relogio_.hora_do_dia(t), 0);
            }
            const int n = reparte(linha, ' ', campos);
            Lido e{n > 0 ? strhex_to_time(campos[0]) : 0, campos, n, par, nullptr};
            if (e.t > end) {
                iniciado = false;
                break;
            }
            if (type == MSGS_PER_HOUR) {
                const int agora = relogio_.hora_do_dia(e.t);
                if (agora < 0) continue;
                if (agora != hora) horas[hora]->timestamp = e.t;
                hora = agora;
                e.hora = horas[hora];
            }
            const int status = n > 2 ? decimal32(campos[2]) : 0;
            if (coluna && status > 0 && status <= SPAM)
                (*coluna)[static_cast<std::size_t>(status)](*this, e);
        }
    }
    relogio_.termina();
}

// A new working record for an id. An older one of the same id would never answer again: it goes.
Msg* LogMailFileParser::trabalho_novo(const char* id, long t) {
    Msg* m = new Msg(id, t);
    if (Msg* velho = procurar_msg(&trabalho_, m->id)) {
        trabalho_.remove(velho);
        delete velho;
    }
    trabalho_.putFirst(m);
    return m;
}

// The working record of an id, or a new one.
Msg* LogMailFileParser::trabalho(const char* id, long t) {
    Msg* m = procurar_msg(&trabalho_, id);
    return m ? m : trabalho_novo(id, t);
}
