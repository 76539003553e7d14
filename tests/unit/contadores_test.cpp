// The counters of users, who share arrays where they hold the same.
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

// Users come, are counted, zeroed, and go, beside plain arrays of each. Few numbers in few periods,
// so that much is shared.
TEST(Contadores, nadaPassaDeUmUsuarioAOutro) {
    std::mt19937 sorte(3);
    const auto escolhe = [&](std::size_t n) { return static_cast<unsigned>(sorte() % n); };
    struct Par {
        std::unique_ptr<Usuario> u;
        std::vector<std::uint32_t> certo;  // all periods of the first counter, of the second ...
    };
    std::vector<Par> pares;
    for (int passo = 0; passo < 20000; ++passo) {
        if (const unsigned n = std::array{24u, 12u, 48u}[escolhe(3)]; pares.size() < 20)
            pares.push_back(
                {std::make_unique<Usuario>("ana", n), std::vector<std::uint32_t>(8 * n)});
        const unsigned i = escolhe(pares.size()), que = escolhe(40), q = escolhe(8),
                       p = 8 + escolhe(3);
        Par& par = pares[i];
        if (que == 0) {
            pares.erase(pares.begin() + i);
        } else if (que < 8) {
            par.u->reset_vars();
            std::fill(par.certo.begin(), par.certo.end(), 0u);
        } else {
            const int n = std::array{
                1, 1, 0, 100, -1, 0x7FFFFFFF, static_cast<int>(escolhe(1000))}[escolhe(7)];
            ASSERT_EQ((par.u.get()->*adicoes[q])(p, n), 1);
            par.certo[q * par.u->num_periods + p] += static_cast<std::uint32_t>(n);
        }
        for (const Par* x : {&pares.front(), &pares.back(), &pares[escolhe(pares.size())]})
            for (unsigned c = 0; c < x->certo.size(); ++c)
                ASSERT_EQ(arrays(*x->u)[c / x->u->num_periods][c % x->u->num_periods], x->certo[c]);
    }
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
