// Command line of the log generator. Prints one line: messages, lines, bytes and files written.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>

#include "demo/gerador.h"

namespace {

std::uint64_t le_rotacao(const std::string& texto) {
    if (texto == "dia") return gerador::rotacao_diaria;
    if (texto == "nenhuma") return gerador::rotacao_nenhuma;
    return std::stoull(texto);
}

// "dia", "nenhuma" or a number of lines that is not 0.
std::string confere_rotacao(const std::string& texto) {
    if (texto == "dia" || texto == "nenhuma") return "";
    return CLI::Range(std::uint64_t{1}, std::uint64_t{1} << 40)(texto);
}

}  // namespace

int main(int argc, char** argv) {
    gerador::Parametros p;
    std::string rotacao = "dia";
    bool sem_travessia = false, so_entregas = false;

    CLI::App app{
        "Writes the dispatcher logs of an invented mail relay, the same for the same seed."};
    app.option_defaults()->always_capture_default();
    app.add_option("diretorio", p.diretorio, "where to write; must hold no logs yet")->required();
    app.add_option("primeiro-dia", p.primeiro_dia, "first day, YYYY-MM-DD, in the zone of TZ")
        ->required();
    app.add_option("--dias", p.dias, "number of days")->check(CLI::Range(1, 3660));
    app.add_option("--mensagens", p.mensagens, "messages submitted a day");
    app.add_option("--usuarios", p.usuarios, "local users")->check(CLI::Range(1, 100000000));
    app.add_option("--destinatarios", p.destinatarios,
                   "recipients of each message, names that never repeat; 0: few, who repeat")
        ->check(CLI::Range(0, 1000));
    const auto de_fora = [&app](const std::string& nome, unsigned& valor,
                                const std::string& texto) {
        return app.add_option("--" + nome, valor, texto)->check(CLI::Range(0, 1000000));
    };
    auto* nomes = de_fora("nomes-externos", p.nomes_externos,
                          "outside senders: so many names in each outside domain; 0: they repeat");
    auto* dominios = de_fora("dominios-externos", p.dominios_externos, "outside domains");
    nomes->needs(dominios);
    dominios->needs(nomes);
    app.add_option("--semente", p.semente, "seed");
    app.add_option("--inicio-dos-ids", p.inicio_dos_ids,
                   "what all ids begin with, at most 8 characters; empty: their time");
    app.add_option("--rotacao", rotacao, "a file a day (dia), one file (nenhuma), or lines a file")
        ->check(CLI::Validator(confere_rotacao, "dia|nenhuma|LINES"));
    app.add_flag("--sem-travessia", sem_travessia, "nothing is in flight at midnight");

    app.add_flag("--so-entregas", so_entregas,
                 "every message is delivered: no spam, virus, held message or error");

    const auto parte = [&app](const std::string& nome, double& valor, const std::string& texto) {
        app.add_option("--" + nome, valor, texto)->check(CLI::Range(0.0, 1.0))->group("Shares");
    };
    parte("spam", p.spam, "of messages: spam");
    parte("virus", p.virus, "of messages: a virus");
    parte("retidas", p.retidas, "of messages: held for hours or days");
    for (std::size_t i = 0; i < p.erros.size(); ++i)
        parte(std::string("erro-") + gerador::tipos_erro[i].opcao, p.erros[i],
              std::string("of messages: ") + gerador::tipos_erro[i].status);
    parte("sem-remetente", p.sem_remetente, "of messages: bounces, without a sender");
    parte("crlf", p.crlf, "of lines: ended by CR LF");
    parte("estranhas", p.estranhas, "of lines: followed by one that is no event of a message");
    parte("partem-dia", p.partem_dia,
          "of lines: followed by one that ends the day for its readers");
    CLI11_PARSE(app, argc, argv);

    if (so_entregas) p.so_entregas();
    p.travessia = !sem_travessia;
    p.rotacao = le_rotacao(rotacao);
    try {
        const gerador::Resumo r = gerador::gera(p);
        std::printf("%llu mensagens, %llu linhas, %llu bytes, %u arquivos\n",
                    static_cast<unsigned long long>(r.mensagens),
                    static_cast<unsigned long long>(r.linhas),
                    static_cast<unsigned long long>(r.bytes), r.arquivos);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "gera_logs: %s\n", e.what());
        return 1;
    }
}
