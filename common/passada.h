// One run over the compact files of a range: which lines a report sees, and in which order.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <ctime>

#include "common/Trabalho.h"
#include "common/auxiliar.h"
#include "common/compacta.h"
#include "common/relatorio.h"
#include "common/relogio.h"

class Relatos;

// What a report does with a line of some status. `hora` is the row of the line's hour in the hour
// report, null in the others.
using Acao = void (*)(Relatos&, const Campos&, params&, MsgsData* hora);

// What it does with the lines of each status.
struct Acoes {
    static constexpr std::size_t num_status = SPAM + 1;

    std::array<Acao, num_status> por_status{};  // null: nothing
    // A status whose action only refuses lines without a time; other lines of it need no look.
    Status so_recusa = STATUS_UNKNOWN;

    Acao de(std::int32_t status) const {
        const auto s = static_cast<std::uint32_t>(status);
        return s < num_status ? por_status[s] : nullptr;
    }
};

// The rows of the hour report and the hour that the replay is in.
class Horas {
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
    MsgsData* horas_[24] = {};
    int agora_ = 0;
};

// Hands the lines of a range to a report: in each file those from the first one not earlier than
// the start, which may stand in an earlier file, up to the first one later than the end. The next
// file is then searched for the start again.
class Passada {
  public:
    // All that is referred to must outlive the run. The hour report gets 24 rows at the end of its
    // list.
    Passada(Relatos& destino, const Acoes& acoes, const Trabalhos& trabalhos, Relogio& relogio,
            ReportType type, params& par, long start, long end);

    void arquivo(int fd);

  private:
    // Each goes on to the end of the file. The first one stops at the line where the range begins;
    // the others answer false when they met a line behind its end.
    bool acha_inicio();
    bool pelo_crivo();
    bool por_lotes();

    bool trata(const Linha& l);
    bool trata_estranha(const Linha& l);
    void trata_lote(const Lote& lote);
    bool tranquilo(const Lote& lote) const;
    void ajusta_crivo();
    void entrega(const Acao acao, const Campos& c, MsgsData* hora) {
        acao(destino_, c, par_, hora);
    }

    Relatos& destino_;
    const Acoes& acoes_;
    const Trabalhos& trabalhos_;
    params& par_;
    const long start_, end_;
    const bool usa_crivo_;  // a trace with an id: lines may be passed over
    const bool por_hora_;
    bool iniciada_ = false;  // a line not earlier than the start was met
    Horas horas_;
    Crivo crivo_;
    LeitorCompacto leitor_;
    LeitorCompacto::Statuses serve_;  // the statuses that the report looks at
    LeitorCompacto::Lugar lugares_[Lote::maior];
    Campos campos_[Lote::maior];
};
