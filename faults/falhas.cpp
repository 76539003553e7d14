// Disturbs consolidations and reports at every place, and judges what is left:
//
//     falhas {arquivos|trava|mortes|memoria|repeticao} [--tudo]
//
// arquivos: each file call fails. trava: those of taking the lock, in a root of its own. mortes:
// killed, or without power, at each of them. memoria: each allocation fails. repeticao: every kind
// of work a thousand times. Without --tudo a part of the points. Works in a temporary directory of
// its own. Answers 0 when all was well.
#include <sched.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>

#include "faults/varredura.h"

namespace {

class Pasta {
  public:
    Pasta() : path_(std::filesystem::temp_directory_path() / ("falhas_" + std::string(6, 'X'))) {
        if (!mkdtemp(path_.data())) throw std::runtime_error("no temporary directory");
    }
    Pasta(const Pasta&) = delete;
    Pasta& operator=(const Pasta&) = delete;
    ~Pasta() {
        std::error_code erro;
        std::filesystem::remove_all(path_, erro);
    }
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

// Not as root: a fault in what is disturbed must not reach the machine's own files.
void larga_privilegios() {
    constexpr id_t ninguem = 65534;
    if (geteuid() != 0) return;
    // Who changes his user can no longer be traced, unless he says so.
    if (setresgid(ninguem, ninguem, ninguem) != 0 || setresuid(ninguem, ninguem, ninguem) != 0 ||
        prctl(PR_SET_DUMPABLE, 1) != 0)
        throw std::runtime_error("still root");
}

// Runs a sweep in a root directory that holds nothing but a /tmp. A user may not have one, but in a
// user namespace of his own he may.
bool em_raiz_propria(bool (*varre)()) {
    const Pasta raiz;
    const std::string tmp = raiz.path() + "/tmp";
    const pid_t filho = fork();
    if (filho == 0) {
        if ((geteuid() != 0 && unshare(CLONE_NEWUSER) != 0) ||
            chmod(raiz.path().c_str(), 0755) != 0 || mkdir(tmp.c_str(), 0) != 0 ||
            chmod(tmp.c_str(), 01777) != 0 || chroot(raiz.path().c_str()) != 0 || chdir("/") != 0)
            throw std::runtime_error("no root of its own");
        larga_privilegios();
        std::exit(varre() ? 0 : 1);
    }
    int estado;
    return filho > 0 && waitpid(filho, &estado, 0) == filho && estado == 0;
}

}  // namespace

int main(int argc, char** argv) {
    setvbuf(stdout, nullptr, _IOLBF, 0);
    static constexpr struct {
        const char* nome;
        bool (*varre)(const std::string&, bool);
    } varreduras[] = {
        {"arquivos", falhas::varre_arquivos}, {"trava", nullptr},
        {"mortes", falhas::varre_mortes},     {"memoria", falhas::varre_memoria},
        {"repeticao", falhas::repete},
    };
    const bool tudo = argc == 3 && std::strcmp(argv[2], "--tudo") == 0;
    // A zone with another midnight than UTC's; read now, so that no fault can hide it.
    setenv("TZ", "America/Sao_Paulo", 1);
    tzset();
    for (const auto& v : varreduras) {
        if (argc < 2 || argc > 2 + tudo || std::strcmp(argv[1], v.nome) != 0) continue;
        try {
            if (!v.varre) return em_raiz_propria(falhas::varre_trava) ? 0 : 1;
            larga_privilegios();
            const Pasta pasta;
            return v.varre(pasta.path(), tudo) ? 0 : 1;
        } catch (const std::exception& e) {
            std::fprintf(stderr, "falhas %s: %s\n", v.nome, e.what());
            return 1;
        }
    }
    std::fputs("falhas {arquivos|trava|mortes|memoria|repeticao} [--tudo]\n", stderr);
    return 2;
}
