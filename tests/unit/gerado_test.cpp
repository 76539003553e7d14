// Generated traffic through whole consolidations: what must not change the result.
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <vector>

#include "demo/gerador.h"
#include "tests/unit/apoio/incomum.h"
#include "tests/unit/apoio/rele.h"

namespace {

const std::string dias[] = {"2009-03-15", "2009-03-16", "2009-03-17"};
const std::string fim = "2009-03-18 00:00:01";

gerador::Parametros trafego(const Rele& r, bool travessia) {
    gerador::Parametros p;
    p.diretorio = r.arvore.path("LOGS");
    p.primeiro_dia = dias[0];
    p.dias = 4;
    p.mensagens = 1500;
    p.usuarios = 60;
    p.travessia = travessia;
    p.crlf = p.estranhas = 0.01;
    p.rotacao = gerador::rotacao_nenhuma;
    return p;
}

std::string sem_inicio(const std::string& estatistica) {
    return estatistica.substr(estatistica.find(' '));
}

// Days 1 to 3 in one run, or a run a day by new processes: the compact files are equal; with
// nothing in flight at midnight the statistics files too, but for the header's first field, since a
// process begins its first day at the first counted period and every later one at period 0.
TEST(Gerado, umaExecucaoOuUmaPorDia) {
    for (const bool travessia : {false, true}) {
        Rele junto, separado;
        for (Rele* r : {&junto, &separado}) gerador::gera(trafego(*r, travessia));
        junto.consolida(fim);
        for (const char* agora : {"2009-03-16 00:00:01", "2009-03-17 00:00:01"}) {
            separado.consolida(agora);
            // The log of the days done goes away, as rotation makes it.
            const std::string log = separado.arvore.read("LOGS/MAIL_DISPATCHER.LOG");
            const std::string hoje = agora[9] == '6' ? "\nMon Mar 16" : "\nTue Mar 17";
            separado.arvore.write("LOGS/MAIL_DISPATCHER.LOG", log.substr(log.find(hoje) + 1));
        }
        separado.consolida(fim);
        int diferentes = 0;
        for (const std::string& d : dias) {
            EXPECT_GT(junto.compacto(d).size(), 300000u);
            EXPECT_EQ(junto.compacto(d), separado.compacto(d)) << d;
            diferentes += sem_inicio(junto.estatistica(d)) != sem_inicio(separado.estatistica(d));
        }
        // Between processes a message in flight loses its sender.
        EXPECT_EQ(diferentes > 0, travessia);
        EXPECT_EQ(junto.ultimo().substr(0, 27), separado.ultimo().substr(0, 27));
    }
}

TEST(Gerado, tamanhoDaLeituraNaoMudaNada) {
    Rele padrao;
    gerador::gera(trafego(padrao, true));
    padrao.consolida(fim);
    for (const std::size_t n : {std::size_t{1}, std::size_t{7}, std::size_t{4096}}) {
        Rele r;
        r.arvore.write("LOGS/MAIL_DISPATCHER.LOG", padrao.arvore.read("LOGS/MAIL_DISPATCHER.LOG"));
        r.bytes_por_leitura = n;
        r.consolida(fim);
        for (const std::string& d : dias) {
            EXPECT_EQ(r.compacto(d), padrao.compacto(d)) << n;
            EXPECT_EQ(r.estatistica(d), padrao.estatistica(d)) << n;
        }
        EXPECT_EQ(r.ultimo(), padrao.ultimo()) << n;
    }
}

// The same log in one piece or cut at line ends.
TEST(Gerado, cortesDoLogNaoMudamNada) {
    Rele inteiro, cortado;
    auto p = trafego(inteiro, true);
    gerador::gera(p);
    p.diretorio = cortado.arvore.path("LOGS");
    p.rotacao = 997;
    gerador::gera(p);
    inteiro.consolida(fim);
    cortado.consolida(fim);
    for (const std::string& d : dias) {
        EXPECT_EQ(cortado.compacto(d), inteiro.compacto(d));
        EXPECT_EQ(cortado.estatistica(d), inteiro.estatistica(d));
    }
    EXPECT_EQ(cortado.ultimo(), inteiro.ultimo());
}

// Lines as no dispatcher should write them: words missing, cut and damaged, ends of all kinds.
TEST(Gerado, logsCorrompidos) {
    std::istringstream tabela(
        "MAILQ SUBMIT Msg # de INTERNO remetente ana@x com 70 bytes|MAILQ OK Msg # para rui@y.test|"
        "MAILQ SUBMIT Msg # de SMTPCONNEXT remetente com 9 bytes|MAILSMTP OK Msg # para rui@y.test|"
        "MAILSMTP DELIVER Msg #|MAILSMTP END Msg #|MAILSMTP ERROR_CONNECT Msg # em a y.test|CRON|"
        "MAILSMTP ERROR_FINAL Msg # 550 nao existe|MAILSMTP RETRY_DEST Msg # para x|"
        "ANTIVIRUS VIRUS Msg #|SPAMCATCHER TAGGED Msg #|POPSRV READ usr ana 3");
    std::vector<std::string> eventos;
    for (std::string e; std::getline(tabela, e, '|');) eventos.push_back(e);
    const std::string maus(" \t\r\n\0\xE1", 6);
    std::mt19937 sorte(5);
    for (int vez = 0; vez < 60 && !HasFailure(); ++vez) {
        std::string log;
        for (int i = 0; i < 150; ++i) {
            std::string l = eventos[sorte() % eventos.size()];
            if (const std::size_t id = l.find('#'); id < l.size())
                l.replace(id, 1, sorte() % 20 ? 1 : 40, static_cast<char>('A' + sorte() % 4));
            l.insert(0, "Sun Mar 15 10:20:30 2009: 07 ");
            l[9] = static_cast<char>('5' + i / 60);
            if (sorte() % 4 == 0) l[27 + sorte() % (l.size() - 27)] = maus[sorte() % maus.size()];
            if (sorte() % 12 == 0) l.insert(l.size() - 2, 1, maus[sorte() % maus.size()]);
            if (sorte() % 12 == 0) l.resize(sorte() % l.size());
            if (sorte() % 60 == 0) l.append(3000, 'x');
            log += l + (sorte() % 9 ? "\n" : "\r\n");
        }
        confere_log("", log);
    }
}

}  // namespace
