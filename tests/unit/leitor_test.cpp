// The block reader against fgets, and stamps with the hour kept against the C library.
#include "misc/leitor.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstring>
#include <random>

#include "common/relogio.h"
#include "misc/ncutils.h"
#include "tests/unit/apoio/rele.h"

namespace {

// Line by line and by batches, whatever is asked of the system at a time. Many lines are so short
// that several end within 64 bytes.
TEST(Leitor, leComoFgets) {
    ArvoreTemporaria arvore;
    std::mt19937 sorte(3);
    std::string texto;
    for (int i = 0; i < 400; ++i) {
        const unsigned ate = i % 10 == 0 ? 9000 : i % 2 ? 15 : 120;
        texto.append(sorte() % ate, static_cast<char>('a' + i % 26));
        if (i % 50 == 0) texto += '\0';
        texto += '\n';
    }
    texto += "sem fim";
    arvore.write("f", texto);
    constexpr std::size_t lote = 80;
    for (const std::size_t leitura :
         {std::size_t{1}, std::size_t{7}, std::size_t{4096}, LeitorLinhas::bloco})
        for (const std::size_t limite : {std::size_t{10}, std::size_t{2046}})
            for (const std::size_t max : {std::size_t{1}, std::size_t{5}, lote}) {
                const Stream a = abre_leitura(arvore.path("f").c_str());
                const Stream b = abre_leitura(arvore.path("f").c_str());
                LeitorLinhas leitor;
                leitor.comeca(fileno(a.get()), leitura);
                LeitorLinhas::Trecho linhas[lote];
                std::vector<char> linha(limite + 1);
                std::string lido;
                for (std::size_t n; (n = leitor.varias(linhas, max, limite)) != 0;)
                    for (std::size_t i = 0; i < n; ++i) {
                        lido.append(linhas[i].inicio, linhas[i].tamanho);
                        ASSERT_TRUE(
                            std::fgets(linha.data(), static_cast<int>(limite) + 1, b.get()));
                        ASSERT_EQ(lido.size(), static_cast<std::size_t>(std::ftell(b.get())));
                    }
                EXPECT_EQ(lido, texto);
            }
}

TEST(Leitor, diretorioDaErro) {
    ArvoreTemporaria arvore;
    const Stream d = abre_leitura(arvore.path().c_str());
    LeitorLinhas leitor;
    leitor.comeca(fileno(d.get()));
    const char* linha;
    EXPECT_EQ(leitor.proxima(&linha, 100), 0u);
    EXPECT_EQ(leitor.erro(), EISDIR);
}

// The signal's own handler brings the line that the interrupted read waits for.
TEST(Leitor, sinalNaoInterrompe) {
    static int cano[2];
    ASSERT_EQ(pipe(cano), 0);
    struct sigaction acao = {}, antes;
    acao.sa_handler = [](int) { EXPECT_EQ(write(cano[1], "linha\n", 6), 6); };
    ASSERT_EQ(sigaction(SIGALRM, &acao, &antes), 0);
    const itimerval daqui_a_pouco = {{0, 0}, {0, 50000}};
    ASSERT_EQ(setitimer(ITIMER_REAL, &daqui_a_pouco, nullptr), 0);
    LeitorLinhas leitor;
    leitor.comeca(cano[0]);
    const char* linha;
    EXPECT_EQ(leitor.proxima(&linha, 100), 6u);
    EXPECT_EQ(leitor.erro(), 0);
    sigaction(SIGALRM, &antes, nullptr);
    for (const int fd : cano) close(fd);
}

TEST(Relogio, stamps) {
    const Zona zona("UTC0");
    Relogio r;
    const std::pair<const char*, time_t> casos[] = {
        {"Sun Mar 15 10:20:30 2009", 1237112430},
        {"??? Mar 15 10:20:30 2009: 07", 1237112430},
        {"Sun Mar  5 10:20:30 2009", 1236248430},
        {"Sun Mar 05 10:20:30 2009", 1236248430},
        {"Sun May 15 10:20:30 2009", 1242382830},
        {"Sun Jun 15 10:20:30 2009", 1245061230},
        {"Sun Jul 15 10:20:30 2009", 1247653230},
        {"Sun Apr 15 10:20:30 2009", 1239790830},
        {"Sun Aug 15 10:20:30 2009", 1250331630},
        {"Sun Feb 31 00:00:00 2009", 1236038400},
        {"Sun Xxx 15 10:20:30 2009", 0},
        {"Sun Mar 15 10:20:30 1999", 0},
        {"Sun Mar 32 10:20:30 2009", 0},
        {"Sun Mar  0 10:20:30 2009", 0},
        {"Sun Mar 15 24:20:30 2009", 0},
        {"Sun Mar 15 10:20:30 2009", 1237112430},  // from here on the hour is kept
        {"Sun Mar 15 10:20930 2009", 0},
        {"Sun Mar 15 10:20:3092009", 0},
        {"Sun Mar 15 10:60:30 2009", 0},
        {"Sun Mar 15 10:20:60 2009", 0},
        {"Sun Mar 15 10:20:30 200", 0},
        {"Sun Mar 15 10:20:30 20093", 1237112430},
        {"Sun Mar 15 10:-2:30 2009", 1237111110},
        {"", 0},
        {"Sun", 0},
    };
    for (const bool guardando : {false, true}) {
        if (guardando) r.comeca();
        for (const auto& [stamp, t] : casos) {
            EXPECT_EQ(r.do_registro(stamp), t) << stamp;
            char linha[64] = {};
            std::strcpy(linha, stamp);
            EXPECT_EQ(r.da_linha(linha), t) << stamp;
            EXPECT_EQ(r.da_linha(linha), t) << stamp;  // now remembered, if it may be
        }
    }
}

// A year of stamps in zones that shift at midnight, at one o'clock and by half an hour.
TEST(Relogio, guardarAHoraNaoMudaNada) {
    for (const char* tz : {"America/Sao_Paulo", "Europe/Lisbon", "Australia/Lord_Howe"}) {
        const Zona zona(tz);
        Relogio guarda, direto;
        guarda.comeca();
        for (time_t t = 1514764800; t < 1514764800 + 366 * 86400; t += 419) {
            char stamp[32];
            ctime_r(&t, stamp);
            const time_t esperado = direto.do_registro(stamp);
            ASSERT_EQ(guarda.do_registro(stamp), esperado) << tz << " " << stamp;
            ASSERT_EQ(guarda.da_linha(stamp), esperado) << tz << " " << stamp;
            ASSERT_EQ(guarda.hora_do_dia(t), direto.hora_do_dia(t)) << tz << " " << stamp;
        }
    }
}

}  // namespace
