// Hand-written day files, the reports over them, and their rows as text.
#include "tests/unit/apoio/relato.h"

#include <algorithm>
#include <sstream>

namespace {

std::string instante(time_t t) {
    if (t == 0) return "-";
    struct tm tm;
    char s[40];
    std::strftime(s, sizeof s, "%d %H:%M:%S", localtime_r(&t, &tm));
    return s;
}

std::string texto(const MsgsData& d) {
    std::string s = instante(d.timestamp) + ":";
    for (const std::uint32_t v : {d.msgs_int, d.msgs_ext, d.bytes_int, d.bytes_ext, d.virus, d.spam,
                                  d.error, d.att_blocked})
        s += " " + std::to_string(v);
    return s + "/";
}

// What a message and its row have in common: sender, size, start; flags.
template <class M>
std::string quem(const M& m) {
    return (m.sendername ? m.sendername : "-") + (" " + std::to_string(m.size)) + " " +
           instante(m.start_time);
}
template <class M>
std::string marcas(const M& m) {
    return std::string(m.int_user ? " I" : " ") + (m.virus ? "V" : "") + (m.spam ? "S" : "") +
           (m.error ? "E" : "");
}

}  // namespace

std::vector<std::pair<std::string, std::string>> casos(const char* tabela) {
    std::vector<std::pair<std::string, std::string>> todos;
    std::istringstream linhas(tabela);
    for (std::string l; std::getline(linhas, l);) {
        const std::size_t seta = l.find(" =>");
        if (l[0] == '#' || seta == std::string::npos) continue;
        for (std::size_t i = 0; (i = l.find('=', i)) != std::string::npos; ++i)
            if (l[i + 1] != '>')
                l.replace(i, 3, 1, static_cast<char>(std::stoi(l.substr(i + 1, 2), nullptr, 16)));
        todos.emplace_back(l.substr(0, seta), l.substr(std::min(seta + 4, l.size())));
    }
    return todos;
}

std::string texto(const DList<MsgsData>& linhas) {
    std::string s;
    for (const MsgsData* d = linhas.first(); d; d = d->next) s += texto(*d);
    return s;
}

std::string texto_horas(const DList<MsgsData>& linhas) {
    std::string s;
    int n = 0;
    for (const MsgsData* d = linhas.first(); d; d = d->next, ++n)
        if (const std::string t = texto(*d); t != "-: 0 0 0 0 0 0 0 0/")
            s += std::to_string(n) + "h " + t;
    return s + std::to_string(n);
}

std::string texto(const DList<MsgsDayUser>& usuarios) {
    std::string s;
    for (const MsgsDayUser* u = usuarios.first(); u; u = u->next)
        s += std::string(u->username) + ":/" + texto(u->m_day);
    return s;
}

std::string texto(const DList<UserMsgs>& linhas) {
    std::string s;
    for (const UserMsgs* u = linhas.first(); u; u = u->next)
        s += u->msg_id + (" " + quem(*u)) + " " + u->enviada + marcas(*u) + " " +
             std::string(u->str_error) + "/";
    return s;
}

std::string texto(const Msg& m) {
    std::string s = m.id + (" " + quem(m)) + " " + instante(m.end_time) + marcas(m) +
                    (m.fatal_error ? "F " : " ") + std::string(m.str_error) + "/";
    for (const RCPTO* r = m.recipients.first(); r; r = r->next)
        s += r->username + (" " + instante(r->last_time)) + (r->error ? " E " : " ") +
             r->status_msg + "/";
    return s;
}

void pede(LogResult& r, const std::string& usuario) {
    MsgsDayUser* u = new MsgsDayUser;
    usuario.copy(u->username, 199);
    r.msgs_user_day.putFirst(u);
}

Relato::Relato(const char* tz) : zona_(tz) {
    p.setDataDir(arvore.path("DAT").c_str());
    p.debugOut = traco_.stream;
}

Relato& Relato::compacto(const std::string& dia, const std::string& linhas) {
    std::istringstream todas(linhas);
    std::string s, l;
    while (std::getline(todas, l, '|')) {
        const std::size_t fim = std::min(l.find(' '), l.size());
        std::string hora = l.substr(0, fim), resto = l.substr(fim);
        while (hora.size() < 6) hora += ":00";
        if (resto.size() == 2) resto = " 1 1" + resto + " INTERNO a 1";
        s += (l[0] == '@' ? l.substr(1) : T(dia + " " + hora) + resto) + "\n";
    }
    arvore.write(arquivo_do_dia(dia, diario::compacto), s);
    return *this;
}

Relato& Relato::estatistica(const std::string& dia, const std::string& texto) {
    arvore.write(arquivo_do_dia(dia, diario::estatistica), texto);
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

std::string Relato::dias_de(const std::vector<std::string>& quem, const std::string& de,
                            const std::string& ate) {
    LogResult r;
    for (auto u = quem.rbegin(); u != quem.rend(); ++u) pede(r, *u);
    p.get_msgs_per_day(hora(de), hora(ate), nullptr, &r.msgs_user_day);
    return texto(r.msgs_user_day);
}

std::string Relato::horas(const std::string& de, const std::string& ate) {
    LogResult r;
    p.get_msgs_per_hour(hora(de), hora(ate), &r.msgs_hour);
    return texto_horas(r.msgs_hour);
}

std::string Relato::horas_de(const char* quem, const std::string& de, const std::string& ate) {
    LogResult r;
    p.get_msgs_per_hour_per_user(hora(de), hora(ate), quem, &r.msgs_hour);
    return texto_horas(r.msgs_hour);
}

std::string Relato::mensagens(const Filtro& f, const std::string& de, const std::string& ate) {
    LogResult r;
    p.get_user_msgs(f.para, f.de, f.id, f.min_kb, f.max_kb, hora(de), hora(ate), &r.user_msgs);
    return texto(r.user_msgs);
}

std::string Relato::trace(const char* id, const std::string& de, const std::string& ate) {
    Msg m("0", 0);
    p.msg_trace(id, hora(de), hora(ate), &m);
    return texto(m);
}

std::string tudo(LogMailFileParser& p, long de, long ate, bool lista) {
    LogResult r, u;
    pede(u, "ana");
    char ana[] = "ana", id[] = "A";
    Msg m("0", 0);
    if (lista) {
        std::vector<InputFiles> dias(static_cast<std::size_t>((ate - de) / 86400 + 2));
        std::vector<InputFiles> compactos = dias;
        p.getFiles(dias.data(), "mail_stat_", de, ate);
        p.getFiles(compactos.data(), "compact_mail_", de, ate);
        Usuario u_ana(ana, 24), u_rui("rui", 24);
        DList<Usuario> remetentes, destinatarios;
        remetentes.putFirst(&u_ana);
        destinatarios.putFirst(&u_rui);
        params q{};
        q.m_hour = &r.msgs_hour;
        q.msgs = &r.user_msgs;
        q.m = &m;
        InputFiles* d = dias.data();
        p.parse_consolid_files(d, de, ate, &r.msgs_day, nullptr, nullptr, nullptr);
        p.parse_consolid_files(d, de, ate, nullptr, &u.msgs_user_day, nullptr, nullptr);
        p.parse_consolid_files(d, de, ate, nullptr, nullptr, &u.msgs_hour, ana);
        p.parse_compact_files(compactos.data(), de, ate, MSGS_PER_HOUR, &q);
        q.remetentes = &remetentes;
        q.destinatarios = &destinatarios;
        p.parse_compact_files(compactos.data(), de, ate, USERMSGS, &q);
        q.msg_id = id;
        p.parse_compact_files(compactos.data(), de, ate, MSGTRACE, &q);
        for (const auto& l : {dias, compactos})
            for (const InputFiles& f : l) delete[] f.file;
    } else {
        p.get_msgs_per_day(de, ate, &r.msgs_day, nullptr);
        p.get_msgs_per_day(de, ate, nullptr, &u.msgs_user_day);
        p.get_msgs_per_hour_per_user(de, ate, ana, &u.msgs_hour);
        p.get_msgs_per_hour(de, ate, &r.msgs_hour);
        p.get_user_msgs("rui", ana, nullptr, 0, 0, de, ate, &r.user_msgs);
        p.msg_trace(id, de, ate, &m);
    }
    return texto(r.msgs_day) + texto(u.msgs_user_day) + texto_horas(r.msgs_hour) +
           texto_horas(u.msgs_hour) + texto(r.user_msgs) + texto(m);
}
