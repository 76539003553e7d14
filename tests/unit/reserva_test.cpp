// The records' memory: places are distinct, used again, and go back to the system.
#include "misc/reserva.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "common/Trabalho.h"

namespace {

void lugares(std::size_t tamanho, std::size_t bloco) {
    const std::size_t num_bloco = bloco / tamanho;
    Reserva reserva(tamanho, bloco);
    std::mt19937 sorte(5);
    std::vector<std::pair<char*, char>> tomados;
    const auto toma = [&] {
        char* p = static_cast<char*>(reserva.toma());
        const char marca = static_cast<char>(sorte());
        std::memset(p, marca, tamanho);
        tomados.emplace_back(p, marca);
    };
    const auto devolve = [&] {
        std::swap(tomados[sorte() % tomados.size()], tomados.back());
        const auto [p, marca] = tomados.back();
        for (std::size_t i = 0; i < tamanho; ++i) ASSERT_EQ(p[i], marca);
        reserva.devolve(p);
        tomados.pop_back();
    };
    EXPECT_EQ(reserva.blocos(), 0u);
    for (int vez = 0; vez < 3; ++vez) {
        while (tomados.size() < 3 * num_bloco) toma();
        const std::size_t cheios = reserva.blocos();
        EXPECT_LE(cheios, 4u);
        // What is given back here and there is handed out before more memory is asked for.
        for (std::size_t i = 0; i < num_bloco; ++i) devolve();
        for (std::size_t i = 0; i < num_bloco; ++i) toma();
        EXPECT_EQ(reserva.blocos(), cheios);
        while (tomados.size() > (vez == 1 ? num_bloco / 2 : 0)) devolve();
    }
    EXPECT_EQ(reserva.blocos(), 0u);
}

TEST(Reserva, lugaresSaoDistintosEVoltam) {
    lugares(144, Reserva::bloco);
    lugares(40, std::size_t{64} * 1024);
}

// The room of a sender outlasts his being unknown: an id too long to be found has that in each
// report that is repeated.
TEST(Reserva, lugarDoRemetenteFica) {
    Trabalhos trabalhos;
    const std::string id(24, 'i');
    const char* lugar = trabalhos.novo(Chave(id.c_str()), "ana@local.test")->sendername();
    EXPECT_STREQ(lugar, "ana@local.test");
    EXPECT_EQ(trabalhos.novo(Chave(id.c_str()), nullptr)->sendername(), nullptr);
    EXPECT_EQ(trabalhos.novo(Chave(id.c_str()), "eva")->sendername(), lugar);
    EXPECT_STREQ(lugar, "eva");
}

}  // namespace
