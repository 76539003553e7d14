// One run over the compact files of a range.
#include "common/passada.h"

#include "misc/numero.h"

// cppcheck-suppress uninitMemberVar ; kilobytes that are written before they are read
Passada::Passada(Relatos& destino, const Acoes& acoes, const Trabalhos& trabalhos, Relogio& relogio,
                 ReportType type, params& par, long start, long end)
    : destino_(destino),
      acoes_(acoes),
      trabalhos_(trabalhos),
      par_(par),
      start_(start),
      end_(end),
      usa_crivo_(type == MSGTRACE && par.msg_id),
      por_hora_(type == MSGS_PER_HOUR),
      horas_(por_hora_ ? par.m_hour : nullptr, relogio),
      crivo_(usa_crivo_ ? par.msg_id : "", end) {
    for (std::int32_t s = 0; s < LeitorDeCabecas::num_status; ++s)
        serve_[s] = acoes.de(s) && s != acoes.so_recusa;
}

void Passada::arquivo(int fd) {
    leitor_.comeca(fd);
    horas_.comeca_arquivo();
    if (!iniciada_ && !acha_inicio()) return;
    iniciada_ = usa_crivo_ ? pelo_crivo() : por_lotes();
}

bool Passada::acha_inicio() {
    while (const Lote* lote = leitor_.le_lote(Lote::maior, serve_))
        for (const Linha& l : *lote) {
            const long t = l.usual ? l.t : leitor_.hora(l);
            if (t < start_) continue;
            horas_.comeca_em(t);
            leitor_.devolve(l);
            return true;
        }
    return false;
}

// Line by line, since each one may change what the sieve has to let through.
bool Passada::pelo_crivo() {
    while (true) {
        ajusta_crivo();
        leitor_.passa(crivo_);
        const Lote* lote = leitor_.le_lote(1, serve_);
        if (!lote) return true;
        if (!trata(*lote->begin())) return false;
    }
}

bool Passada::por_lotes() {
    while (const Lote* lote = leitor_.le_lote(Lote::maior, serve_)) {
        if (tranquilo(*lote)) {
            trata_lote(*lote);
            continue;
        }
        for (const Linha& l : *lote)
            if (!trata(l)) return false;
    }
    return true;
}

// Hands a line to its handler. False when it lies behind the end.
bool Passada::trata(const Linha& l) {
    if (!l.usual) return trata_estranha(l);
    if (l.t > end_) return false;
    MsgsData* hora = nullptr;
    if (por_hora_ && !(hora = horas_.de(l.t))) return true;
    const Acao acao = acoes_.de(l.status);
    if (!acao) return true;
    Campos c = LeitorCompacto::separa(l, lugares_[0]);
    if (!c.texto) c = leitor_.reparte(l);
    entrega(acao, c, hora);
    return true;
}

// The same for a line whose status and time are known only from its fields.
bool Passada::trata_estranha(const Linha& l) {
    const Campos c = leitor_.reparte(l);
    if (c.t > end_) return false;
    MsgsData* hora = nullptr;
    if (por_hora_ && !(hora = horas_.de(c.t))) return true;
    if (const Acao acao = acoes_.de(c.n > 2 ? decimal32(c[2]) : 0)) entrega(acao, c, hora);
    return true;
}

// Hands the lines of a quiet batch to their handlers. All are taken apart first, and the places
// where their messages will be looked up fetched together.
void Passada::trata_lote(const Lote& lote) {
    for (std::size_t i = 0; i < lote.servem; ++i) {
        campos_[i] = LeitorCompacto::separa(lote.que_serve(i), lugares_[i]);
        trabalhos_.busca(campos_[i].id.hash);
    }
    for (std::size_t i = 0; i < lote.servem; ++i) {
        const Linha& l = lote.que_serve(i);
        const Acao acao = acoes_.de(l.status);
        entrega(acao, campos_[i].texto ? campos_[i] : leitor_.reparte(l), horas_.agora());
    }
}

// Whether all lines of the batch are usual, not later than the end and of the hour that the run is
// in: then those that no handler takes need not be looked at one by one.
bool Passada::tranquilo(const Lote& lote) const {
    // An attempt without a time is refused and traced, so it must be looked at.
    return lote.usuais && lote.primeira != 0 && lote.ultima <= end_ &&
           horas_.mesma(lote.primeira, lote.ultima);
}

// Tells the sieve what matters to the traced message as it stands now. An acceptance settles the
// connection error whose text it names; the first END turns what is pending into an error.
void Passada::ajusta_crivo() {
    const Msg& m = *par_.m;
    const bool erros = m.error_list.first() != nullptr;
    bool recusado = false;
    for (const RCPTO* r = m.recipients.first(); r && !recusado; r = r->next) recusado = r->error;
    crivo_.define(!m.error && !m.fatal_error && (erros || recusado));
    for (const ErrorInfo* e = m.error_list.first(); e; e = e->next)
        if (e->error_type == etCONNECT && e->error) crivo_.espera(e->error);
}
