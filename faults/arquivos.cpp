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

// A piece of work to be disturbed. `prepara` runs in the child and is left in peace; `no_fim` as of
// roda(); `julga` tells what is wrong with what is left, or "".
struct Obra {
    std::string nome;
    std::function<int()> trabalho;
    std::function<std::string(const Execucao&, const Plano&)> julga;
    std::function<void()> repoe = [] {};
    std::function<void()> prepara = [] {};
    std::function<void(int)> no_fim = nullptr;

    Execucao faz(const Plano& p) const {
        repoe();
        return roda(p, prepara, trabalho, no_fim);
    }
    // The calls of an undisturbed run.
    std::vector<Chamada> chamadas() const {
        Execucao e = faz({});
        if (e.sinal != 0 || e.saida != feito || e.chamadas.empty())
            throw std::runtime_error("the undisturbed run failed under the tracer");
        return e.chamadas;
    }
};

// What is wrong with the way a disturbed child ended, or "".
std::string fim_indevido(const Execucao& e, const Plano& p) {
    if (e.sinal != 0) return std::string("ended by ") + strsignal(e.sinal);
    if (e.saida > recusado) return std::string("it was ") + nome(e.saida);
    bool atingida = false;
    for (const Chamada& chamada : e.chamadas) atingida |= chamada.adulterada;
    return atingida || p.acao != Plano::erro ? "" : "the fault was not met";
}

std::string onde(const Obra& o, const Chamada& chamada, const Plano& p, const char* falha) {
    static constexpr const char* alcances[] = {"", " and all of its kind", " and all behind it"};
    return o.nome + ": " + falha + " at call " + std::to_string(p.em) + ", " + chamada.nome + " " +
           chamada.path + alcances[p.alcance];
}

// Tries every fault at every call; or, of those that are not `sempre`, one in so many.
template <class Sempre>
void varre(const Obra& o, Contagem& contagem, Sempre sempre) {
    constexpr unsigned amostra = 7;
    unsigned vez = 0;
    const std::vector<Chamada> chamadas = o.chamadas();
    const auto tenta = [&](const Plano& p, const char* falha) {
        if (!sempre(p) && ++vez % amostra != 0) return contagem.adia();
        const Execucao e = o.faz(p);
        const std::string erro = fim_indevido(e, p);
        contagem.ponto(onde(o, chamadas[p.em - 1], p, falha), erro.empty() ? o.julga(e, p) : erro);
    };
    for (const Falha& f : todas_as_falhas)
        for (const Plano::Alcance alcance : {Plano::uma, Plano::mesmas, Plano::todas})
            for (std::size_t n = 1; n <= chamadas.size(); ++n) {
                const Chamada& c = chamadas[n - 1];
                if (f.acao == Plano::curta && !chama(c, {"read", "write"})) continue;
                if (f.acao == Plano::disco_cheio &&
                    (alcance != Plano::mesmas || !chama(c, {"write"})))
                    continue;
                tenta({n, f.acao, alcance, f.erro}, f.nome);
            }
}

// Kills the work at each of its file calls, and cuts the power there, also behind its end.
void extermina(const Obra& o, const std::string& raiz, Contagem& contagem) {
    const std::vector<Chamada> chamadas = o.chamadas();
    const auto mata = [&](const Plano& p, bool sem_luz) -> std::string {
        const Execucao e = o.faz(p);
        if (e.sinal != SIGKILL && p.em <= chamadas.size()) return "it was not killed";
        if (sem_luz) e.disco.perde(raiz);
        return o.julga(e, p);
    };
    Plano p{1, Plano::mata, Plano::uma, 0};
    for (; p.em <= chamadas.size(); ++p.em)
        for (const bool sem_luz : {false, true})
            contagem.ponto(onde(o, chamadas[p.em - 1], p, sem_luz ? "power cut" : "SIGKILL"),
                           mata(p, sem_luz));
    contagem.ponto(o.nome + ": power cut after the end", mata(p, true));
}

Obra consolidacao(Cenario& c) {
    return {.nome = c.nome(),
            .trabalho = [&c] { return c.consolida(); },
            .julga =
                [&c](const Execucao& e, const Plano& p) {
                    return c.julga(e.saida, p.acao == Plano::mata ? Licenca{.perda = true}
                                                                  : licenca(e, p, c.raiz()));
                },
            .repoe = [&c] { c.repoe(); },
            .prepara = [&c] { c.escuta(); }};
}

// A report only reads: whatever fails, it comes to its end, and the tree stays as it is.
Obra relatorio(const Cenario& c, const Relato& relato) {
    return {
        .nome = relato.nome,
        .trabalho =
            [&] {
                LogMailFileParser p;
                LogResult r;
                if (!prepara(p, c.raiz() + "/DAT")) return recusado;
                relata(relato, p, r, "none");
                return feito;
            },
        .julga = [&](const Execucao&, const Plano&) { return c.compara("behind it, the tree"); }};
}

// A key of the registry in `pasta` that is written anew: it is what it was or what it was made, and
// can be written again.
Obra registro(const std::string& pasta) {
    const auto escreve = [pasta](const char* valor) {
        escreve_registro(pasta, valor);
        return le_registro(pasta);
    };
    const std::string novo = escreve("new"), velho = escreve("old");
    return {.nome = "registry",
            .trabalho =
                [pasta] {
                    escreve_registro(pasta, "new");
                    return feito;
                },
            .julga = [=](const Execucao&, const Plano&) -> std::string {
                const std::string lido = le_registro(pasta);
                if (lido != velho && lido != novo) return "the key is neither old nor new: " + lido;
                return escreve("new") == novo ? "" : "the key cannot be written any more";
            },
            .repoe = [=] { escreve("old"); }};
}

// Whether this process could take the lock of the machine.
bool livre() {
    const int fd = open(tranca, O_RDWR);
    const bool pode = fd < 0 || lockf(fd, F_TEST, 0) == 0;
    if (fd >= 0) close(fd);
    return pode;
}

int toma() {
    return testaSeUnico() ? feito : recusado;
}

// Taking the lock twice, with `entre` in between: whoever is given it has asked the system for it
// last and was not refused, and nobody else can have it meanwhile; one descriptor of it is kept and
// no more; and the next one gets it. `antes` is done beforehand.
Obra da_tranca(const char* quem, void (*antes)(), void (*entre)(), bool& de_outro) {
    const auto julga = [&de_outro](const Execucao& e, const Plano&) -> std::string {
        if (de_outro) return "granted, and another one can have it too";
        const Chamada& ultima = e.chamadas.back();
        if (e.saida == feito && (!chama(ultima, {"fcntl"}) || ultima.adulterada))
            return "granted, and not by the system";
        bool fechou = true;
        for (const Chamada& c : e.chamadas) fechou &= !c.adulterada || !chama(c, {"close"});
        if (fechou && e.abertos > 1) return "a descriptor is left open";
        return roda(
                   {}, [] {}, toma)
                           .saida == feito
                   ? ""
                   : "nobody gets it any more";
    };
    return {.nome = quem,
            .trabalho =
                [entre] {
                    toma();
                    entre();
                    return toma();
                },
            .julga = julga,
            .prepara =
                [antes] {
                    unlink(tranca);
                    antes();
                },
            .no_fim = [&de_outro](int saida) { de_outro = saida == feito && livre(); }};
}

// The trees: small ones, and at the full level those with several blocks to write and to read in
// each day file and log.
template <class Varre>
bool em_todos(const char* titulo, const std::string& pasta, bool tudo, Varre varre_um) {
    static constexpr Cenario::Feitio feitios[] = {{"point", false, false, 90},
                                                  {"first", true, false, 90},
                                                  {"flight", false, true, 90},
                                                  {"point-large", false, false, 1500},
                                                  {"flight-large", false, true, 1500}};
    bool bom = true;
    for (const Cenario::Feitio& f : feitios) {
        if (!tudo && f.mensagens > 90) break;
        Cenario c(f, pasta);
        Contagem contagem(std::string(titulo) + ", " + f.nome);
        varre_um(c, contagem);
        bom &= contagem.fim();
    }
    return bom;
}

}  // namespace

bool varre_arquivos(const std::string& pasta, bool tudo) {
    // At the quick level all single faults of one tree, of the others a sample.
    bool bom = em_todos("file faults", pasta, tudo, [tudo](Cenario& c, Contagem& contagem) {
        varre(consolidacao(c), contagem,
              [&](const Plano& p) { return tudo || (p.alcance == Plano::uma && c.principal()); });
    });
    Cenario c({"reports", false, true, 90}, pasta);
    c.repoe();
    c.consolida();
    const auto um = [&](const Obra& o) {
        Contagem contagem("file faults, " + o.nome);
        varre(o, contagem, [tudo](const Plano&) { return tudo; });
        bom &= contagem.fim();
    };
    for (const Relato& relato : relatos) um(relatorio(c, relato));
    um(registro(pasta + "/registry"));
    return bom;
}

bool varre_trava() {
    Contagem contagem("file faults, lock");
    bool de_outro = false;
    const auto nada = [] {};
    const auto vazia = [] { close(open(tranca, O_CREAT | O_RDWR, 0600)); };
    const auto limpa = [] { unlink(tranca); };
    for (const Obra& o :
         {da_tranca("first", nada, nada, de_outro), da_tranca("there", vazia, nada, de_outro),
          da_tranca("cleaned", nada, limpa, de_outro)})
        varre(o, contagem, [](const Plano&) { return true; });
    return contagem.fim();
}

bool varre_mortes(const std::string& pasta, bool tudo) {
    const bool bom = em_todos("kills", pasta, tudo, [](Cenario& c, Contagem& contagem) {
        extermina(consolidacao(c), c.raiz(), contagem);
    });
    Contagem contagem("kills, registry");
    extermina(registro(pasta + "/registry"), pasta + "/registry", contagem);
    return contagem.fim() && bom;
}

}  // namespace falhas
