// The log generator: what the demo, the bench and the other tests take for granted of its logs.
#include "demo/gerador.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

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
        std::set<fs::path> pecas(fs::directory_iterator(p_.diretorio), fs::directory_iterator());
        pecas_ = pecas.size();
        std::ostringstream log;
        const fs::path vivo = *pecas.begin();
        for (pecas.erase(pecas.begin()); const auto& peca : pecas)
            log << std::ifstream(peca, std::ios::binary).rdbuf();
        log << std::ifstream(vivo, std::ios::binary).rdbuf();
        return log.str();
    }

    gerador::Parametros p_;
    gerador::Resumo resumo_;
    std::size_t pecas_ = 0;

  private:
    ArvoreTemporaria raiz_;
    int vez_ = 0;
};

// The same seed gives the same bytes, however they are cut into files.
TEST_F(GeradorLogs, amesmaSementeOMesmoLog) {
    p_.dias = 2;
    p_.crlf = p_.estranhas = 0.01;
    p_.rotacao = gerador::rotacao_nenhuma;
    const std::string log = gera();
    EXPECT_EQ(log.size(), resumo_.bytes);
    EXPECT_EQ(static_cast<std::uint64_t>(std::count(log.begin(), log.end(), '\n')), resumo_.linhas);
    EXPECT_EQ(pecas_, 1u);
    p_.rotacao = gerador::rotacao_diaria;
    EXPECT_EQ(gera(), log);
    EXPECT_EQ(pecas_, 2u);
    p_.rotacao = 1000;
    EXPECT_EQ(gera(), log);
    EXPECT_NEAR(static_cast<double>(pecas_), static_cast<double>(resumo_.linhas) / 1000, 1.5);
    EXPECT_EQ(pecas_, resumo_.arquivos);
    ++p_.semente;
    EXPECT_NE(gera(), log);
}

// Lines in the order of time, six to eight a message, most in office hours; a message begins with
// its submission, says no more behind its end, and crosses midnight only when it may.
TEST_F(GeradorLogs, aVidaDasMensagens) {
    p_.dias = 2;
    p_.inicio_dos_ids = "69AF5F00";
    for (const bool travessia : {true, false}) {
        p_.travessia = travessia;
        struct Vida {
            int primeiro, ultimo;  // days
            bool fim;
        };
        std::map<std::string, Vida> vidas;
        std::istringstream log(gera());
        std::string antes;
        int escritorio = 0, cruza = 0, abertas = 0;
        for (std::string l; std::getline(log, l);) {
            const std::string quando = l.substr(8, 11);
            const int dia = std::stoi(quando);
            EXPECT_LE(antes, quando) << l;
            antes = quando;
            const auto tem = [&l](const char* evento) { return l.find(evento) != l.npos; };
            const auto [v, nova] =
                vidas.try_emplace(l.substr(l.find(" Msg ") + 5, 16), Vida{dia, dia, false});
            EXPECT_EQ(nova, tem(" SUBMIT ")) << l;
            EXPECT_FALSE(v->second.fim) << l;
            v->second = {v->second.primeiro, dia, tem(" END ") || tem(" VIRUS ")};
            escritorio += nova && quando.substr(3, 2) >= "08" && quando.substr(3, 2) < "18";
        }
        for (const auto& [id, v] : vidas) cruza += v.primeiro != v.ultimo, abertas += !v.fim;
        EXPECT_EQ(vidas.size(), 6000u);
        EXPECT_GT(escritorio, 3600);
        EXPECT_GE(resumo_.linhas, 6u * 6000);
        EXPECT_LE(resumo_.linhas, 8u * 6000);
        EXPECT_EQ(cruza > 0, travessia);
        EXPECT_EQ(abertas > 0, travessia);
    }
}

TEST_F(GeradorLogs, recusaOQueNaoFazSentido) {
    p_.nomes_externos = 5;
    EXPECT_THROW(gera(), std::invalid_argument) << "names without domains";
    p_.nomes_externos = 0;
    gera();
    EXPECT_THROW(gerador::gera(p_), std::system_error) << "a directory with logs in it";
    for (const char* inicio : {"123456789", "a b"}) {
        p_.inicio_dos_ids = inicio;
        EXPECT_THROW(gera(), std::invalid_argument) << inicio;
    }
    p_.inicio_dos_ids = "";
    for (const char* dia : {"2026-02-30", "2026-3-10", "hoje", "2026-03-10x"}) {
        p_.primeiro_dia = dia;
        EXPECT_THROW(gera(), std::invalid_argument) << dia;
    }
}

}  // namespace
