// The day's end: totals, the statistics file, and what goes on to the next day.
#include <algorithm>

#include "common/LogMailFileParser_corrida.h"
#include "misc/escrita.h"
#include "misc/ncutils.h"

namespace {

void conta(diario::Totais& t, const Msg& m) {
    ++(m.int_user ? t.msgs_int : t.msgs_ext);
    (m.int_user ? t.bytes_int : t.bytes_ext) += m.size;
}

// A finished message: counted by what became of it, if a delivery was tried.
void conta_terminada(diario::Totais& t, const Msg& m) {
    if (m.tries != 0) {
        const bool falhou = m.error || m.fatal_error;
        t.error += falhou;
        if (!falhou || m.sent) conta(t, m);
        t.spam += m.spam;
        t.att_blocked += m.att_blocked;
    }
    t.virus += m.virus;
}

// An unfinished message with errors that was tried; counted on this day and again at its end.
void conta_pendente(diario::Totais& t, const Msg& m) {
    ++t.error;
    if (m.sent) conta(t, m);
}

bool algum(const usuStats& s) {
    return (s.sent | s.recv | s.bytes_sent | s.bytes_recv | s.virus | s.spam | s.error |
            s.att_blocked) != 0;
}

}  // namespace

bool LogMailFileParser::dumpFiles() {
    Corrida& c = corrida();
    bool gravado = fecha(compact_logfile);
    if (!createFile(&statistic_logfile, diario::estatistica)) return false;
    gravado &= sincroniza_mes();
    c.escreve_estatistica(c.retira_mensagens());
    c.prepara_proximo_dia();
    gravado &= fecha(statistic_logfile);
    return gravado && !c.sem_compacto;
}

// Adds up the day's totals and deletes the messages that are done with.
diario::Totais Corrida::retira_mensagens() {
    diario::Totais t{};
    p_.Lista_msg.apaga_se([&t](Msg* m) {
        if (m->tries != 0) t.att_blocked += m->att_blocked;  // and once more when it is finished
        const bool terminada = m->end_time != 0 || m->fatal_error;
        if (terminada) {
            conta_terminada(t, *m);
        } else if (m->error && m->tries != 0) {
            conta_pendente(t, *m);
            m->old_error = true;
        }
        return terminada || (m->error && m->tries == 0);
    });
    return t;
}

void Corrida::escreve_estatistica(const diario::Totais& totais) {
    const unsigned ultimo = std::min(p_.last_period, p_.sfile_num_periods - 1);
    MemoriaDeStream::empresta(p_.statistic_logfile);
    diario::escreve_totais(p_.statistic_logfile, p_.period_limit[p_.first_period] - p_.passo(),
                           p_.period_limit[ultimo] - 1, totais);
    for (unsigned p = 0; p < p_.sfile_num_periods; ++p) {
        diario::escreve_periodo(p_.statistic_logfile, p_.period_limit[p] - p_.passo());
        for (const Usuario* u = p_.Lista_usu.first(); u; u = u->next) {
            const usuStats s = u->getStats(static_cast<int>(p));
            if (algum(s))
                diario::escreve_usuario(p_.statistic_logfile, chave(*u), u->tamanho_do_nome(), s);
        }
    }
}

// Attempts and errors belong to one day, and so do users, except for those with a message in
// flight.
void Corrida::prepara_proximo_dia() {
    for (Msg* m = p_.Lista_msg.first(); m; m = m->next) {
        m->tries = 0;
        m->error = false;
        if (m->sender && m->sender->msgs_reference == 0) m->sender = nullptr;
    }
    p_.Lista_usu.apaga_se([this](Usuario* u) {
        if (u->msgs_reference == 0) return true;
        p_.traco("Usu\xE1rio %s na lista.[ref = %d]\n", chave(*u),
                 static_cast<int>(u->msgs_reference));
        u->reset_vars();
        return false;
    });
}
