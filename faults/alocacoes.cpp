// The sweep over allocations: each fails once, and all from it on. What was interrupted is then
// done again, with the same objects, and must give what it gives without a fault.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <vector>

#include "faults/cenario.h"
#include "faults/memoria.h"
#include "faults/trabalhos.h"
#include "faults/varredura.h"

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/common_interface_defs.h>
#include <sanitizer/lsan_interface.h>
#endif

namespace falhas {

namespace {

// Where the sweep stands, seen by the parent of the process that it runs in.
struct Lugar {
    std::size_t n;
    bool dali_em_diante;
};

int descritores() {
    int abertos = 0;
    for (int fd = 0; fd < 256; ++fd) abertos += fcntl(fd, F_GETFD) >= 0;
    return abertos;
}

// Lets the sanitizer that a build may have report to standard error as it is now: the process will
// listen to what is written to it.
void reserva_avisos() {
#ifdef __SANITIZE_ADDRESS__
    __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<long>(dup(STDERR_FILENO))));
#endif
}

// Leaks since the last call, told by the same.
bool vazou() {
#ifdef __SANITIZE_ADDRESS__
    return __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}

// Tries all points of a work, which takes the fault (em, dali_em_diante), answers what went wrong,
// and leaves in its last argument how many allocations there were.
using Trabalho = std::function<std::string(std::size_t em, bool dali, std::size_t& contados)>;

bool pontos(const std::string& nome, const Trabalho& trabalho, std::size_t passo, Lugar& lugar) {
    reserva_avisos();
    Contagem contagem("memory, " + nome);
    std::size_t total = 0;
    if (const std::string erro = trabalho(0, false, total); !erro.empty()) {
        contagem.ponto(nome + " without a fault", erro);
        return contagem.fim();
    }
    const int abertos = descritores();
    for (const bool dali : {false, true})
        for (std::size_t n = 1; n <= total; ++n) {
            // The first ones, by far the most different, are always tried.
            if (n > 200 && n % passo != 0) {
                contagem.adia();
                continue;
            }
            lugar = {n, dali};
            std::size_t contados = 0;
            std::string erro = trabalho(n, dali, contados);
            if (erro.empty() && contados < n) erro = "the fault was not met";
            if (erro.empty() && descritores() != abertos) erro = "a descriptor is left open";
            contagem.ponto(nome + ": allocation " + std::to_string(n) + (dali ? " and behind" : ""),
                           erro);
        }
    if (vazou()) contagem.ponto(nome, "memory leaked; the addresses are above");
    return contagem.fim();
}

// In a process of its own: should it die, the point is told and the other works still run.
bool separado(const std::string& nome, std::size_t passo, const Trabalho& trabalho) {
    void* mapa =
        mmap(nullptr, sizeof(Lugar), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (mapa == MAP_FAILED) throw std::bad_alloc();
    Lugar& lugar = *new (mapa) Lugar{};
    const pid_t filho = fork();
    if (filho == 0) _exit(pontos(nome, trabalho, passo, lugar) ? 0 : 1);
    int estado = 0;
    if (filho < 0 || waitpid(filho, &estado, 0) != filho) throw std::bad_alloc();
    if (WIFSIGNALED(estado) || WEXITSTATUS(estado) > 1)
        std::printf("FAILED memory, %s: died at allocation %zu%s (status %d)\n", nome.c_str(),
                    lugar.n, lugar.dali_em_diante ? " and behind" : "", estado);
    munmap(mapa, sizeof(Lugar));
    return estado == 0;
}

// Runs `f` under the fault; answers a Saida.
template <class F>
int sob_falha(std::size_t em, bool dali, std::size_t& contados, F f) {
    int saida;
    const SemMemoria falta(em, dali);
    try {
        saida = f();
    } catch (const std::bad_alloc&) {
        saida = sem_memoria;
    } catch (...) {
        saida = outra_excecao;
    }
    contados = falta.contados();
    return saida;
}

std::string consolidacao(Cenario& c, std::size_t em, bool dali, std::size_t& contados) {
    c.repoe();
    c.escuta();
    LogMailFileParser p;
    p.debugOut = c.traco();
    bool comecou = false;
    const int saida = sob_falha(em, dali, contados, [&] {
        comecou = c.aponta(p);
        return comecou ? c.consolida(p) : recusado;
    });
    if (!comecou) std::fclose(std::exchange(p.debugOut, nullptr));
    if (p.debugOut) return "the trace was not closed";
    if (saida == outra_excecao) return "another exception";
    Licenca l;
    l.ponto_no_dia = true;
    l.calado = dali;
    return c.julga(saida, l, &p);
}

// With the parser of a run that failed: what it had read must not show in the next answers.
std::string relatorio(const Relato& relato, const std::string& dados, const std::string& id,
                      const std::string& certo, std::size_t em, bool dali, std::size_t& contados) {
    std::unique_ptr<LogMailFileParser> p;
    std::unique_ptr<LogResult> r;
    std::string texto;
    bool pronto = false;
    const int saida = sob_falha(em, dali, contados, [&] {
        p = std::make_unique<LogMailFileParser>();
        pronto = prepara(*p, dados);
        if (!pronto) return recusado;
        r = std::make_unique<LogResult>();
        texto = relata(relato, *p, *r, id);
        return feito;
    });
    if (saida == outra_excecao) return "another exception";
    // No exception: the C library did without, or a day file that could not be opened is missing.
    if (em == 0 && texto != certo) return "two answers differ";
    if (!pronto) {
        p = std::make_unique<LogMailFileParser>();
        prepara(*p, dados);
    }
    if (r) relata(relato, *p, *r, id);  // with the rows that are in it already
    LogResult outro;
    return relata(relato, *p, outro, id) == certo ? "" : "the next report differs";
}

// An addition that found no memory has changed nothing, in this user or in another; those behind it
// count again.
std::string dos_contadores(std::size_t em, bool dali, std::size_t& contados) {
    constexpr unsigned num_usuarios = 30, num_adicoes = 300, periodos = 24;
    std::vector<std::unique_ptr<Usuario>> usuarios;
    std::vector<std::uint32_t> certo(num_usuarios * periodos);
    for (unsigned i = 0; i < num_usuarios; ++i)
        usuarios.push_back(std::make_unique<Usuario>("ana", periodos));
    unsigned i = 0;
    const auto soma = [&] {
        for (; i < num_adicoes; ++i) {
            // Three in a row are counted the same.
            const unsigned u = i * 7 % num_usuarios, p = i / 3 % periodos;
            usuarios[u]->addRecvBytes(p, static_cast<int>(1 + i / 3));
            certo[u * periodos + p] += 1 + i / 3;
        }
        return feito;
    };
    const auto confere = [&] {
        for (unsigned j = 0; j < num_usuarios * periodos; ++j)
            if (usuarios[j / periodos]->bytes_recv[j % periodos] != certo[j]) return false;
        return true;
    };
    if (sob_falha(em, dali, contados, soma) == outra_excecao) return "another exception";
    if (!confere()) return "an addition that failed has counted";
    soma();
    return confere() ? "" : "additions behind the fault are lost";
}

// Behind the fault the key can be written and read again.
std::string do_registro(const std::string& pasta, const std::string& certo, std::size_t em,
                        bool dali, std::size_t& contados) {
    const int saida = sob_falha(em, dali, contados, [&] {
        escreve_registro(pasta, "some");
        le_registro(pasta);
        return feito;
    });
    if (saida == outra_excecao) return "another exception";
    escreve_registro(pasta, "other");
    return le_registro(pasta) == certo ? "" : "the registry does not hold what was written";
}

// The message of the tree with the most lines.
std::string mais_longa(const std::string& dados) {
    std::map<std::string, int> linhas;
    for (const auto& e : std::filesystem::recursive_directory_iterator(dados)) {
        if (!e.path().filename().string().starts_with(diario::compacto)) continue;
        std::ifstream f(e.path());
        std::string linha, t, agente, status, id;
        while (std::getline(f, linha))
            if (std::istringstream(linha) >> t >> agente >> status >> id && id.size() == 16 &&
                id.find_first_not_of("0123456789ABCDEF") == id.npos)  // else it is a user
                ++linhas[id];
    }
    std::string achada;
    for (const auto& [id, n] : linhas)
        if (achada.empty() || n > linhas[achada]) achada = id;
    return achada;
}

}  // namespace

bool varre_memoria(const std::string& pasta, bool tudo) {
    const std::size_t passo = tudo ? 1 : 7;
    bool bom = true;
    Cenario c({"memory", false, false, tudo ? 200u : 90u}, pasta);
    bom &= separado("consolidation", passo, [&](std::size_t em, bool dali, std::size_t& n) {
        return consolidacao(c, em, dali, n);
    });
    c.repoe();
    c.consolida();
    const std::string dados = c.raiz() + "/DAT";
    const std::string id = mais_longa(dados);
    for (const Relato& relato : relatos) {
        LogMailFileParser p;
        LogResult r;
        prepara(p, dados);
        const std::string certo = relata(relato, p, r, id);
        bom &= separado(relato.nome, passo, [&](std::size_t em, bool dali, std::size_t& n) {
            return relatorio(relato, dados, id, certo, em, dali, n);
        });
    }
    bom &= separado("counters", passo, dos_contadores);
    escreve_registro(pasta + "/registry", "other");
    const std::string certo = le_registro(pasta + "/registry");
    bom &= separado("registry", passo, [&](std::size_t em, bool dali, std::size_t& n) {
        return do_registro(pasta + "/registry", certo, em, dali, n);
    });
    return bom;
}

}  // namespace falhas
