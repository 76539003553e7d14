// What holds of all reports: two ways that must agree, files of any bytes, memory.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <climits>
#include <map>
#include <random>
#include <sstream>

#include "demo/gerador.h"
#include "tests/unit/apoio/incomum.h"
#include "tests/unit/apoio/relato.h"

// Of the sanitizers' allocator, when there is one.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace {

using namespace std::string_literals;

constexpr long um_dia = 86400;
using Soma = std::array<std::uint64_t, 4>;  // int, ext, bytes_int, bytes_ext

// Bytes that the process holds by now, as its allocator counts them.
std::size_t em_uso() {
    if (__sanitizer_get_current_allocated_bytes) return __sanitizer_get_current_allocated_bytes();
    return mallinfo2().uordblks;
}

Soma soma(const DList<MsgsData>& linhas) {
    Soma s{};
    for (const MsgsData* d = linhas.first(); d; d = d->next)
        s = {s[0] + d->msgs_int, s[1] + d->msgs_ext, s[2] + d->bytes_int, s[3] + d->bytes_ext};
    return s;
}

std::unique_ptr<LogMailFileParser> parser(const ArvoreTemporaria& arvore) {
    auto p = std::make_unique<LogMailFileParser>();
    p->setDataDir(arvore.path("DAT").c_str());
    return p;
}

// Three generated days, consolidated.
struct Gerado {
    Rele rele;
    long de = hora("15"), ate = de + 3 * um_dia - 1;

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
        rele.consolida("18 00:00:01");
    }
};

// Where nothing fails and nothing is in flight at midnight, every way of counting gives what the
// log says: of a day, and of a local sender.
TEST(RelatoriosGerais, contamOQueOLogDiz) {
    const Gerado g(true);
    std::map<std::string, Soma> enviadas;
    std::array<Soma, 3> dias{};
    std::istringstream log(g.rele.arvore.read("LOGS/MAIL_DISPATCHER.LOG"));
    for (std::string l; std::getline(log, l) && l.substr(4, 6) < "Mar 18";) {
        const std::size_t submit = l.find(" MAILQ SUBMIT ");
        if (submit == std::string::npos) continue;
        std::istringstream palavras(l.substr(submit));
        std::array<std::string, 10> w;
        for (std::string& x : w) palavras >> x;  // MAILQ SUBMIT Msg id de TYPE remetente x com n
        const bool fora = w[5] != "INTERNO" && w[5] != "SMTPCONNINT";
        Soma& dia = dias[static_cast<std::size_t>(std::stoi(l.substr(8, 2)) - 15)];
        dia[fora] += 1;
        dia[2 + fora] += std::stoul(w[9]);
        if (fora) continue;
        enviadas[w[7]][1] += 1;
        enviadas[w[7]][3] += std::stoul(w[9]);
    }
    const auto p = parser(g.rele.arvore);
    for (long i = 0; i < 3; ++i) {
        LogResult r;
        const long de = g.de + i * um_dia;
        p->get_msgs_per_day(de, de + um_dia - 1, &r.msgs_day, nullptr);
        p->get_msgs_per_hour(de, de + um_dia - 1, &r.msgs_hour);
        EXPECT_EQ(soma(r.msgs_day), dias[static_cast<std::size_t>(i)]);
        EXPECT_EQ(soma(r.msgs_hour), dias[static_cast<std::size_t>(i)]);
    }
    EXPECT_GT(enviadas.size(), 10u);
    for (const auto& [quem, quer] : enviadas) {
        LogResult r;
        pede(r, quem);
        p->get_msgs_per_day(g.de, g.ate, nullptr, &r.msgs_user_day);
        p->get_msgs_per_hour_per_user(g.de, g.ate, quem.c_str(), &r.msgs_hour);
        p->get_user_msgs(nullptr, quem.c_str(), nullptr, 0, 0, g.de, g.ate, &r.user_msgs);
        Soma dele{};
        for (const UserMsgs* m = r.user_msgs.first(); m; m = m->next)
            if (quem == m->sendername) dele = {0, dele[1] + 1, 0, dele[3] + m->size};
        EXPECT_EQ(dele, quer) << quem;
        for (const Soma& s : {soma(r.msgs_user_day.first()->m_day), soma(r.msgs_hour)})
            EXPECT_EQ((Soma{0, s[1], 0, s[3]}), quer) << quem;
    }
}

// A range in one piece or a day at a time, with spam, errors and messages over midnight.
TEST(RelatoriosGerais, intervaloInteiroOuEmDias) {
    const Gerado g(false);
    const auto relata = [&](long passo) {
        const auto p = parser(g.rele.arvore), q = parser(g.rele.arvore);
        LogResult r;
        pede(r, "vendas@metalurgica.example");
        std::array<MsgsData, 24> horas{};
        for (long de = g.de; de < g.ate; de += passo) {
            const long ate = de + passo - 1;
            LogResult h;
            p->get_msgs_per_day(de, ate, &r.msgs_day, nullptr);
            p->get_msgs_per_day(de, ate, nullptr, &r.msgs_user_day);
            p->get_msgs_per_hour(de, ate, &h.msgs_hour);
            q->get_user_msgs("a,b,c", "d,e,f", nullptr, 0, 0, de, ate, &r.user_msgs);
            MsgsData* x = horas.data();
            for (const MsgsData* d = h.msgs_hour.first(); d; d = d->next, ++x)
                for (auto v : {&MsgsData::msgs_int, &MsgsData::bytes_ext, &MsgsData::virus,
                               &MsgsData::spam, &MsgsData::error})
                    x->*v += d->*v;
        }
        for (MsgsData& d : horas) r.msgs_hour.putLast(new MsgsData(d));
        return texto(r.msgs_day) + texto(r.msgs_user_day) + texto(r.user_msgs) +
               texto_horas(r.msgs_hour);
    };
    const std::string inteiro = relata(3 * um_dia);
    EXPECT_GT(inteiro.size(), 10000u);
    EXPECT_EQ(inteiro, relata(um_dia));
}

TEST(RelatoriosGerais, listaDeArquivosOuPasseio) {
    Relato r;
    const std::string dias[] = {"2000-01-01", "2000-02-29", "2099-12-31"};
    for (const std::string& d : dias)
        r.compacto(d, "9 1 1 A INTERNO ana 1|10 1 2 A rui|10 1 4 A")
            .estatistica(d, "1 2 " + d.substr(8) + " 2 3 4 5 6 7 8\n[1]\nana 1 2 3 4 5 6 7 8\n");
    const auto novo = [&] { return parser(r.arvore); };
    std::mt19937 sorte(1);
    int com_linhas = 0;
    for (int i = 0; i < 200; ++i) {
        const long de =
            hora(dias[i % 3]) + static_cast<long>(sorte() % (70 * um_dia)) - 66 * um_dia;
        // Any width, or whole days, or a second less.
        const long largura =
            i % 4 ? static_cast<long>(sorte() % (70 * um_dia)) : i % 5 * um_dia - i % 2;
        const long ate = std::max(de, de + largura);
        const std::string passeio = tudo(*novo(), de, ate);
        EXPECT_EQ(passeio, tudo(*novo(), de, ate, true)) << de << " " << ate;
        com_linhas += passeio.size() > 100;
    }
    const bool cabe = sizeof(long) > 4;  // the end of the century, in a long
    EXPECT_GT(com_linhas, cabe ? 70 : 40);
    // However far the ends lie, the rows and their times are those of the days that can be.
    const long de = hora("1999-12-31 12:34:56"),
               ate = cabe ? hora("2099-12-31 23:59:59") : LONG_MAX;
    const std::string todos = tudo(*novo(), de, ate);
    EXPECT_EQ(todos.substr(0, 62),
              std::string("01 12:34:56: 5 7 6 8 2 1 3 4/29 12:34:56: 5 7 6 8 ") +
                  (cabe ? "2 29 3 4/31 " : "2 29 3 4/ana"));
    EXPECT_EQ(tudo(*novo(), de - (cabe ? 1000000000 : 10000) * um_dia, LONG_MAX), todos);
    EXPECT_GT(tudo(*novo(), LONG_MIN, LONG_MAX).size(), 300u);
    const std::string nada = tudo(*novo(), 5, 4);
    const std::pair<long, long> vazios[] = {{ate, de}, {LONG_MAX, LONG_MIN}, {0, LONG_MIN}};
    for (const auto& [a, b] : vazios) EXPECT_EQ(tudo(*novo(), a, b), nada) << a;
    // Of a list, an inverted range visits two files below a day, one below two days.
    const std::pair<long, int> avessos[] = {
        {1, 2}, {um_dia - 1, 2}, {2 * um_dia - 1, 1}, {2 * um_dia, 0}};
    for (const auto& [atras, abertos] : avessos) {
        char nenhum[] = "/nao/ha";
        InputFiles tres[] = {{nenhum, 0}, {nenhum, 0}, {nullptr, 0}};
        params q{};
        r.p.parse_compact_files(tres, um_dia, um_dia - atras, NONE, &q);
        const std::string t = r.traco();
        EXPECT_EQ(std::count(t.begin(), t.end(), '\n'), abertos) << atras;
    }
}

const std::string t10 = "49bcd1a0";  // 15 March 2009, 10:00
const std::string pedacos[] = {
    t10 + " 1 1 A INTERNO ana 100\n", t10 + " 2 2 A rui\n", t10 + " 2 9 A rui\n",
    t10 + " 2 10 A 550 nao\n", t10 + " 2 5 A rui\n", t10 + " 2 8 A mx\n", t10 + " 2 4 A\n",
    t10 + " 2 4 B\n", t10 + " 2 2 AA rui\n", t10 + " 2 11 A\n", t10 + " 2 15 A\n", t10 + " 2 13\n",
    "49bcd1a1 2 4 B\n", t10 + " 2 ", "[123]\n", "ana 1 2 3 4 5 6 7 8\n", "1 2 3 4 5 6 7 8 9 10\n",
    " ", "\n", "[", std::string(1, '\0'), std::string(5000, 'x'), std::string(2046, ' ') + "\n",
    t10 + " 2 10 A " + std::string(1500, 'w') + "\n",
    t10 + " 2 2 A " + std::string(300, 'r') + "\n",
    // An attempt at no time, a control within a field, the next hour, 128 bytes.
    "00000000 2 7 A\n", t10 + " 1 1 A INTERNO ana\t1 100\n", "49bcdfb0 1 1 B POP eva@y 7\n",
    "49bcdfb0 2 15 A\n", "49bcdfb0 2 18 B\n", t10 + " 2 10 A " + std::string(128 - 16, 'v') + "\n"};

// Pieces in any order, many of them damaged.
std::string corrompido(std::mt19937& sorte, unsigned danos) {
    std::string s;
    for (unsigned k = sorte() % 60; k; --k) {
        std::string p = pedacos[sorte() % std::size(pedacos)];
        if (sorte() % 100 < danos) p[sorte() % p.size()] = static_cast<char>(sorte());
        if (sorte() % 200 < danos) p.resize(sorte() % p.size());
        s += p;
    }
    return s;
}

// Day files of any bytes: no harm, and all ways of reading them tell the same.
TEST(RelatoriosGerais, arquivosCorrompidos) {
    std::mt19937 sorte(7);
    const auto um = [&] { return corrompido(sorte, sorte() % 40); };
    for (int i = 0; i < 200 && !testing::Test::HasFailure(); ++i) {
        const std::string compactos[] = {um(), um()}, estatisticas[] = {um(), um()};
        confere_dias(compactos, estatisticas);
    }
}

// A parser that answers the same questions again and again holds no more than after the first time;
// an id never seen before costs a little.
TEST(RelatoriosGerais, memoriaParada) {
    Relato r;
    r.p.debugOut = nullptr;
    std::string dia = "9 A|9 2 5 A y|9 2 9 A rui|9 2 10 A fim|9 2 15 B|10 2 2 C rui|10 2 4 A";
    r.compacto("15", dia).estatistica("15", "1 2 3 4 5 6 7 8 9 10\n[1]\nana 1 2 3 4 5 6 7 8\n");
    const long de = hora("15"), ate = de + um_dia - 1;
    for (int i = 0; i < 20; ++i) tudo(r.p, de, ate);
    const std::size_t antes = em_uso();
    for (int i = 0; i < 340; ++i) tudo(r.p, de, ate);  // six reports each
    EXPECT_LE(em_uso(), antes + 1024);

    constexpr int novas = 5000;
    for (int i = 0; i < novas; ++i)
        dia += "|11 1 1 " + std::to_string(1000000000000000 + i) + " INTERNO ana 1";
    r.compacto("15", dia);
    const std::size_t sem_elas = em_uso();
    for (int i = 0; i < 3; ++i) tudo(r.p, de, ate);
    EXPECT_LE((em_uso() - sem_elas) / novas, 210u);
}

}  // namespace
