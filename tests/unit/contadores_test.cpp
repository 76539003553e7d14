// The counters of many users, who share arrays, against plain arrays of each.
#include "common/Contadores.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>
#include <vector>

#include "common/Usuario.h"

namespace {

constexpr std::array adicoes = {
    &Usuario::incSent,  &Usuario::incRecv, &Usuario::addSentBytes, &Usuario::addRecvBytes,
    &Usuario::incVirus, &Usuario::incSpam, &Usuario::incErro,      &Usuario::incAttBlocked};

std::array<const std::uint32_t*, 8> arrays(const Usuario& u) {
    return {u.sent, u.recv, u.bytes_sent, u.bytes_recv, u.virus, u.spam, u.error, u.att_blocked};
}

// A user, and what should stand in his arrays.
struct Par {
    explicit Par(unsigned periodos)
        : u(std::make_unique<Usuario>("ana", periodos)), certo(8 * u->num_periods) {}

    void confere() const {
        const unsigned n = u->num_periods;
        for (unsigned q = 0; q < 8; ++q) {
            std::uint32_t soma = 0;
            for (unsigned p = 0; p < n; ++p) {
                ASSERT_EQ(arrays(*u)[q][p], certo[q * n + p]) << q << " " << p << " of " << n;
                soma += certo[q * n + p];
            }
            ASSERT_EQ(u->count(static_cast<InfoType>(q), -1), soma);
        }
    }

    std::unique_ptr<Usuario> u;
    std::vector<std::uint32_t> certo;
};

// Few numbers in few periods, so that much is shared, and some that are rare; users come, are
// counted, zeroed, and go.
TEST(Contadores, nadaPassaDeUmUsuarioAOutro) {
    std::mt19937 sorte(3);
    const auto escolhe = [&](unsigned n) { return static_cast<unsigned>(sorte() % n); };
    constexpr unsigned periodos[] = {24, 24, 24, 12, 0, 25, 48};
    constexpr int numeros[] = {1, 1, 1, 0, 100, -1, 0x7FFFFFFF};
    std::vector<Par> pares;
    unsigned partilhados = 0;
    for (int passo = 0; passo < 20000; ++passo) {
        const unsigned que = escolhe(40);  // 0: one more user; 1: one less; 3 to 9: zeroed
        if (que == 0 || pares.size() < 20) pares.emplace_back(periodos[escolhe(7)]);
        const unsigned i = escolhe(static_cast<unsigned>(pares.size()));
        Par& par = pares[i];
        if (que >= 3 && que < 10) {
            par.u->reset_vars();
            std::fill(par.certo.begin(), par.certo.end(), 0u);
        } else if (que == 1 && pares.size() > 20) {
            pares.erase(pares.begin() + i);
            continue;
        } else {
            const unsigned q = escolhe(8), p = 8 + escolhe(3);
            const int n = escolhe(4) ? numeros[escolhe(7)] : static_cast<int>(escolhe(1000));
            ASSERT_EQ((par.u.get()->*adicoes[q])(p, n), 1);
            par.certo[q * par.u->num_periods + p] += static_cast<std::uint32_t>(n);
            const Par& outro = pares[escolhe(static_cast<unsigned>(pares.size()))];
            partilhados += &outro != &par && arrays(*outro.u)[q] == arrays(*par.u)[q] &&
                           par.u->count(static_cast<InfoType>(q), -1) != 0;
            outro.confere();
        }
        par.confere();
    }
    for (const Par& par : pares) par.confere();
    EXPECT_GT(partilhados, 20u);
}

// What a name costs on a day of many: an array of its own only from the second number on.
TEST(Contadores, quemRecebeOMesmoPartilha) {
    const std::uint32_t* zeros = contadores::zeros();
    Usuario a("a", 24), b("b", 12), c("c", 24), longo("l", 25);
    for (const Usuario* u : {&a, &b})
        for (const std::uint32_t* array : arrays(*u)) EXPECT_EQ(array, zeros);
    for (const std::uint32_t* array : arrays(longo)) EXPECT_NE(array, zeros);
    a.addRecvBytes(9, 5000);
    b.addRecvBytes(9, 5000);
    c.addRecvBytes(10, 5000);
    longo.addRecvBytes(9, 5000);
    EXPECT_EQ(a.bytes_recv, b.bytes_recv);
    EXPECT_NE(a.bytes_recv, c.bytes_recv);
    EXPECT_NE(a.bytes_recv, longo.bytes_recv);
    EXPECT_EQ(a.incRecv(24, 1) + b.incRecv(12, 1) + longo.incRecv(25, 1), 0);
    EXPECT_EQ(a.recv, zeros);
    EXPECT_EQ(longo.incRecv(24, 1), 1);
    EXPECT_EQ(longo.recv[24], 1u);
    b.addRecvBytes(9, 1);
    EXPECT_EQ(a.bytes_recv[9], 5000u);
    EXPECT_EQ(b.bytes_recv[9], 5001u);
    // Taken over by the last one who holds it; who now gets the same may not find it.
    const std::uint32_t* antes = a.bytes_recv;
    a.addRecvBytes(9, 2);
    EXPECT_EQ(a.bytes_recv, antes);
    c.reset_vars();
    c.addRecvBytes(9, 5000);
    EXPECT_NE(a.bytes_recv, c.bytes_recv);
    EXPECT_EQ(c.bytes_recv[9], 5000u);
    a.reset_vars();
    EXPECT_EQ(a.bytes_recv, zeros);
    // A number that was counted, and is no more, is not the number that is looked for.
    c.addRecvBytes(9, -5000);
    a.addRecvBytes(9, 5000);
    EXPECT_EQ(c.bytes_recv[9], 0u);
    EXPECT_EQ(a.bytes_recv[9], 5000u);
}

}  // namespace
