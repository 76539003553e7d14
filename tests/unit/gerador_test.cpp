// The log generator: what the demo, the bench and the other tests take for granted of its logs.
#include "demo/gerador.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <vector>

#include "tests/unit/apoio/arvore.h"

namespace fs = std::filesystem;

namespace {

class GeradorLogs : public testing::Test {
  protected:
    void SetUp() override {
        p_.primeiro_dia = "2026-03-10";
        p_.mensagens = 3000;
        p_.usuarios = 50;
    }

    // Generates by p_ into a new directory and answers its log: the pieces by name, the live file
    // last.
    std::string gera() {
        p_.diretorio = raiz_.path(std::to_string(++vez_));
        resumo_ = gerador::gera(p_);
        std::vector<fs::path> pecas(fs::directory_iterator(p_.diretorio), fs::directory_iterator());
        std::sort(pecas.begin(), pecas.end());
        std::rotate(pecas.begin(), pecas.begin() + 1, pecas.end());
        pecas_ = pecas.size();
        std::ostringstream log;
        for (const auto& peca : pecas) log << std::ifstream(peca, std::ios::binary).rdbuf();
        return log.str();
    }

    // Calls `f(line, seconds since the first midnight)`; the zone is one without changes.
    template <class F>
    void para_cada_linha(const std::string& log, F f) {
        std::istringstream linhas(log);
        for (std::string l; std::getline(linhas, l);)
            f(l, std::stol(l.substr(8, 2)) * 86400 + std::stol(l.substr(11, 2)) * 3600 +
                     std::stol(l.substr(14, 2)) * 60 + std::stol(l.substr(17, 2)) - 10 * 86400);
    }

    gerador::Parametros p_;
    gerador::Resumo resumo_;
    std::size_t pecas_ = 0;

  private:
    ArvoreTemporaria raiz_;
    int vez_ = 0;
};

TEST_F(GeradorLogs, SameSeedSameBytes) {
    p_.crlf = p_.estranhas = 0.01;
    const std::string log = gera();
    EXPECT_EQ(log.size(), resumo_.bytes);
    EXPECT_EQ(static_cast<std::uint64_t>(std::count(log.begin(), log.end(), '\n')), resumo_.linhas);
    EXPECT_EQ(gera(), log);
    ++p_.semente;
    EXPECT_NE(gera(), log);
}

TEST_F(GeradorLogs, LinesInTimeOrderSixToEightAMessageBusyInTheOffice) {
    p_.dias = 2;
    long antes = 0, escritorio = 0, submetidas = 0;
    para_cada_linha(gera(), [&](const std::string& l, long t) {
        EXPECT_LE(antes, t) << l;
        antes = t;
        if (l.find(" MAILQ SUBMIT ") == std::string::npos) return;
        ++submetidas;
        escritorio += t % 86400 / 3600 >= 8 && t % 86400 / 3600 < 18;
    });
    EXPECT_EQ(submetidas, 6000);
    EXPECT_GE(resumo_.linhas, 6u * 6000);
    EXPECT_LE(resumo_.linhas, 8u * 6000);
    EXPECT_GT(escritorio, submetidas * 6 / 10);
}

TEST_F(GeradorLogs, MidnightFindsMessagesInFlightOnlyWhenAllowed) {
    p_.dias = 2;
    for (const bool travessia : {true, false}) {
        p_.travessia = travessia;
        struct Vida {
            long primeiro, ultimo;
            bool fim;
        };
        std::map<std::string, Vida> vidas;
        para_cada_linha(gera(), [&](const std::string& l, long t) {
            const auto [v, nova] =
                vidas.try_emplace(l.substr(l.find(" Msg ") + 5, 16), Vida{t, t, false});
            EXPECT_EQ(nova, l.find(" SUBMIT ") != std::string::npos) << l;
            EXPECT_FALSE(v->second.fim) << l;
            v->second.ultimo = t;
            v->second.fim =
                l.find(" END ") != std::string::npos || l.find(" VIRUS ") != std::string::npos;
        });
        EXPECT_EQ(vidas.size(), 6000u);
        const auto cruza = std::count_if(vidas.begin(), vidas.end(), [](const auto& v) {
            return v.second.primeiro / 86400 != v.second.ultimo / 86400;
        });
        const auto abertas =
            std::count_if(vidas.begin(), vidas.end(), [](const auto& v) { return !v.second.fim; });
        EXPECT_EQ(cruza > 0, travessia);
        EXPECT_EQ(abertas > 0, travessia);
    }
}

TEST_F(GeradorLogs, IdsMayBeginAlikeAndStayDifferent) {
    for (const char* inicio : {"", "ABC", "69AF5F00"}) {
        p_.inicio_dos_ids = inicio;
        std::set<std::string> ids;
        para_cada_linha(gera(), [&](const std::string& l, long) {
            if (l.find(" SUBMIT ") == std::string::npos) return;
            const std::size_t id = l.find(" Msg ") + 5;
            EXPECT_EQ(l.compare(id, std::strlen(inicio), inicio), 0) << l;
            EXPECT_EQ(l.find(' ', id), id + 16) << l;
            ids.insert(l.substr(id, 16));
        });
        EXPECT_EQ(ids.size(), p_.mensagens);
    }
}

TEST_F(GeradorLogs, RotatedPiecesAreTheLogCutAtLineEnds) {
    p_.dias = 2;
    p_.rotacao = gerador::rotacao_nenhuma;
    const std::string log = gera();
    EXPECT_EQ(pecas_, 1u);
    p_.rotacao = gerador::rotacao_diaria;
    EXPECT_EQ(gera(), log);
    EXPECT_EQ(pecas_, 2u);
    p_.rotacao = 1000;
    EXPECT_EQ(gera(), log);
    EXPECT_NEAR(static_cast<double>(pecas_), static_cast<double>(resumo_.linhas) / 1000, 1.5);
    EXPECT_EQ(pecas_, resumo_.arquivos);
}

// The words behind `antes` on the lines that have it.
std::vector<std::string> palavras(const std::string& log, const std::string& antes) {
    std::vector<std::string> achadas;
    for (std::size_t i = 0; (i = log.find(antes, i)) != std::string::npos;) {
        i += antes.size();
        achadas.push_back(log.substr(i, log.find_first_of(" \n", i) - i));
    }
    return achadas;
}

TEST_F(GeradorLogs, RecipientsThatNeverRepeat) {
    p_.destinatarios = 10;
    p_.travessia = false;
    p_.so_entregas();
    const auto quem = palavras(gera(), " para ");
    EXPECT_EQ(quem.size(), 30000u);
    EXPECT_EQ(std::set(quem.begin(), quem.end()).size(), 30000u);
}

TEST_F(GeradorLogs, OutsideSendersFromSoManyNamesAndDomains) {
    p_.nomes_externos = 50;
    p_.dominios_externos = 60;
    std::set<std::string> nomes, dominios, todos;
    for (const auto& r : palavras(gera(), " de SMTPCONNEXT remetente ")) {
        const std::size_t arroba = r.find('@');
        if (arroba == std::string::npos) continue;  // a bounce
        nomes.insert(r.substr(0, arroba));
        dominios.insert(r.substr(arroba + 1));
        todos.insert(r);
    }
    EXPECT_EQ(nomes.size(), 50u);
    EXPECT_EQ(dominios.size(), 60u);
    EXPECT_GT(todos.size(), 900u);  // of 3000 that there are, and some 1200 drawn
}

TEST_F(GeradorLogs, RefusesWhatMakesNoSense) {
    p_.nomes_externos = 5;
    EXPECT_THROW(gera(), std::invalid_argument) << "names without domains";
    p_.nomes_externos = 0;
    gera();
    EXPECT_THROW(gerador::gera(p_), std::system_error) << "a directory with logs in it";
    for (const char* dia : {"2026-02-30", "2026-3-10", "hoje", "2026-03-10x"}) {
        p_.primeiro_dia = dia;
        EXPECT_THROW(gera(), std::invalid_argument) << dia;
    }
    p_.primeiro_dia = "2026-03-10";
    for (const char* inicio : {"123456789", "a b"}) {
        p_.inicio_dos_ids = inicio;
        EXPECT_THROW(gera(), std::invalid_argument) << inicio;
    }
}

}  // namespace
