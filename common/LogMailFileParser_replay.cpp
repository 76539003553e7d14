// Replaying compact files: which of a report's handlers takes a line.
#include <memory>

#include "common/LogMailFileParser_relatos.h"
#include "common/passada.h"
#include "misc/escopo.h"

struct Relatos::Replay {
    using P = LogMailFileParser;
    using R = Relatos;

    // The trace.
    template <auto handler>
    static void trace(R& r, const Campos& c, params& par, MsgsData*) {
        (r.p_.*handler)(par.msg_id, c.t, par.m, c.texto, c.n);
    }
    template <auto handler>
    static void trace_destinatario(R& r, const Campos& c, params& par, MsgsData*) {
        if (c.n > 4) (r.p_.*handler)(par.msg_id, c[4], c.t, par.m, c.texto, c.n);
    }
    static void trace_end(R& r, const Campos& c, params& par, MsgsData* hora) {
        if (c.n > 3) trace<&P::msg_trace_handle_END>(r, c, par, hora);
    }
    template <ErrorType tipo>
    static void trace_erro(R& r, const Campos& c, params& par, MsgsData*) {
        r.p_.msg_trace_handle_ERROR(par.msg_id, c.t, par.m, c.texto, c.n, tipo);
    }

    // One user's messages.
    template <auto handler>
    static void user(R& r, const Campos& c, params& par, MsgsData*) {
        (r.*handler)(par, c);
    }
    template <ErrorType tipo>
    static void user_erro(R& r, const Campos& c, params& par, MsgsData*) {
        r.user_erro(par, c, tipo);
    }

    // The hours of the day.
    template <auto handler>
    static void hora(R& r, const Campos& c, params&, MsgsData* hora) {
        (r.*handler)(hora, c);
    }
    static void hora_deliver(R& r, const Campos& c, params&, MsgsData* hora) {
        if (c.n > 3) r.p_.msgs_per_hour_handle_DELIVER(c.t, hora, c[3]);
    }

    struct Regra {
        Status status;
        Acao trace, user, hora;
    };

    enum Relatorio { TRACE, USER, HORA, nenhum, num_relatorios };
    using Tabela_de_acoes = std::array<Acoes, num_relatorios>;

    static constexpr Tabela_de_acoes tabela() {
        constexpr Acao nada = nullptr, erro_na_hora = hora<&R::hora_erro>;
        constexpr Regra regras[] = {
            {SUBMIT, trace<&P::msg_trace_handle_SUBMIT>, user<&R::user_submit>,
             hora<&R::hora_submit>},
            // An acceptance does not count in its hour, the END does.
            {OK, trace_destinatario<&P::msg_trace_handle_OK>, user<&R::user_ok>, nada},
            {END, trace_end, user<&R::user_end>, hora<&R::hora_end>},
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
            {VIRUS, trace<&P::msg_trace_handle_VIRUS>, user<&R::user_virus>, hora<&R::hora_virus>},
            {RETRY_DEST, nada, user_erro<etRETRY_DEST>, nada},
            {SPAM, nada, nada, hora<&R::hora_spam>},
        };
        Tabela_de_acoes t{};
        bool tomado[Acoes::num_status] = {};
        for (const Regra& r : regras) {
            if (tomado[r.status]) throw "a second rule for the same status";  // fails the build
            tomado[r.status] = true;
            t[TRACE].por_status[r.status] = r.trace;
            t[USER].por_status[r.status] = r.user;
            t[HORA].por_status[r.status] = r.hora;
        }
        t[HORA].so_recusa = DELIVER;  // an attempt changes no hour
        return t;
    }

    // Nothing at all for a report that is not answered from compact files.
    static const Acoes& acoes(ReportType type) {
        static constexpr Tabela_de_acoes t = tabela();
        return t[type == MSGTRACE        ? TRACE
                 : type == USERMSGS      ? USER
                 : type == MSGS_PER_HOUR ? HORA
                                         : nenhum];
    }
};

int LogMailFileParser::parse_compact_files(InputFiles* files, long start, long end, ReportType type,
                                           params* p) {
    if (!files || !p)
        return recusa("LogMailFileParser::parse_compact_file : Params. incorretos.\r\n");
    relatos_->replay({files, start, end}, start, end, type, p);
    return 1;
}

void Relatos::replay(diario::Dias dias, long start, long end, ReportType type, params* par) {
    const AoSair fim([this] { p_.relogio_.termina(); });
    p_.relogio_.comeca();
    const auto passada = std::make_unique<Passada>(*this, Replay::acoes(type), trabalhos_,
                                                   p_.relogio_, type, *par, start, end);
    while (dias.proximo())
        if (const Stream f = dias.abre())
            passada->arquivo(fileno(f.get()));
        else
            p_.traco("LogMailFileParser::parse_compact_file : Erro ao abrir %s\r\n", dias.path());
}
