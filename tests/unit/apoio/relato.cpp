// Hand-written day files, the reports over them, and their rows as text.
#include "tests/unit/apoio/relato.h"

#include <sstream>

namespace {

std::string nome(const std::string& dia, const char* prefixo) {
    return "DAT/rels_" + dia.substr(5, 2) + "-" + dia.substr(2, 2) + "/" + prefixo +
           dia.substr(8, 2) + ".txt";
}

std::string contadores(const MsgsData& d) {
    std::string s;
    for (const std::uint32_t v : {d.msgs_int, d.msgs_ext, d.bytes_int, d.bytes_ext, d.virus, d.spam,
                                  d.error, d.att_blocked})
        s += " " + std::to_string(v);
    return s;
}

template <class R>
std::string marcas(const R& r) {
    return std::string(r.int_user ? "I" : "") + (r.virus ? "V" : "") + (r.spam ? "S" : "") +
           (r.error ? "E" : "");
}

std::string ou_traco(const char* texto) {
    return texto ? texto : "-";
}

}  // namespace

std::string instante(time_t t) {
    if (t == 0) return "-";
    struct tm tm;
    char s[40];
    std::strftime(s, sizeof s, "%d %H:%M:%S", localtime_r(&t, &tm));
    return s;
}

std::string texto(const DList<MsgsData>& linhas) {
    std::string s;
    for (const MsgsData* d = linhas.first(); d; d = d->next)
        s += instante(d->timestamp) + ":" + contadores(*d) + "\n";
    return s;
}

std::string texto_horas(const DList<MsgsData>& linhas) {
    std::string s;
    int n = 0;
    for (const MsgsData* d = linhas.first(); d; d = d->next, ++n)
        if (d->timestamp || contadores(*d) != " 0 0 0 0 0 0 0 0")
            s += std::to_string(n) + "h " + instante(d->timestamp) + ":" + contadores(*d) + "\n";
    return s + std::to_string(n) + " rows\n";
}

std::string texto(const DList<MsgsDayUser>& usuarios) {
    std::string s;
    for (const MsgsDayUser* u = usuarios.first(); u; u = u->next)
        s += std::string(u->username) + ":\n" + texto(u->m_day);
    return s;
}

std::string texto(const DList<UserMsgs>& linhas) {
    std::string s;
    for (const UserMsgs* u = linhas.first(); u; u = u->next)
        s += std::string(u->msg_id) + " " + u->enviada + " " + std::to_string(u->size) + " " +
             instante(u->start_time) + " " + ou_traco(u->sendername) + " " + marcas(*u) + " " +
             std::string(u->str_error) + "\n";
    return s;
}

std::string texto(const Msg& m) {
    std::string s = std::string(m.id) + " " + ou_traco(m.sendername) + " " +
                    std::to_string(m.size) + " " + instante(m.start_time) + " " +
                    instante(m.end_time) + " " + marcas(m) + (m.fatal_error ? "F" : "") + " " +
                    std::string(m.str_error) + "\n";
    for (const RCPTO* r = m.recipients.first(); r; r = r->next)
        s += std::string(r->username) + " " + instante(r->last_time) + (r->error ? " E " : " ") +
             r->status_msg + "\n";
    return s;
}

void pede(LogResult& r, const std::string& usuario) {
    MsgsDayUser* u = new MsgsDayUser;
    usuario.copy(u->username, 199);
    r.msgs_user_day.putFirst(u);
}

Relato::Relato(const char* tz) : zona_(tz) {
    std::filesystem::create_directories(arvore.path("LOGS"));
    p.setLogDir(arvore.path("LOGS").c_str());
    p.setDataDir(arvore.path("DAT").c_str());
    p.debugOut = traco_.stream;
}

Relato& Relato::compacto(const std::string& dia, const std::string& linhas) {
    std::istringstream todas(linhas);
    std::string s, l;
    while (std::getline(todas, l, '|')) {
        const std::size_t fim = std::min(l.find(' '), l.size());
        std::string quando = l.substr(0, fim);
        while (quando.size() < 6) quando += ":00";
        const std::string resto =
            l.size() == fim + 2 ? " 1 1" + l.substr(fim) + " INTERNO a 1" : l.substr(fim);
        s += (l[0] == '@' ? l.substr(1) : T(dia + " " + quando) + resto) + "\n";
    }
    arvore.write(nome(dia, diario::compacto), s);
    return *this;
}

Relato& Relato::estatistica(const std::string& dia, const std::string& texto) {
    arvore.write(nome(dia, diario::estatistica), texto);
    return *this;
}

std::string Relato::traco() {
    const std::string tudo = traco_.texto();
    std::string t = tudo.substr(traco_lido_);
    traco_lido_ = tudo.size();
    for (std::size_t i; (i = t.find(arvore.path())) != std::string::npos;)
        t.replace(i, arvore.path().size(), "@");
    return t;
}

std::string Relato::dias(const std::string& de, const std::string& ate) {
    LogResult r;
    p.get_msgs_per_day(hora(de), hora(ate), &r.msgs_day, nullptr);
    return texto(r.msgs_day);
}

std::string Relato::dias_de(const std::vector<std::string>& usuarios, const std::string& de,
                            const std::string& ate) {
    LogResult r;
    for (auto u = usuarios.rbegin(); u != usuarios.rend(); ++u) pede(r, *u);
    p.get_msgs_per_day(hora(de), hora(ate), nullptr, &r.msgs_user_day);
    return texto(r.msgs_user_day);
}

std::string Relato::horas(const std::string& de, const std::string& ate) {
    LogResult r;
    p.get_msgs_per_hour(hora(de), hora(ate), &r.msgs_hour);
    return texto_horas(r.msgs_hour);
}

std::string Relato::horas_de(const char* usuario, const std::string& de, const std::string& ate) {
    LogResult r;
    p.get_msgs_per_hour_per_user(hora(de), hora(ate), usuario, &r.msgs_hour);
    return texto_horas(r.msgs_hour);
}

std::string Relato::mensagens(const char* para, const char* de_quem, const char* id, int min,
                              int max, const std::string& de, const std::string& ate) {
    LogResult r;
    p.get_user_msgs(para, de_quem, id, min, max, hora(de), hora(ate), &r.user_msgs);
    return texto(r.user_msgs);
}

std::string Relato::trace(const char* id, const std::string& de, const std::string& ate) {
    Msg m("0", 0);
    p.msg_trace(id, hora(de), hora(ate), &m);
    return texto(m);
}
