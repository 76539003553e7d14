// Every kind of work a thousand times in one process: memory and descriptors stay as they are.
#include <dirent.h>
#include <malloc.h>

#include <fstream>
#include <memory>
#include <stdexcept>

#include "faults/cenario.h"
#include "faults/trabalhos.h"
#include "faults/varredura.h"

namespace falhas {

namespace {

constexpr int aquecimento = 200;   // cycles after which a process has what it needs
constexpr int ciclos = 1000;       // cycles watched behind them
constexpr long folga = 64 * 1024;  // bytes by which what is resident may still grow

// Bytes; statm would lag behind by some pages.
long residente() {
    std::ifstream f("/proc/self/smaps_rollup");
    for (std::string palavra; f >> palavra;) {
        long kb;
        if (palavra == "Rss:" && f >> kb) return kb * 1024;
    }
    throw std::runtime_error("no /proc/self/smaps_rollup");
}

// Bytes that the C library has handed out.
long alocados() {
    const struct mallinfo2 m = mallinfo2();
    return static_cast<long>(m.uordblks + m.hblkhd);
}

int descritores() {
    const std::unique_ptr<DIR, int (*)(DIR*)> d(opendir("/proc/self/fd"), closedir);
    if (!d) throw std::runtime_error("no /proc/self/fd");
    int n = 0;
    while (readdir(d.get())) ++n;
    return n;
}

template <class F>
std::string observa(const char* nome, F trabalho) {
    for (int i = 0; i < aquecimento; ++i) trabalho();
    const long memoria = residente();
    const long em_uso = alocados();
    const int abertos = descritores();
    for (int i = 0; i < ciclos; ++i) trabalho();
    const long cresceu = residente() - memoria;
    const long a_mais = alocados() - em_uso;
    const int fds = descritores() - abertos;
    std::printf("soak, %s: %d cycles, %ld bytes resident, %ld allocated, %d descriptors more\n",
                nome, ciclos, cresceu, a_mais, fds);
    return cresceu <= folga && a_mais == 0 && fds == 0 ? "" : "it grows";
}

}  // namespace

bool repete(const std::string& pasta, bool) {
    Contagem contagem("soak");
    Cenario c({"soak", false, false, 90}, pasta);
    contagem.ponto("consolidation", observa("consolidation", [&] {
                       c.repoe();
                       if (c.consolida() != feito) throw std::runtime_error("consolidation failed");
                   }));
    // One parser of a worker that answers page after page, an iterator a page.
    LogMailFileParser p;
    prepara(p, c.raiz() + "/DAT");
    for (const Relato& relato : relatos) {
        std::string antes;
        contagem.ponto(relato.nome, observa(relato.nome, [&] {
                           LogResult r;
                           const std::string texto = relata(relato, p, r, "none");
                           if (!antes.empty() && texto != antes)
                               throw std::runtime_error("an answer changed");
                           antes = texto;
                       }));
    }
    contagem.ponto("registry", observa("registry", [&] {
                       escreve_registro(pasta + "/registry", "some");
                       if (le_registro(pasta + "/registry").empty())
                           throw std::runtime_error("no registry");
                   }));
    return contagem.fim();
}

}  // namespace falhas
