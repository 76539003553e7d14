// A small mail relay for tests.
#include "tests/unit/apoio/rele.h"

#include <ctime>
#include <sstream>

namespace {

time_t relogio = 0;
time_t le_relogio(time_t*) {
    return relogio;
}

struct tm separada(const std::string& quando) {
    struct tm tm = {};
    if (!strptime(por_extenso(quando).c_str(), "%Y-%m-%d %H:%M:%S", &tm)) std::abort();
    return tm;
}

}  // namespace

Zona::Zona(const char* tz) : antes_(getenv("TZ") ? getenv("TZ") : "") {
    setenv("TZ", tz, 1);
    tzset();
}

Zona::~Zona() {
    if (antes_.empty())
        unsetenv("TZ");
    else
        setenv("TZ", antes_.c_str(), 1);
    tzset();
}

std::string por_extenso(const std::string& quando) {
    const std::string q = (quando.find('-') == 4 ? "" : "2009-03-") + quando;
    return q + std::string("0000-00-00 00:00:00").substr(std::min<std::size_t>(q.size(), 19));
}

time_t hora(const std::string& quando) {
    struct tm tm = separada(quando);
    tm.tm_isdst = -1;
    return mktime(&tm);
}

std::string T(const std::string& quando) {
    char t[20];
    std::snprintf(t, sizeof t, "%x", static_cast<unsigned>(hora(quando)));
    return t;
}

Rele::Rele(const char* tz) : zona_(tz) {
    std::filesystem::create_directories(arvore.path("LOGS"));
}

Rele& Rele::bruto(const std::string& bytes) {
    std::ofstream(arvore.path("LOGS/MAIL_DISPATCHER.LOG"), std::ios::binary | std::ios::app)
        << bytes;
    return *this;
}

Rele& Rele::linha(const std::string& quando, const std::string& palavras) {
    // The stamp as written, also where a zone skips that hour.
    const struct tm tm = separada(quando);
    char stamp[40];
    std::strftime(stamp, sizeof stamp, "%a %b %e %H:%M:%S %Y", &tm);
    return bruto(std::string(stamp) + ": 07 " + palavras + "\n");
}

Rele& Rele::mensagem(const std::string& quando, const std::string& id, const std::string& de) {
    return linha(quando,
                 "MAILQ SUBMIT Msg " + id + " de INTERNO remetente " + de + " com 100 bytes")
        .linha(quando, "MAILSMTP DELIVER Msg " + id + " tentativa 1")
        .linha(quando, "MAILSMTP OK Msg " + id + " para rui@fora.test")
        .linha(quando, "MAILSMTP END Msg " + id);
}

Rele& Rele::mensagens(std::initializer_list<const char*> todas) {
    for (const std::string m : todas)
        mensagem(m.substr(0, m.rfind(' ')), m.substr(m.rfind(' ') + 1));
    return *this;
}

void Rele::rotaciona(const std::string& nome) {
    std::filesystem::rename(arvore.path("LOGS/MAIL_DISPATCHER.LOG"), arvore.path("LOGS/" + nome));
}

bool Rele::consolida(const std::string& agora, bool forcado) {
    LogMailFileParser p;
    if (forcado) p.setForceMode();
    return consolida(p, agora);
}

bool Rele::consolida(LogMailFileParser& p, const std::string& agora) {
    relogio = hora(agora);
    p.relogio_do_sistema = le_relogio;
    p.bytes_por_leitura = bytes_por_leitura;
    p.setLogDir(arvore.path("LOGS").c_str());
    p.setDataDir(arvore.path("DAT").c_str());
    p.debugOut = std::fopen(arvore.path("traco").c_str(), "wb");
    return p.consolidate(arvore.path("last").c_str());
}

std::string arquivo_do_dia(const std::string& dia, const char* prefixo) {
    const std::string d = por_extenso(dia);
    return "DAT/rels_" + d.substr(5, 2) + "-" + d.substr(2, 2) + "/" + prefixo + d.substr(8, 2) +
           ".txt";
}

std::string Rele::compacto(const std::string& dia) const {
    return arvore.read(arquivo_do_dia(dia, diario::compacto));
}
std::string Rele::estatistica(const std::string& dia) const {
    return arvore.read(arquivo_do_dia(dia, diario::estatistica));
}

std::string Rele::totais(const std::string& dia) const {
    std::istringstream linha(estatistica(dia));
    std::string inicio, fim, resto;
    linha >> inicio >> fim >> std::ws;
    std::getline(linha, resto);
    return resto;
}

std::string Rele::usuario(const std::string& dia, const std::string& nome) const {
    std::istringstream arquivo(estatistica(dia));
    std::string achado, linha;
    for (int periodo = -1; std::getline(arquivo, linha);) {
        periodo += linha[0] == '[';
        if (linha.starts_with(nome + " "))
            achado += std::to_string(periodo) + ":" + linha.substr(nome.size()) + ";";
    }
    return achado;
}

std::string Rele::traco() const {
    std::string t = arvore.read("traco");
    for (std::size_t p; (p = t.find(arvore.path())) != std::string::npos;)
        t.replace(p, arvore.path().size(), "@");
    return t;
}

Memoria::~Memoria() {
    if (stream) std::fclose(stream);
    std::free(texto_);
}

std::string Memoria::texto() {
    std::fflush(stream);
    return {texto_, tamanho_};
}
