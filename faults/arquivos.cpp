// Sweeps over the file calls of a consolidation, of each report and of the registry: each of them
// failed, or the last one made.
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

#include "faults/cenario.h"
#include "faults/rastreio.h"
#include "faults/trabalhos.h"
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
    {"point-large", false, false, 1500},
    {"flight-large", false, true, 1500},
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

// What is wrong with the way a disturbed child ended, or "".
std::string fim_indevido(const Execucao& e, const Plano& p) {
    if (e.sinal != 0) return std::string("ended by ") + strsignal(e.sinal);
    if (e.saida > recusado) return std::string("it was ") + nome(e.saida);
    bool atingida = false;
    for (const Chamada& chamada : e.chamadas) atingida |= chamada.adulterada;
    return atingida || p.acao != Plano::erro ? "" : "the fault was not met";
}

std::string onde(const std::string& quem, const Execucao& limpa, const Plano& p,
                 const char* falha) {
    static constexpr const char* alcances[] = {"", " and all of its kind", " and all behind it"};
    const Chamada& chamada = limpa.chamadas[p.em - 1];
    return quem + ": " + falha + " at call " + std::to_string(p.em) + ", " + chamada.nome + " " +
           chamada.path + alcances[p.alcance];
}

// The calls of an undisturbed run of `trabalho`.
Execucao sem_falhas(const std::function<void()>& prepara, const std::function<int()>& trabalho) {
    Execucao e = roda({}, prepara, trabalho);
    if (e.sinal != 0 || e.saida != feito || e.chamadas.empty())
        throw std::runtime_error("the undisturbed run failed under the tracer");
    return e;
}

// Tries every fault at every call of an undisturbed run; or, of those that are not `sempre`, one
// in so many.
template <class Tenta, class Sempre>
void varre(const std::string& quem, const Execucao& limpa, Contagem& contagem, Sempre sempre,
           Tenta tenta) {
    constexpr unsigned amostra = 7;
    unsigned vez = 0;
    for (const Falha& f : todas_as_falhas)
        for (const Plano::Alcance alcance : {Plano::uma, Plano::mesmas, Plano::todas})
            for (std::size_t n = 1; n <= limpa.chamadas.size(); ++n) {
                const Chamada& chamada = limpa.chamadas[n - 1];
                if (f.acao == Plano::curta && !chama(chamada, {"read", "write"})) continue;
                if (f.acao == Plano::disco_cheio &&
                    (alcance != Plano::mesmas || !chama(chamada, {"write"})))
                    continue;
                const Plano p{n, f.acao, alcance, f.erro};
                if (sempre(p) || ++vez % amostra == 0)
                    contagem.ponto(onde(quem, limpa, p, f.nome), tenta(p));
                else
                    contagem.adia();
            }
}

// A consolidation. At the quick level all single faults of one tree, of the others a sample.
void varre_consolidacao(Cenario& c, bool tudo, Contagem& contagem) {
    const auto prepara = [&] { c.escuta(); };
    const auto trabalho = [&] { return c.consolida(); };
    c.repoe();
    const Execucao limpa = sem_falhas(prepara, trabalho);
    varre(
        c.nome(), limpa, contagem,
        [&](const Plano& p) { return tudo || (p.alcance == Plano::uma && c.principal()); },
        [&](const Plano& p) {
            c.repoe();
            const Execucao e = roda(p, prepara, trabalho);
            const std::string erro = fim_indevido(e, p);
            return erro.empty() ? c.julga(e.saida, licenca(e, p, c.raiz())) : erro;
        });
}

// A report only reads: whatever fails, it comes to its end, and the tree stays as it is.
void varre_relatorio(Cenario& c, const Relato& relato, bool tudo, Contagem& contagem) {
    const auto trabalho = [&] {
        LogMailFileParser p;
        LogResult r;
        if (!prepara(p, c.raiz() + "/DAT")) return recusado;
        relata(relato, p, r, "none");
        return feito;
    };
    const Execucao limpa = sem_falhas([] {}, trabalho);
    varre(
        relato.nome, limpa, contagem, [&](const Plano&) { return tudo; },
        [&](const Plano& p) {
            const std::string erro = fim_indevido(roda(
                                                      p, [] {}, trabalho),
                                                  p);
            return erro.empty() ? c.compara("behind it, the tree") : erro;
        });
}

// A key is what it was or what it was made, and can be written again.
void varre_registro(const std::string& pasta, bool tudo, Contagem& contagem) {
    const auto trabalho = [&] {
        escreve_registro(pasta, "new");
        return feito;
    };
    escreve_registro(pasta, "new");
    const std::string novo = le_registro(pasta);
    escreve_registro(pasta, "old");
    const std::string velho = le_registro(pasta);
    const Execucao limpa = sem_falhas([] {}, trabalho);
    varre(
        "registry", limpa, contagem, [&](const Plano&) { return tudo; },
        [&](const Plano& p) -> std::string {
            escreve_registro(pasta, "old");
            const std::string erro = fim_indevido(roda(
                                                      p, [] {}, trabalho),
                                                  p);
            if (!erro.empty()) return erro;
            const std::string lido = le_registro(pasta);
            if (lido != velho && lido != novo) return "the key is neither old nor new: " + lido;
            escreve_registro(pasta, "new");
            return le_registro(pasta) == novo ? "" : "the key cannot be written any more";
        });
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
    c.repoe();
    const Execucao limpa = sem_falhas([&] { c.escuta(); }, [&] { return c.consolida(); });
    for (std::size_t n = 1; n <= limpa.chamadas.size(); ++n) {
        const Plano p{n, Plano::mata, Plano::uma, 0};
        contagem.ponto(onde(c.nome(), limpa, p, "SIGKILL"), mata(c, n, false));
        contagem.ponto(onde(c.nome(), limpa, p, "power cut"), mata(c, n, true));
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

bool varre_arquivos(const std::string& pasta, bool tudo) {
    bool bom = em_todos("file faults", pasta, tudo, [&](Cenario& c, Contagem& contagem) {
        varre_consolidacao(c, tudo, contagem);
    });
    Cenario c({"reports", false, true, 90}, pasta);
    c.repoe();
    c.consolida();
    for (const Relato& relato : relatos) {
        Contagem contagem(std::string("file faults, ") + relato.nome);
        varre_relatorio(c, relato, tudo, contagem);
        bom &= contagem.fim();
    }
    Contagem contagem("file faults, registry");
    varre_registro(pasta + "/registry", tudo, contagem);
    return contagem.fim() && bom;
}

bool varre_mortes(const std::string& pasta, bool tudo) {
    return em_todos("kills", pasta, tudo, extermina);
}

}  // namespace falhas
