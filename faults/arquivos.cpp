// Sweeps over the file calls of a consolidation, of each report, of the registry and of the lock:
// each of them failed, or the last one made.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

#include "common/relutl.h"
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

void nada() {}

constexpr char tranca[] = "/tmp/vtmrel.lck";

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
    const Execucao limpa = sem_falhas(nada, trabalho);
    varre(
        relato.nome, limpa, contagem, [&](const Plano&) { return tudo; },
        [&](const Plano& p) {
            const std::string erro = fim_indevido(roda(p, nada, trabalho), p);
            return erro.empty() ? c.compara("behind it, the tree") : erro;
        });
}

// A key of the registry that is written anew: it is what it was or what it was made, and can be
// written again.
class Chaveiro {
  public:
    explicit Chaveiro(const std::string& pasta) : pasta_(pasta) {
        escreve_registro(pasta_, "new");
        novo_ = le_registro(pasta_);
        repoe();
        velho_ = le_registro(pasta_);
    }

    const std::string& pasta() const { return pasta_; }
    void repoe() const { escreve_registro(pasta_, "old"); }
    int escreve() const {
        escreve_registro(pasta_, "new");
        return feito;
    }
    std::string julga() const {
        const std::string lido = le_registro(pasta_);
        if (lido != velho_ && lido != novo_) return "the key is neither old nor new: " + lido;
        escreve();
        return le_registro(pasta_) == novo_ ? "" : "the key cannot be written any more";
    }

  private:
    std::string pasta_, novo_, velho_;
};

void varre_registro(const Chaveiro& r, bool tudo, Contagem& contagem) {
    const auto trabalho = [&] { return r.escreve(); };
    const Execucao limpa = sem_falhas(nada, trabalho);
    varre(
        "registry", limpa, contagem, [&](const Plano&) { return tudo; },
        [&](const Plano& p) {
            r.repoe();
            const std::string erro = fim_indevido(roda(p, nada, trabalho), p);
            return erro.empty() ? r.julga() : erro;
        });
}

// Whether this process could take the lock of the machine.
bool livre() {
    const int fd = open(tranca, O_RDWR);
    const bool pode = fd < 0 || lockf(fd, F_TEST, 0) == 0;
    if (fd >= 0) close(fd);
    return pode;
}

// Taking the lock twice, with `entre` in between: whoever is given it has asked the system for it
// last and was not refused, and nobody else can have it meanwhile; one descriptor of it is kept and
// no more; and the next one gets it. `antes` is done beforehand.
void varre_tranca(const char* quem, void (*antes)(), void (*entre)(), Contagem& contagem) {
    const auto prepara = [&] {
        unlink(tranca);
        antes();
    };
    const auto toma = [] { return testaSeUnico() ? feito : recusado; };
    const auto trabalho = [&] {
        toma();
        entre();
        return toma();
    };
    const auto tenta = [&](const Plano& p) -> std::string {
        bool de_outro = false;
        const Execucao e =
            roda(p, prepara, trabalho, [&](int saida) { de_outro = saida == feito && livre(); });
        const std::string erro = fim_indevido(e, p);
        if (!erro.empty()) return erro;
        if (de_outro) return "granted, and another one can have it too";
        const Chamada& ultima = e.chamadas.back();
        if (e.saida == feito && (!chama(ultima, {"fcntl"}) || ultima.adulterada))
            return "granted, and not by the system";
        bool fechou = true;
        for (const Chamada& c : e.chamadas) fechou &= !c.adulterada || !chama(c, {"close"});
        if (fechou && e.abertos > 1) return "a descriptor is left open";
        return roda({}, nada, toma).saida == feito ? "" : "nobody gets it any more";
    };
    const Execucao limpa = sem_falhas(prepara, trabalho);
    varre(
        quem, limpa, contagem, [](const Plano&) { return true; }, tenta);
}

// Kills `trabalho` at each of its file calls, and cuts the power there, also behind its end.
void extermina(const std::string& quem, const std::string& raiz, Contagem& contagem,
               const std::function<void()>& repoe, const std::function<void()>& prepara,
               const std::function<int()>& trabalho,
               const std::function<std::string(int saida)>& julga) {
    repoe();
    const Execucao limpa = sem_falhas(prepara, trabalho);
    const auto mata = [&](const Plano& p, bool sem_luz) -> std::string {
        repoe();
        const Execucao e = roda(p, prepara, trabalho);
        if (e.sinal != SIGKILL && p.em <= e.chamadas.size()) return "it was not killed";
        if (sem_luz) e.disco.perde(raiz);
        return julga(e.saida);
    };
    Plano p{1, Plano::mata, Plano::uma, 0};
    for (; p.em <= limpa.chamadas.size(); ++p.em) {
        contagem.ponto(onde(quem, limpa, p, "SIGKILL"), mata(p, false));
        contagem.ponto(onde(quem, limpa, p, "power cut"), mata(p, true));
    }
    contagem.ponto(quem + ": power cut after the end", mata(p, true));
}

void extermina_consolidacao(Cenario& c, Contagem& contagem) {
    Licenca l;
    l.perda = true;
    extermina(
        c.nome(), c.raiz(), contagem, [&] { c.repoe(); }, [&] { c.escuta(); },
        [&] { return c.consolida(); }, [&](int saida) { return c.julga(saida, l); });
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
    varre_registro(Chaveiro(pasta + "/registry"), tudo, contagem);
    return contagem.fim() && bom;
}

bool varre_trava() {
    Contagem contagem("file faults, lock");
    const auto vazia = [] { close(open(tranca, O_CREAT | O_RDWR, 0600)); };
    varre_tranca("first", nada, nada, contagem);
    varre_tranca("there", vazia, nada, contagem);
    varre_tranca(
        "cleaned", nada, [] { unlink(tranca); }, contagem);
    return contagem.fim();
}

bool varre_mortes(const std::string& pasta, bool tudo) {
    const bool bom = em_todos("kills", pasta, tudo, extermina_consolidacao);
    const Chaveiro r(pasta + "/registry");
    Contagem contagem("kills, registry");
    extermina(
        "registry", r.pasta(), contagem, [&] { r.repoe(); }, nada, [&] { return r.escreve(); },
        [&](int) { return r.julga(); });
    return contagem.fim() && bom;
}

}  // namespace falhas
