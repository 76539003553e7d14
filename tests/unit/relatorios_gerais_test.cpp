// What holds of all reports: two ways that must agree, files of any bytes, memory.
#include <gtest/gtest.h>
#include <malloc.h>

#include <array>
#include <climits>
#include <map>
#include <random>
#include <sstream>

#include "demo/gerador.h"
#include "tests/unit/apoio/relato.h"

// Of the sanitizers' allocator, when there is one.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace {

constexpr long um_dia = 86400;

// Bytes that the process holds by now, as the allocator counts them.
std::size_t em_uso() {
    if (__sanitizer_get_current_allocated_bytes) return __sanitizer_get_current_allocated_bytes();
    return mallinfo2().uordblks;
}

// Three generated days, consolidated, and what the log says of them.
struct Gerado {
    Rele rele;
    long primeiro = hora("2009-03-15 00:00:00");
    std::map<std::string, std::array<long, 2>> enviadas;  // by sender: messages, bytes
    std::array<std::array<long, 4>, 3> totais{};          // by day: int, ext and their bytes

    explicit Gerado(bool limpo) {
        gerador::Parametros p;
        p.diretorio = rele.arvore.path("LOGS");
        p.primeiro_dia = "2009-03-15";
        p.dias = 4;
        p.mensagens = 300;
        p.usuarios = 20;
        p.rotacao = gerador::rotacao_nenhuma;
        if (limpo) {
            p.spam = p.virus = p.retidas = p.sem_remetente = 0;
            p.erros.fill(0);
            p.travessia = false;
        }
        gerador::gera(p);
        rele.consolida("2009-03-18 00:00:01");
        le_log();
    }

    void le_log() {
        std::istringstream log(rele.arvore.read("LOGS/MAIL_DISPATCHER.LOG"));
        for (std::string l; std::getline(log, l) && l.substr(4, 6) < "Mar 18";) {
            std::istringstream palavras(l.substr(24));
            std::vector<std::string> w;
            for (std::string t; palavras >> t;) w.push_back(t);
            if (w.size() < 13 || w[3] != "SUBMIT") continue;
            const bool fora = w[7] != "INTERNO" && w[7] != "SMTPCONNINT";
            const long bytes = std::stol(w[11]);
            auto& dia = totais[static_cast<std::size_t>(std::stoi(l.substr(8, 2)) - 15)];
            dia[fora] += 1;
            dia[2 + fora] += bytes;
            if (fora) continue;
            enviadas[w[9]][0] += 1;
            enviadas[w[9]][1] += bytes;
        }
    }

    std::unique_ptr<LogMailFileParser> parser() const {
        auto p = std::make_unique<LogMailFileParser>();
        p->setDataDir(rele.arvore.path("DAT").c_str());
        return p;
    }
};

std::array<long, 4> contagem(const MsgsData& d) {
    return {d.msgs_int, d.msgs_ext, d.bytes_int, d.bytes_ext};
}

// All reports of a range, as text.
std::string tudo(LogMailFileParser& p, long de, long ate) {
    LogResult r, u;
    pede(u, "ana");
    Msg m("0", 0);
    p.get_msgs_per_day(de, ate, &r.msgs_day, nullptr);
    p.get_msgs_per_day(de, ate, nullptr, &u.msgs_user_day);
    p.get_msgs_per_hour(de, ate, &r.msgs_hour);
    p.get_msgs_per_hour_per_user(de, ate, "ana", &u.msgs_hour);
    p.get_user_msgs("rui", "ana", nullptr, 0, 0, de, ate, &r.user_msgs);
    p.msg_trace("A", de, ate, &m);
    return texto(r.msgs_day) + texto(u.msgs_user_day) + texto_horas(r.msgs_hour) +
           texto_horas(u.msgs_hour) + texto(r.user_msgs) + texto(m);
}

// The same from lists of files made beforehand; `de` not after `ate`.
std::string tudo_por_lista(LogMailFileParser& p, long de, long ate) {
    const std::size_t n = static_cast<std::size_t>((ate - de) / um_dia + 2);
    std::vector<InputFiles> dias(n), compactos(n);
    p.getFiles(dias.data(), "mail_stat_", de, ate);
    p.getFiles(compactos.data(), "compact_mail_", de, ate);
    LogResult r, u;
    pede(u, "ana");
    Msg m("0", 0);
    Usuario ana("ana", 24), rui("rui", 24);
    DList<Usuario> remetentes, destinatarios;
    remetentes.putFirst(&ana);
    destinatarios.putFirst(&rui);
    char a[] = "ana", id[] = "A";
    params q{};
    q.remetentes = &remetentes;
    q.destinatarios = &destinatarios;
    q.m_hour = &r.msgs_hour;
    q.msgs = &r.user_msgs;
    p.parse_consolid_files(dias.data(), de, ate, &r.msgs_day, nullptr, nullptr, nullptr);
    p.parse_consolid_files(dias.data(), de, ate, nullptr, &u.msgs_user_day, nullptr, nullptr);
    p.parse_compact_files(compactos.data(), de, ate, MSGS_PER_HOUR, &q);
    p.parse_consolid_files(dias.data(), de, ate, nullptr, nullptr, &u.msgs_hour, a);
    p.parse_compact_files(compactos.data(), de, ate, USERMSGS, &q);
    q.msg_id = id;
    q.m = &m;
    p.parse_compact_files(compactos.data(), de, ate, MSGTRACE, &q);
    for (const auto& lista : {dias, compactos})
        for (const InputFiles& f : lista) delete[] f.file;
    return texto(r.msgs_day) + texto(u.msgs_user_day) + texto_horas(r.msgs_hour) +
           texto_horas(u.msgs_hour) + texto(r.user_msgs) + texto(m);
}

// Where nothing fails and nothing is in flight at midnight, every way of counting gives what the
// log says.
TEST(RelatoriosGerais, contamOQueOLogDiz) {
    const Gerado g(true);
    auto p = g.parser();
    LogResult r;
    p->get_msgs_per_day(g.primeiro, g.primeiro + 3 * um_dia - 1, &r.msgs_day, nullptr);
    std::size_t i = 0;
    for (const MsgsData* d = r.msgs_day.first(); d; d = d->next, ++i) {
        EXPECT_EQ(contagem(*d), g.totais.at(i));
        EXPECT_EQ(d->spam + d->virus + d->error + d->att_blocked, 0u);
        LogResult h;
        p->get_msgs_per_hour(d->timestamp, d->timestamp + um_dia - 1, &h.msgs_hour);
        std::array<long, 4> soma{};
        for (const MsgsData* x = h.msgs_hour.first(); x; x = x->next)
            for (std::size_t k = 0; k < 4; ++k) soma[k] += contagem(*x)[k];
        EXPECT_EQ(soma, g.totais.at(i));
    }
    EXPECT_EQ(i, 3u);
    EXPECT_GT(g.enviadas.size(), 10u);
    for (const auto& [quem, quanto] : g.enviadas) {
        LogResult u;
        pede(u, quem);
        p->get_msgs_per_day(g.primeiro, g.primeiro + 3 * um_dia - 1, nullptr, &u.msgs_user_day);
        p->get_msgs_per_hour_per_user(g.primeiro, g.primeiro + 3 * um_dia - 1, quem.c_str(),
                                      &u.msgs_hour);
        p->get_user_msgs(nullptr, quem.c_str(), nullptr, 0, 0, g.primeiro,
                         g.primeiro + 3 * um_dia - 1, &u.user_msgs);
        std::array<long, 2> dias{}, horas{}, msgs{};
        for (const MsgsData* d = u.msgs_user_day.first()->m_day.first(); d; d = d->next)
            dias = {dias[0] + d->msgs_ext, dias[1] + d->bytes_ext};
        for (const MsgsData* d = u.msgs_hour.first(); d; d = d->next)
            horas = {horas[0] + d->msgs_ext, horas[1] + d->bytes_ext};
        for (const UserMsgs* m = u.user_msgs.first(); m; m = m->next)
            if (quem == m->sendername) msgs = {msgs[0] + 1, msgs[1] + m->size};
        EXPECT_EQ(dias, quanto) << quem;
        EXPECT_EQ(horas, quanto) << quem;
        EXPECT_EQ(msgs, quanto) << quem;
    }
}

// A range in one piece or a day at a time, with spam, errors and messages over midnight.
TEST(RelatoriosGerais, intervaloInteiroOuEmDias) {
    const Gerado g(false);
    const std::string quem = g.enviadas.begin()->first;
    const auto relata = [&](long passo) {
        const auto p = g.parser();
        LogResult r;
        pede(r, quem);
        std::array<std::array<long, 8>, 24> horas{};
        for (long de = g.primeiro; de < g.primeiro + 3 * um_dia; de += passo) {
            const long ate = de + passo - 1;
            p->get_msgs_per_day(de, ate, &r.msgs_day, nullptr);
            p->get_msgs_per_day(de, ate, nullptr, &r.msgs_user_day);
            LogResult h;
            p->get_msgs_per_hour(de, ate, &h.msgs_hour);
            auto soma = horas.begin();
            for (const MsgsData* d = h.msgs_hour.first(); d; d = d->next, ++soma) {
                const std::uint32_t v[] = {d->msgs_int, d->msgs_ext, d->bytes_int, d->bytes_ext,
                                           d->virus,    d->spam,     d->error,     d->att_blocked};
                for (std::size_t k = 0; k < 8; ++k) (*soma)[k] += v[k];
            }
        }
        const auto outro = g.parser();
        for (long de = g.primeiro; de < g.primeiro + 3 * um_dia; de += passo)
            outro->get_user_msgs("a,b,c", "d,e,f", nullptr, 0, 0, de, de + passo - 1, &r.user_msgs);
        std::string s = texto(r.msgs_day) + texto(r.msgs_user_day) + texto(r.user_msgs);
        for (const auto& h : horas)
            for (const long v : h) s += std::to_string(v) + " ";
        return s;
    };
    const std::string inteiro = relata(3 * um_dia);
    EXPECT_GT(inteiro.size(), 10000u);
    EXPECT_EQ(inteiro, relata(um_dia));
}

TEST(RelatoriosGerais, listaDeArquivosOuPasseio) {
    Relato r;
    r.compacto("2000-01-01", "9 1 1 A INTERNO ana 1|10 1 2 A rui|10 1 4 A")
        .estatistica("2000-01-01", "1 2 1 2 3 4 5 6 7 8\n[1]\nana 1 2 3 4 5 6 7 8\n");
    r.compacto("2000-02-29", "9 1 1 A INTERNO bia 1|10 1 2 A rui|10 1 4 A")
        .estatistica("2000-02-29", "1 2 2 2 3 4 5 6 7 8\n[1]\nana 1 2 3 4 5 6 7 8\n");
    r.compacto("2099-12-31", "9 1 1 A INTERNO ana 2|10 1 2 A rui|10 1 4 A")
        .estatistica("2099-12-31", "1 2 3 2 3 4 5 6 7 8\n[1]\nana 1 2 3 4 5 6 7 8\n");
    std::mt19937 sorte(1);
    const auto novo = [&] {
        auto p = std::make_unique<LogMailFileParser>();
        p->setDataDir(r.arvore.path("DAT").c_str());
        return p;
    };
    int com_linhas = 0;
    for (int i = 0; i < 300; ++i) {
        const long base = hora(i % 3 == 0   ? "2000-01-01 00:00:00"
                               : i % 3 == 1 ? "2000-02-29 00:00:00"
                                            : "2099-12-31 00:00:00");
        const long de = base + static_cast<long>(sorte() % (70 * um_dia)) - 66 * um_dia;
        const long largura = sorte() % 4 == 0 ? static_cast<long>(sorte() % 4) * um_dia - i % 2
                                              : static_cast<long>(sorte() % (70 * um_dia));
        const long ate = std::max(de, de + largura);
        const std::string passeio = tudo(*novo(), de, ate);
        EXPECT_EQ(passeio, tudo_por_lista(*novo(), de, ate)) << de << " " << ate;
        com_linhas += passeio.size() > 100;
    }
    EXPECT_GT(com_linhas, 100);
    // However far the ends lie, the rows and their times are those of the days that can be.
    const long de = hora("1999-12-31 12:34:56"), ate = hora("2099-12-31 23:59:59");
    const std::string todos = tudo(*novo(), de, ate);
    EXPECT_NE(
        todos.find("01 12:34:56: 5 7 6 8 2 1 3 4\n29 12:34:56: 5 7 6 8 2 2 3 4\n31 12:34:56: 5 7"),
        std::string::npos);
    EXPECT_EQ(tudo(*novo(), de - 1000000000 * um_dia, LONG_MAX), todos);
    EXPECT_NE(tudo(*novo(), LONG_MIN, LONG_MAX), tudo(*novo(), LONG_MIN, -1));
    const std::string nada = tudo(*novo(), 5, 4);
    const std::pair<long, long> vazios[] = {
        {ate, de}, {LONG_MAX, LONG_MIN}, {0, LONG_MIN}, {LONG_MAX, 0}};
    for (const auto& [a, b] : vazios) EXPECT_EQ(tudo(*novo(), a, b), nada) << a;
    // Slots of an inverted list: two below a day, one below two days, then none.
    for (const auto& [atras, abertos] :
         {std::pair{1L, 2}, {um_dia - 1, 2}, {um_dia, 1}, {2 * um_dia, 0}}) {
        char nenhum[] = "/nao/ha";
        InputFiles tres[] = {{nenhum, 0}, {nenhum, 0}, {nullptr, 0}};
        params q{};
        r.traco();
        r.p.parse_compact_files(tres, um_dia, um_dia - atras, NONE, &q);
        const std::string t = r.traco();
        EXPECT_EQ(std::count(t.begin(), t.end(), '\n'), abertos) << atras;
    }
}

// Day files of any bytes: no harm, and both ways read the same.
TEST(RelatoriosGerais, arquivosCorrompidos) {
    std::mt19937 sorte(7);
    const std::string t = T("2009-03-15 10:00:00");
    const std::string pedacos[] = {t + " 1 1 A INTERNO ana 100\n",
                                   t + " 2 2 A rui\n",
                                   t + " 2 9 A rui\n",
                                   t + " 2 10 A 550 nao\n",
                                   t + " 2 5 A y\n",
                                   t + " 2 8 A mx\n",
                                   t + " 2 4 A\n",
                                   "[123]\n",
                                   "ana 1 2 3 4 5 6 7 8\n",
                                   "1 2 3 4 5 6 7 8 9 10\n",
                                   t + " 2 ",
                                   " ",
                                   "\n",
                                   "[",
                                   std::string(1, '\0'),
                                   std::string(5000, 'x'),
                                   std::string(2046, ' ') + "\n",
                                   t + " 2 10 A " + std::string(1500, 'w') + "\n",
                                   t + " 2 2 A " + std::string(300, 'r') + "\n"};
    for (int i = 0; i < 60; ++i) {
        Relato r;
        for (const char* dia : {"2009-03-15", "2009-03-16"}) {
            std::string texto[2];
            for (std::string& s : texto)
                for (unsigned n = sorte() % 60; n; --n) {
                    std::string p = pedacos[sorte() % std::size(pedacos)];
                    if (sorte() % 3 == 0) p[sorte() % p.size()] = static_cast<char>(sorte());
                    if (sorte() % 8 == 0) p.resize(sorte() % p.size());
                    s += p;
                }
            r.compacto(dia, "").estatistica(dia, texto[0]);
            r.arvore.write(std::string("DAT/rels_03-09/compact_mail_") + (dia + 8) + ".txt",
                           texto[1]);
        }
        LogMailFileParser outro;
        outro.setDataDir(r.arvore.path("DAT").c_str());
        const long de = hora("2009-03-15 00:00:00");
        EXPECT_EQ(tudo(r.p, de, de + 2 * um_dia - 1),
                  tudo_por_lista(outro, de, de + 2 * um_dia - 1))
            << i;
    }
}

// A parser that answers the same questions again and again holds no more than after the first time;
// an id never seen before costs a little.
TEST(RelatoriosGerais, memoriaParada) {
    Relato r;
    r.p.debugOut = nullptr;
    std::string dia =
        "9 1 1 A INTERNO ana 100|9 2 5 A y|9 2 9 A rui|9 2 10 A fim|9 2 15 B|10 2 2 C rui|10 2 4 A";
    r.compacto("2009-03-15", dia)
        .estatistica("2009-03-15", "1 2 3 4 5 6 7 8 9 10\n[1]\nana 1 2 3 4 5 6 7 8\n");
    const long de = hora("2009-03-15 00:00:00"), ate = de + um_dia - 1;
    for (int i = 0; i < 20; ++i) tudo(r.p, de, ate);
    const std::size_t antes = em_uso();
    for (int i = 0; i < 340; ++i) tudo(r.p, de, ate);  // six reports each
    EXPECT_LE(em_uso(), antes + 1024);

    constexpr int novas = 5000;
    for (int i = 0; i < novas; ++i)
        dia += "|11 1 1 " + std::to_string(1000000000000000 + i) + " INTERNO ana 1";
    r.compacto("2009-03-15", dia);
    const std::size_t sem_elas = em_uso();
    for (int i = 0; i < 3; ++i) tudo(r.p, de, ate);
    EXPECT_LE((em_uso() - sem_elas) / novas, 210u);
}

}  // namespace
