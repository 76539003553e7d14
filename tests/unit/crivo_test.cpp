// A trace that passes over the lines that cannot matter, against one that reads every line.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <sstream>

#include "tests/unit/apoio/relato.h"

namespace {

using namespace std::string_literals;

// Ids and texts that a hasty look takes for one another: the same beginning or end, one within the
// other, shorter than eight bytes and longer than any window.
const std::string longo(45, 'L');
const std::vector<std::string> ids = {"69AF5F0012345678",
                                      "69AF5F0087654321",
                                      "70AF5F0012345678",
                                      "69AF5F00123456789",
                                      "69AF5F001234567",
                                      "A",
                                      "",
                                      longo + "12345678",
                                      longo + "87654321",
                                      std::string(32, 'i')};
const std::vector<std::string> destinos = {
    "destino.test",  "estino.test",   "o-destino.test", "destino.testa", "mx", "",
    longo + ".test", longo + ".tesu", "rui@y.test",     "eva@y.test"};

class Sorteio {
  public:
    explicit Sorteio(unsigned semente) : motor_(semente) {}
    unsigned ate(unsigned n) { return static_cast<unsigned>(motor_() % n); }
    const std::string& um_de(const std::vector<std::string>& textos) {
        // Mostly one of the first: lines must meet for anything to happen.
        return textos[ate(3) != 0 ? ate(2) : ate(static_cast<unsigned>(textos.size()))];
    }

    // Of 16 lines nine are an OK, an END or a connection error.
    int status() {
        constexpr int todos[] = {OK,         OK,   OK,    END,        ERROR_CONNECT, ERROR_CONNECT,
                                 OK,         OK,   END,   SUBMIT,     ERROR_DEST,    ERROR_SENDER,
                                 ERROR_DATA, SPAM, VIRUS, ERROR_FINAL};
        return todos[ate(std::size(todos))];
    }

    // What follows the time.
    std::string resto() {
        std::string s = " 2 " + std::to_string(status());
        if (ate(40) == 0) return s;  // hits whatever message is traced
        (s += ' ') += um_de(ids);
        if (ate(12) == 0) return s;
        (s += ' ') += um_de(destinos);
        const std::string fins[] = {" mais", " ", "\r", "\0x"s, " 7 8"};
        return ate(6) == 0 ? s + fins[ate(std::size(fins))] : s;
    }

  private:
    std::mt19937 motor_;
};

// The lines of a file twice. A zero in front of its time changes nothing that a line says, and
// makes it one that is not passed over.
struct Linhas {
    std::string usuais, todas;

    explicit Linhas(Sorteio& s) {
        long t = hora("2009-03-15 09:00:00");
        for (unsigned n = 3 + s.ate(60); n > 0; --n) {
            t += s.ate(3);
            std::ostringstream hexa;
            hexa << std::hex << (s.ate(100) == 0 ? t + 86400 : t);
            const std::string linha = hexa.str() + s.resto() + "|";
            usuais += "@" + linha;
            todas += "@0" + linha;
        }
    }
};

TEST(Crivo, nadaQueImporteFica) {
    const std::string d15 = "2009-03-15", inicio = d15 + " 00:00:00", fim = d15 + " 23:59:59";
    Relato usual, lento;
    std::set<std::string> respostas;
    for (unsigned semente = 1; semente <= 1500; ++semente) {
        Sorteio sorte(semente);
        const Linhas linhas(sorte);
        usual.compacto(d15, linhas.usuais);
        lento.compacto(d15, linhas.todas);
        for (const std::string& id : ids) {
            const std::string quer = lento.trace(id.c_str(), inicio, fim);
            ASSERT_EQ(usual.trace(id.c_str(), inicio, fim), quer) << id << "\n" << linhas.usuais;
            respostas.insert(quer);
        }
    }
    EXPECT_GT(respostas.size(), 3000u);  // else little was asked
}

}  // namespace
