// What must hold of logs and day files of any bytes.
#include "tests/unit/apoio/incomum.h"

#include "tests/unit/apoio/relato.h"

namespace {

// Hands on every line, with its line feed if it has one.
template <class Acao>
void para_cada_linha(const std::string& texto, Acao acao) {
    for (std::size_t de = 0, ate; de < texto.size(); de = ate) {
        ate = std::min(texto.find('\n', de), texto.size() - 1) + 1;
        acao(de, ate);
    }
}

}  // namespace

std::string log_incomum(std::string log) {
    para_cada_linha(log, [&log](std::size_t de, std::size_t ate) {
        if (ate - de > 28 && log.compare(de + 26, 3, "07 ") == 0) log[de + 27] = ' ';
    });
    return log;
}

std::string compacto_incomum(const std::string& compacto) {
    std::string s;
    para_cada_linha(compacto, [&](std::size_t de, std::size_t ate) {
        const std::string linha = compacto.substr(de, ate - de);
        // A line as long as it may be would be cut elsewhere.
        const bool usual = linha.find_first_not_of("0123456789abcdef") == 8 && linha.size() < 2040;
        s += (usual ? "0" : "") + linha;
    });
    return s;
}

void confere_log(const std::string& registros, const std::string& log) {
    const auto consolida = [&](const std::string& linhas, std::size_t leitura) {
        Rele r;
        r.bytes_por_leitura = leitura;
        r.arvore.write("last", "1 Sun Mar 15 00:00:00 2009\n" + registros);
        r.linha("15 01", "MAILQ END Msg 0").bruto(linhas);
        EXPECT_TRUE(r.consolida("18 00:00:01"));
        std::string tudo = r.ultimo();
        for (const char* dia : {"15", "16", "17"}) tudo += r.compacto(dia) + r.estatistica(dia);
        return tudo;
    };
    const std::string quer = consolida(log, LeitorLinhas::bloco);
    EXPECT_EQ(consolida(log, 1), quer) << log;
    EXPECT_EQ(consolida(log_incomum(log), LeitorLinhas::bloco), quer) << log;
}

void confere_dias(const std::string (&compactos)[2], const std::string (&estatisticas)[2]) {
    Relato usual, lista, incomum;
    for (Relato* r : {&usual, &lista, &incomum})
        for (int i = 0; i < 2; ++i) {
            const std::string dia = std::to_string(15 + i);
            r->arvore.write(arquivo_do_dia(dia, diario::compacto),
                            r == &incomum ? compacto_incomum(compactos[i]) : compactos[i]);
            r->estatistica(dia, estatisticas[i]);
        }
    const long de = hora("15"), ate = hora("16 10:30");
    // The second time, from within the first day on, with what the first one remembers.
    for (const long antes : {0L, 10 * 3600L}) {
        const std::string quer = tudo(usual.p, de + antes, ate);
        EXPECT_EQ(tudo(lista.p, de + antes, ate, true), quer) << compactos[0] << compactos[1];
        EXPECT_EQ(tudo(incomum.p, de + antes, ate), quer) << compactos[0] << compactos[1];
        EXPECT_EQ(incomum.traco(), usual.traco());
        lista.traco();
    }
}
