// Trees on which consolidations are disturbed, and what is right afterwards.
#include "faults/cenario.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>

#include "demo/gerador.h"

namespace falhas {

namespace fs = std::filesystem;

namespace {

constexpr time_t dia = 86400;  // no clock changes in these days
constexpr char hoje[] = "2009-04-02 12:00:00";
constexpr char pasta_final[] = "DAT/rels_03-09";
constexpr char finais[][40] = {"DAT/rels_03-09/compact_mail_30.txt",
                               "DAT/rels_03-09/mail_stat_30.txt"};

time_t hora(const std::string& quando) {
    struct tm tm = {};
    if (!strptime(quando.c_str(), "%Y-%m-%d %H:%M:%S", &tm)) throw std::invalid_argument(quando);
    tm.tm_isdst = -1;
    return mktime(&tm);
}

time_t relogio = 0;
time_t le_relogio(time_t*) {
    return relogio;
}

bool mesma(const struct stat& a, const struct stat& b) {
    return a.st_ino == b.st_ino && a.st_size == b.st_size && a.st_mode == b.st_mode &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

// Every record ends as it should: a point, then messages of nine fields.
bool inteiro(const std::string& ponto) {
    constexpr std::size_t cabecalho = 27;  // "1 ", a stamp, a line feed
    if (!ponto.starts_with("1 ") || ponto.find('\n') != cabecalho - 1) return false;
    for (std::size_t p = cabecalho; p < ponto.size();) {
        const std::size_t fim = std::min(ponto.find("\r\n", p + 2), ponto.size());
        const std::string registro = ponto.substr(p, fim - p);
        char id[50], marcas[4], de[512];
        int n[3], lidos = 0;
        std::sscanf(registro.c_str(), "\r\n%49s %d %c %c %c %c %d %d %511s%n", id, &n[0],
                    &marcas[0], &marcas[1], &marcas[2], &marcas[3], &n[1], &n[2], de, &lidos);
        // A bounce has no sender: its last field is empty.
        if (lidos != static_cast<int>(registro.size()) && !registro.ends_with(' ')) return false;
        p = fim;
    }
    return true;
}

}  // namespace

const char* nome(int saida) {
    static constexpr const char* nomes[] = {"done", "stopped", "refused", "out of memory",
                                            "another exception"};
    return saida >= 0 && saida <= outra_excecao ? nomes[saida] : "?";
}

Cenario::Cenario(const Feitio& feitio, const std::string& pasta)
    : feitio_(feitio),
      raiz_(pasta + "/" + feitio.nome),
      ultimo_(raiz_ + "/last"),
      agora_(feitio.primeira ? "2009-04-01 12:00:00" : hoje) {
    gerador::Parametros p;
    p.diretorio = raiz_ + "/LOGS";
    p.primeiro_dia = "2009-03-30";
    p.dias = 4;
    p.mensagens = feitio.mensagens;
    p.usuarios = 12;
    p.travessia = feitio.travessia;
    p.estranhas = 0.02;
    p.retidas = feitio.travessia ? 0.2 : 0.004;
    // A day file that cannot be made leaves the day's messages in the point, and behind a bounce
    // messages that never were are read from it.
    if (!feitio.travessia) p.sem_remetente = 0;
    // The first traffic whose days all begin in their first hour.
    for (p.semente = 1; p.semente < 200; ++p.semente) {
        fs::remove_all(raiz_);
        fs::create_directories(raiz_);
        gerador::gera(p);
        if (!feitio.primeira) {
            relogio = hora("2009-03-31 12:00:00");
            consolida();
            velho_ = le("last");
            for (const char* f : finais)
                if (lstat((raiz_ + "/" + f).c_str(), &finais_[f]) != 0)
                    throw std::runtime_error(std::string("no ") + f);
        }
        relogio = hora(agora_);
        if (consolida() != feito) throw std::runtime_error("the undisturbed run failed");
        certa_ = imagem();
        novo_ = le("last");
        if (feitio.travessia || comeca_cedo()) break;
    }
    if (p.semente == 200) throw std::runtime_error("no traffic begins in the first hour");
    if (novo_ == velho_ || (novo_.size() > 27) != feitio.travessia)
        throw std::runtime_error("the undisturbed run has not the point that it should have");
    for (const auto& e : fs::directory_iterator(raiz_ + "/LOGS"))
        logs_[e.path().filename()] = le("LOGS/" + e.path().filename().string());
    nota_pontos();
}

// The header's first field is the start of the first period that counted: in a run a day, since it
// is taken once a parser.
bool Cenario::comeca_cedo() {
    repoe();
    for (const time_t antes : {dia, time_t{0}}) {
        relogio = hora(agora_) - antes;
        consolida();
    }
    for (const auto& [rel, texto] : imagem()) {
        const auto n = rel.find("mail_stat_");
        if (n == std::string::npos) continue;
        const std::string data = "2009-" + rel.substr(9, 2) + "-" + rel.substr(n + 10, 2);
        if (!texto.starts_with(std::to_string(hora(data + " 00:00:00")) + " ")) return false;
    }
    return true;
}

// What is recorded when a directory stands in the place of a day file.
void Cenario::nota_pontos() {
    const std::vector<std::string> dias =
        feitio_.primeira ? std::vector<std::string>{"03-09/%s30.txt", "03-09/%s31.txt"}
                         : std::vector<std::string>{"03-09/%s31.txt", "04-09/%s01.txt"};
    for (const std::string& d : dias)
        for (const char* prefixo : {diario::compacto, diario::estatistica}) {
            repoe();
            std::string rel = "DAT/rels_" + d;
            rel.replace(rel.find("%s"), 2, prefixo);
            fs::create_directories(raiz_ + "/" + rel);
            consolida();
            pontos_.insert(le("last"));
        }
}

std::string Cenario::le(const std::string& rel) const {
    std::ifstream f(raiz_ + "/" + rel, std::ios::binary);
    return {std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>()};
}

void Cenario::escreve(const std::string& rel, const std::string& texto) const {
    std::ofstream f(raiz_ + "/" + rel, std::ios::binary);
    f << texto;
    if (!f.flush()) throw std::runtime_error("cannot write " + raiz_ + "/" + rel);
}

// All but the logs and what the harness keeps.
Imagem Cenario::imagem() const {
    Imagem i;
    for (auto e = fs::recursive_directory_iterator(raiz_); e != fs::end(e); ++e) {
        const std::string rel = e->path().lexically_relative(raiz_);
        if (rel == "LOGS") e.disable_recursion_pending();
        if (rel == "LOGS" || rel == "traco" || rel == "avisos") continue;
        if (e->is_directory())
            i[rel + "/"] = "";
        else
            i[rel] = le(rel);
    }
    return i;
}

void Cenario::repoe() {
    for (const auto& e : fs::directory_iterator(raiz_)) {
        const std::string rel = e.path().filename();
        if (rel != "LOGS" && (rel != "DAT" || feitio_.primeira)) fs::remove_all(e.path());
    }
    if (feitio_.primeira) return;
    for (const auto& e : fs::directory_iterator(raiz_ + "/DAT"))
        if (e.path().filename() != "rels_03-09") fs::remove_all(e.path());
    for (const auto& e : fs::directory_iterator(raiz_ + "/" + pasta_final))
        if (!finais_.count(e.path().lexically_relative(raiz_))) fs::remove_all(e.path());
    escreve("last", velho_);
}

bool Cenario::aponta(LogMailFileParser& p) const {
    p.relogio_do_sistema = le_relogio;
    return p.setLogDir((raiz_ + "/LOGS").c_str()) && p.setDataDir((raiz_ + "/DAT").c_str());
}

int Cenario::consolida(LogMailFileParser& p) const {
    return p.consolidate(ultimo_.c_str()) ? feito : parado;
}

void Cenario::escuta() {
    if (!std::freopen((raiz_ + "/avisos").c_str(), "w+", stderr)) std::abort();
    std::setvbuf(stderr, nullptr, _IONBF, 0);
    traco_ = std::fopen((raiz_ + "/traco").c_str(), "w");
}

int Cenario::consolida() {
    try {
        LogMailFileParser p;
        p.debugOut = traco_;
        return aponta(p) ? consolida(p) : recusado;
    } catch (const std::bad_alloc&) {
        return sem_memoria;
    } catch (...) {
        return outra_excecao;
    }
}

std::string Cenario::terminados() const {
    for (const auto& [rel, antes] : finais_) {
        struct stat st {};
        if (lstat((raiz_ + "/" + rel).c_str(), &st) != 0 || !mesma(st, antes))
            return "a finished day was touched: " + rel;
    }
    return "";
}

bool Cenario::ponto_legitimo(const std::string& ponto, const Licenca& licenca) const {
    if (ponto == velho_ || ponto == novo_) return true;
    if (licenca.ponto_no_dia && pontos_.count(ponto)) return true;
    return licenca.log_pulado && inteiro(ponto);
}

std::string Cenario::compara(const char* quando) const {
    const Imagem e = imagem();
    if (e == certa_) return "";
    for (const auto& [rel, texto] : certa_)
        if (!e.count(rel) || e.at(rel) != texto) return quando + (" differs or lacks " + rel);
    for (const auto& [rel, texto] : e)
        if (!certa_.count(rel)) return quando + (" has " + rel + " left over");
    return "";
}

std::string Cenario::julga(int saida, const Licenca& licenca, LogMailFileParser* de_novo) {
    if (std::string erro = terminados(); !erro.empty()) return erro;
    const std::string ponto = le("last");
    if (!ponto_legitimo(ponto, licenca))
        return "the point is neither old nor new: " + ponto.substr(0, 26);
    // A run that is silent has done all its work.
    const bool contado = saida != feito || !le("avisos").empty() ||
                         le("traco").find("createFile: Erro") != std::string::npos;
    if (!contado && !licenca.perda && !licenca.calado && !licenca.log_pulado)
        if (std::string erro = compara("a run that told nothing"); !erro.empty()) return erro;

    // The next run gives the right tree; where the point went on without all that belongs to it,
    // once the point is put back.
    const auto corre = [&] {
        return de_novo && aponta(*de_novo) ? consolida(*de_novo) : consolida();
    };
    int depois = corre();
    const bool repetir =
        licenca.log_pulado || (feitio_.travessia && ponto != velho_ && ponto != novo_);
    if (depois == feito && repetir) {
        if (feitio_.primeira)
            fs::remove(raiz_ + "/last");
        else
            escreve("last", velho_);
        depois = corre();
    }
    if (depois != feito) return std::string("the next run was ") + falhas::nome(depois);
    if (std::string erro = compara("after the next run, the tree"); !erro.empty()) return erro;
    if (std::string erro = terminados(); !erro.empty()) return erro;
    for (const auto& [nome, texto] : logs_)
        if (le("LOGS/" + nome) != texto) return "a log was changed: " + nome;
    return "";
}

}  // namespace falhas
