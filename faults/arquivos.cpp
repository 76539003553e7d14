// Sweeps over the file calls of a consolidation: each of them failed, or the last one made.
#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>

#include "faults/cenario.h"
#include "faults/rastreio.h"
#include "faults/varredura.h"

namespace falhas {

namespace {

constexpr Cenario::Feitio pequenos[] = {
    {"point", false, false, 90},
    {"first", true, false, 90},
    {"flight", false, true, 90},
};
// Several blocks to write and to read in each day file and log.
constexpr Cenario::Feitio grandes[] = {
    {"point-large", false, false, 3000},
    {"flight-large", false, true, 3000},
};

struct Falha {
    const char* nome;
    Plano::Acao acao;
    int erro;
};
constexpr Falha todas_as_falhas[] = {
    {"ENOSPC", Plano::erro, ENOSPC}, {"EIO", Plano::erro, EIO},     {"EACCES", Plano::erro, EACCES},
    {"EMFILE", Plano::erro, EMFILE}, {"EINTR", Plano::erro, EINTR}, {"ENFILE", Plano::erro, ENFILE},
    {"ENOMEM", Plano::erro, ENOMEM}, {"ELOOP", Plano::erro, ELOOP}, {"short", Plano::curta, 0},
    {"full", Plano::disco_cheio, 0},
};

bool chama(const Chamada& c, std::initializer_list<const char*> nomes) {
    for (const char* n : nomes)
        if (std::strcmp(c.nome, n) == 0) return true;
    return false;
}

// What may come of the calls that were tampered with.
Licenca licenca(const Execucao& e, const Plano& p, const std::string& raiz) {
    Licenca l;
    // The rule for logs: these say nothing about the log itself, so they stop the run.
    const bool para = p.erro_dado == EMFILE || p.erro_dado == ENFILE || p.erro_dado == ENOMEM ||
                      p.erro_dado == EIO;
    for (const Chamada& c : e.chamadas) {
        if (!c.adulterada) continue;
        const bool abre = chama(c, {"openat", "fstat", "newfstatat", "fcntl"});
        if (abre && !para && c.path.starts_with(raiz + "/LOGS/")) l.log_pulado = true;
        if ((abre || chama(c, {"mkdir", "ftruncate"})) && c.path.starts_with(raiz + "/DAT/"))
            l.ponto_no_dia = true;
    }
    l.calado = p.alcance != Plano::uma;
    return l;
}

std::string tenta(Cenario& c, const Plano& p) {
    c.repoe();
    const Execucao e = roda(
        p, [&] { c.escuta(); }, [&] { return c.consolida(); });
    if (e.sinal != 0) return std::string("ended by ") + strsignal(e.sinal);
    if (e.saida > recusado) return std::string("it was ") + nome(e.saida);
    bool atingida = false;
    for (const Chamada& chamada : e.chamadas) atingida |= chamada.adulterada;
    if (!atingida && p.acao == Plano::erro) return "the fault was not met";
    return c.julga(e.saida, licenca(e, p, c.raiz()));
}

std::string onde(const Cenario& c, const Execucao& limpa, const Plano& p, const char* falha) {
    static constexpr const char* alcances[] = {"", " and all of its kind", " and all behind it"};
    const Chamada& chamada = limpa.chamadas[p.em - 1];
    return std::string(c.nome()) + ": " + falha + " at call " + std::to_string(p.em) + ", " +
           chamada.nome + " " + chamada.path + alcances[p.alcance];
}

// The calls of an undisturbed run.
Execucao sem_falhas(Cenario& c) {
    c.repoe();
    Execucao e = roda(
        {}, [&] { c.escuta(); }, [&] { return c.consolida(); });
    if (e.sinal != 0 || e.saida != feito || e.chamadas.empty())
        throw std::runtime_error("the undisturbed run failed under the tracer");
    return e;
}

void varre(Cenario& c, bool tudo, Contagem& contagem) {
    // The quick level: all single faults of one tree, of all else one in so many.
    constexpr unsigned amostra = 7;
    unsigned vez = 0;
    const Execucao limpa = sem_falhas(c);
    for (const Falha& f : todas_as_falhas)
        for (const Plano::Alcance alcance : {Plano::uma, Plano::mesmas, Plano::todas})
            for (std::size_t n = 1; n <= limpa.chamadas.size(); ++n) {
                const Chamada& chamada = limpa.chamadas[n - 1];
                if (f.acao == Plano::curta && !chama(chamada, {"read", "write"})) continue;
                if (f.acao == Plano::disco_cheio &&
                    (alcance != Plano::mesmas || !chama(chamada, {"write"})))
                    continue;
                const Plano p{n, f.acao, alcance, f.erro};
                if (tudo || (alcance == Plano::uma && c.principal()) || ++vez % amostra == 0)
                    contagem.ponto(onde(c, limpa, p, f.nome), tenta(c, p));
                else
                    contagem.adia();
            }
}

std::string mata(Cenario& c, std::size_t n, bool sem_luz) {
    c.repoe();
    const Execucao e = roda(
        {n, Plano::mata, Plano::uma, 0}, [&] { c.escuta(); }, [&] { return c.consolida(); });
    if (e.sinal != SIGKILL && n <= e.chamadas.size()) return "it was not killed";
    if (sem_luz) e.disco.perde(c.raiz());
    Licenca l;
    l.perda = true;
    return c.julga(e.saida, l);
}

void extermina(Cenario& c, Contagem& contagem) {
    const Execucao limpa = sem_falhas(c);
    for (std::size_t n = 1; n <= limpa.chamadas.size(); ++n) {
        const Plano p{n, Plano::mata, Plano::uma, 0};
        contagem.ponto(onde(c, limpa, p, "SIGKILL"), mata(c, n, false));
        contagem.ponto(onde(c, limpa, p, "power cut"), mata(c, n, true));
    }
    contagem.ponto(std::string(c.nome()) + ": power cut after the end",
                   mata(c, limpa.chamadas.size() + 1, true));
}

template <class Varre>
bool em_todos(const char* titulo, const std::string& pasta, bool tudo, Varre varre_um) {
    bool bom = true;
    const auto um = [&](const Cenario::Feitio& f) {
        Cenario c(f, pasta);
        Contagem contagem(std::string(titulo) + ", " + f.nome);
        varre_um(c, contagem);
        bom &= contagem.fim();
    };
    for (const Cenario::Feitio& f : pequenos) um(f);
    if (tudo)
        for (const Cenario::Feitio& f : grandes) um(f);
    return bom;
}

}  // namespace

void Contagem::ponto(const std::string& onde, const std::string& erro) {
    constexpr unsigned mostrados = 20;
    ++tentados_;
    if (erro.empty()) return;
    if (++falhos_ <= mostrados) std::printf("FAILED %s: %s\n", onde.c_str(), erro.c_str());
    if (falhos_ == mostrados + 1) std::printf("FAILED: more are only counted\n");
}

bool Contagem::fim() const {
    std::printf("%s: %u points tried, %u passed, %u failed", nome_.c_str(), tentados_,
                tentados_ - falhos_, falhos_);
    if (adiados_ != 0) std::printf("; %u more at the full level", adiados_);
    std::printf("\n");
    std::fflush(stdout);
    return falhos_ == 0 && tentados_ != 0;
}

bool varre_arquivos(const std::string& pasta, bool tudo) {
    return em_todos("file faults", pasta, tudo,
                    [&](Cenario& c, Contagem& contagem) { varre(c, tudo, contagem); });
}

bool varre_mortes(const std::string& pasta, bool tudo) {
    return em_todos("kills", pasta, tudo, extermina);
}

}  // namespace falhas
