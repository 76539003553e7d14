// Whole logs and a last-consolidation file. What comes out depends neither on the size of the reads
// nor on a run before; of a first run over one log, the first day is what the rules say.
#include <cstring>

#include "common/LogMailFileParser.h"
#include "fuzz/apoio.h"
#include "fuzz/referencia.h"

namespace {

using Arquivos = std::map<std::string, std::string>;

// 2009-03-18 12:00:00 UTC: the seeds are of the days before.
constexpr time_t agora = 1237377600;
constexpr time_t mais_antigo = agora - 12 * 86400;

time_t relogio(time_t*) {
    return agora;
}

const Arvore& arvore() {
    static const Arvore a;
    return a;
}

struct Parser : LogMailFileParser {
    Parser() {
        setLogDir(arvore().path("LOGS").c_str());
        setDataDir(arvore().path("DAT").c_str());
        relogio_do_sistema = relogio;
    }
    // Empties the tables.
    void esquece() {
        relogio_do_sistema = [](time_t*) { return time_t{0}; };
        consolidate(nullptr);
    }
};

Arquivos consolida(const std::string& ultimo, std::size_t leitura, bool forcado) {
    if (ultimo.empty())
        arvore().apaga("last");
    else
        arvore().grava("last", ultimo);
    Parser p;
    p.bytes_por_leitura = leitura;
    if (forcado) p.setForceMode();
    p.debugOut = std::fopen(arvore().path("traco").c_str(), "wb");
    exige(p.consolidate(arvore().path("last").c_str()), "without a fault a run succeeds");
    exige(!p.Lista_msg.first() && !p.Lista_usu.first(), "the tables are empty after a run");
    Arquivos tudo = arvore().arquivos("DAT");
    tudo["last"] = arvore().le("last");
    tudo["traco"] = arvore().le("traco");
    return tudo;
}

// The point from which a run would begin, and where it came from; 0 for a run over nothing.
time_t ponto(const std::string& ultimo, time_t primeira_linha) {
    Parser p;
    if (!ultimo.empty()) arvore().grava("last", ultimo);
    const time_t t = ultimo.empty() ? 0 : p.getLastConsolid(arvore().path("last").c_str());
    p.esquece();
    return t != 0 ? t : primeira_linha;
}

// Days of many years would only make the runs slow.
bool cedo_demais(const std::string& ultimo, const std::vector<std::string>& logs) {
    time_t primeira = agora;
    for (const std::string& l : logs) {
        const time_t t =
            referencia::carimbo(l.substr(0, std::min(l.find('\n'), std::size_t{1023})));
        if (t > 0) primeira = std::min(primeira, t);
    }
    const time_t p = ponto(ultimo, primeira);
    return p < mais_antigo;
}

// Lines of a log that has neither NULs nor over-long lines stay lines.
bool bem_formado(const std::string& log) {
    for (const std::string& l : referencia::linhas(log, 2046))
        if (!l.ends_with('\n') || l.find('\0') != std::string::npos) return false;
    return true;
}

void confere_cabecas(const Arquivos& tudo) {
    for (const auto& [nome, texto] : tudo) {
        if (nome.find("compact_mail_") == std::string::npos) continue;
        for (const std::string& l : referencia::linhas(texto, texto.size())) {
            const std::size_t n = l.find_first_not_of("0123456789abcdef");
            exige(n >= 1 && n <= 8 && l[n] == ' ' && l[n + 1] >= '0' && l[n + 1] <= '3' &&
                      l[n + 2] == ' ',
                  "a compact line begins with time and agent");
        }
    }
}

std::string do_dia(const Arquivos& tudo, const char* prefixo, const struct tm& tm) {
    char nome[60];
    std::snprintf(nome, sizeof nome, "DAT/rels_%02d-%02d/%s%02d.txt", tm.tm_mon + 1,
                  tm.tm_year % 100, prefixo, tm.tm_mday);
    const auto achado = tudo.find(nome);
    exige(achado != tudo.end(), "the first day has its files");
    return achado->second;
}

void confere_primeiro_dia(const Arquivos& tudo, const std::string& log) {
    const referencia::Palavras linhas = referencia::linhas(log, 2046);
    time_t inicio = linhas.empty() ? 0 : referencia::carimbo(linhas[0].substr(0, 1023));
    if (inicio <= 0 || inicio >= agora - 86400) return;
    struct tm tm = {};
    localtime_r(&inicio, &tm);
    tm.tm_hour = tm.tm_min = tm.tm_sec = 0;
    tm.tm_isdst = -1;
    inicio = mktime(&tm);
    char dia[32];
    ctime_r(&inicio, dia);

    referencia::Dia quer(inicio);
    std::string compacto;
    std::size_t i = 0;
    const auto antes = [&](const std::string& l) {
        const time_t t = referencia::carimbo(l);
        return t == 0 || t < inicio;
    };
    while (i < linhas.size() && antes(linhas[i])) ++i;
    for (; i < linhas.size() && linhas[i].starts_with(std::string(dia, 10)); ++i) {
        const referencia::Evento e(linhas[i]);
        compacto += e.compacta;
        quer.conta(e);
    }
    exige(do_dia(tudo, "compact_mail_", tm) == compacto, "the first day's compact file");
    exige(do_dia(tudo, "mail_stat_", tm) == quer.estatistica(), "the first day's statistics file");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* dados, std::size_t n) {
    Entrada e(dados, n);
    define_zona(e.byte());
    const unsigned opcoes = e.byte();
    const bool forcado = (opcoes & 1) != 0;
    const std::string ultimo = e.parte();
    std::vector<std::string> logs{e.parte()};
    while (!e.acabou() && logs.size() < 3) logs.push_back(e.parte());
    if (cedo_demais(ultimo, logs)) return 0;

    arvore().apaga("DAT");
    arvore().apaga("LOGS");
    static const char* const nomes[] = {"MAIL_DISPATCHER.LOG", "mail_dispatcher.log.1",
                                        "MAIL_DISPATCHER.LOG.2"};
    for (std::size_t i = 0; i < logs.size(); ++i)
        arvore().grava(std::string("LOGS/") + nomes[i], logs[i]);

    const Arquivos tudo = consolida(ultimo, LeitorLinhas::bloco, forcado);
    for (const std::size_t leitura : {std::size_t{1}, std::size_t{7}, std::size_t{4096}}) {
        // Once into nothing, then over the files of the run before.
        if (leitura == 1) arvore().apaga("DAT");
        exige(consolida(ultimo, leitura, forcado) == tudo, "the same files again");
    }
    bool formados = true;
    for (const std::string& l : logs) formados = formados && bem_formado(l);
    if (formados) confere_cabecas(tudo);
    if (ultimo.empty() && logs.size() == 1) confere_primeiro_dia(tudo, logs[0]);
    return 0;
}
