// Generated traffic through whole consolidations: what must not change the result.
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <vector>

#include "demo/gerador.h"
#include "tests/unit/apoio/incomum.h"
#include "tests/unit/apoio/rele.h"

namespace {

const char* const dias[] = {"15", "16", "17"};
const std::string fim = "18 00:00:01", log_vivo = "LOGS/MAIL_DISPATCHER.LOG";

gerador::Parametros trafego(const Rele& r, bool travessia) {
    gerador::Parametros p;
    p.diretorio = r.arvore.path("LOGS");
    p.primeiro_dia = "2009-03-15";
    p.dias = 4;
    p.mensagens = 1500;
    p.usuarios = 60;
    p.travessia = travessia;
    p.crlf = p.estranhas = 0.01;
    p.rotacao = gerador::rotacao_nenhuma;
    return p;
}

// Days 1 to 3 in one run, or a run a day by new processes: the compact files are equal; with
// nothing in flight at midnight the statistics files too, but for the header's first field, since a
// process begins its first day at the first counted period and every later one at period 0.
TEST(Gerado, umaExecucaoOuUmaPorDia) {
    for (const bool travessia : {false, true}) {
        Rele junto, separado;
        for (Rele* r : {&junto, &separado}) gerador::gera(trafego(*r, travessia));
        junto.consolida(fim);
        for (const auto& [agora, hoje] :
             {std::pair{"16 00:00:01", "\nMon Mar 16"}, {"17 00:00:01", "\nTue Mar 17"}}) {
            separado.consolida(agora);
            // The log of the days done goes away, as rotation makes it.
            const std::string log = separado.arvore.read(log_vivo);
            separado.arvore.write(log_vivo, log.substr(log.find(hoje) + 1));
        }
        separado.consolida(fim);
        int diferentes = 0;
        for (const char* d : dias) {
            EXPECT_GT(junto.compacto(d).size(), 300000u);
            EXPECT_EQ(junto.compacto(d), separado.compacto(d)) << d;
            const std::string a = junto.estatistica(d), b = separado.estatistica(d);
            diferentes += a.substr(a.find(' ')) != b.substr(b.find(' '));
        }
        // Between processes a message in flight loses its sender.
        EXPECT_EQ(diferentes > 0, travessia);
        EXPECT_EQ(junto.ultimo().substr(0, 27), separado.ultimo().substr(0, 27));
    }
}

// However much is read at a time, and whether the log is one file or cut at line ends.
TEST(Gerado, leiturasECortesNaoMudamNada) {
    Rele inteiro;
    auto p = trafego(inteiro, true);
    gerador::gera(p);
    inteiro.consolida(fim);
    for (const std::size_t leitura : {std::size_t{1}, std::size_t{7}, LeitorLinhas::bloco}) {
        Rele r;
        r.bytes_por_leitura = leitura;
        if (leitura == LeitorLinhas::bloco) {
            p.diretorio = r.arvore.path("LOGS");
            p.rotacao = 997;
            gerador::gera(p);
        } else {
            r.arvore.write(log_vivo, inteiro.arvore.read(log_vivo));
        }
        r.consolida(fim);
        for (const char* d : dias) {
            EXPECT_EQ(r.compacto(d), inteiro.compacto(d)) << leitura;
            EXPECT_EQ(r.estatistica(d), inteiro.estatistica(d)) << leitura;
        }
        EXPECT_EQ(r.ultimo(), inteiro.ultimo()) << leitura;
    }
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
