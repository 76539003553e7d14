// Tampering with the file calls of a child, through ptrace: unlike a preloaded library it sees the
// calls that the C library makes for itself, and it can cut a write short that then really is.
#include "faults/rastreio.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace falhas {

namespace {

constexpr unsigned limite_de_tempo = 120;  // seconds: far more than a busy machine needs

// What a call touches: nothing, the file of a descriptor (its first argument), or that of a path.
enum Toca { nada, fd, path0, path1, path1_ou_fd };
struct Tipo {
    long numero;
    const char* nome;
    Toca toca;
};

// The calls that the works make.
// clang-format off
#define CHAMADAS(C)\
    C(openat, path1) \
    C(open, path0) C(rename, path0) C(unlink, path0) C(mkdir, path0) C(stat, path0) \
    C(lstat, path0) C(access, path0) C(readlink, path0) \
    C(newfstatat, path1_ou_fd) \
    C(read, fd) C(write, fd) C(writev, fd) C(close, fd) C(fsync, fd) \
    C(fdatasync, fd) C(fstat, fd) C(getdents64, fd) C(fcntl, fd) C(lseek, fd) \
    C(ioctl, fd) C(fchmod, fd) C(fchown, fd) C(ftruncate, fd) C(dup, fd) \
    C(brk, nada) C(mmap, nada) C(munmap, nada) C(mprotect, nada) C(mremap, nada) \
    C(madvise, nada) C(futex, nada) C(rt_sigprocmask, nada) C(rt_sigaction, nada) C(rt_sigreturn, nada) \
    C(getpid, nada) C(gettid, nada) C(tgkill, nada) C(exit_group, nada) C(clock_gettime, nada) \
    C(getrandom, nada) C(restart_syscall, nada)
// clang-format on
#define DE(nome, toca) {SYS_##nome, #nome, toca},
constexpr Tipo tipos[] = {CHAMADAS(DE)};
#undef DE
#undef CHAMADAS

// Null for a call that touches no file.
const Tipo* tipo_de(long numero) {
    for (const Tipo& t : tipos)
        if (t.numero == numero) return t.toca != nada ? &t : nullptr;
    throw std::runtime_error("system call " + std::to_string(numero) + " is not known to faults");
}

long pede(__ptrace_request pedido, pid_t filho, unsigned long dado) {
    const long r = ptrace(pedido, filho, nullptr, dado);
    if (r == -1 && errno != ESRCH)
        throw std::system_error(errno, std::generic_category(), "ptrace");
    return r;
}

class Rastreio {
  public:
    Rastreio(pid_t filho, const Plano& plano, const std::function<void(int)>& no_fim)
        : filho_(filho), plano_(plano), no_fim_(no_fim) {}

    Execucao segue();

  private:
    void entra();
    void sai();
    std::string texto(unsigned long endereco) const;
    std::string path_de(const Tipo& tipo) const;
    bool alcancada(const char* nome) const;
    void adultera();
    void nota_no_disco(long resposta);

    pid_t filho_;
    const Plano& plano_;
    const std::function<void(int)>& no_fim_;
    Execucao e_;
    user_regs_struct regs_{};
    const Tipo* tipo_ = nullptr;  // of the call that the child is in; null: not of a file
    std::string outro_;           // second path of a rename
    bool novo_ = false;           // an open that will make the file
    long resposta_ = 0;           // forced answer, when not 0
    bool encurtou_ = false;       // disk full: the short write is done
    std::map<int, std::string> abertos_;
};

// The text at an address of the child.
std::string Rastreio::texto(unsigned long endereco) const {
    constexpr unsigned long pagina = 4096;
    std::string t;
    char pedaco[pagina];
    while (t.size() < PATH_MAX) {
        const unsigned long n = pagina - endereco % pagina;  // the next page may not be there
        iovec aqui{pedaco, n}, la{reinterpret_cast<void*>(endereco), n};
        const ssize_t lidos = process_vm_readv(filho_, &aqui, 1, &la, 1, 0);
        if (lidos <= 0) throw std::system_error(errno, std::generic_category(), "path of a call");
        const std::string parte(pedaco, static_cast<std::size_t>(lidos));
        t += parte.substr(0, parte.find('\0'));
        if (parte.find('\0') != std::string::npos) break;
        endereco += n;
    }
    return t;
}

std::string Rastreio::path_de(const Tipo& tipo) const {
    std::string path;
    if (tipo.toca != fd) path = texto(tipo.toca == path0 ? regs_.rdi : regs_.rsi);
    if (!path.empty() || tipo.toca == path0 || tipo.toca == path1) return path;
    const auto a = abertos_.find(static_cast<int>(regs_.rdi));
    return a == abertos_.end() ? "" : a->second;
}

bool Rastreio::alcancada(const char* nome) const {
    const std::size_t esta = e_.chamadas.size();
    if (plano_.em == 0 || esta < plano_.em) return false;
    if (esta == plano_.em || plano_.alcance == Plano::todas) return true;
    return plano_.alcance == Plano::mesmas && nome == e_.chamadas[plano_.em - 1].nome;
}

// Changes the call that the child is about to make.
void Rastreio::adultera() {
    const bool encurtavel =
        (tipo_->numero == SYS_write || tipo_->numero == SYS_read) && regs_.rdx > 1 && !encurtou_;
    resposta_ = 0;
    switch (plano_.acao) {
        case Plano::nada:
            return;
        case Plano::mata:
            kill(filho_, SIGKILL);
            break;
        case Plano::erro:
            resposta_ = -plano_.erro_dado;
            break;
        case Plano::disco_cheio:
            if (!encurtavel) resposta_ = -ENOSPC;
            [[fallthrough]];
        case Plano::curta:
            if (!encurtavel) break;
            regs_.rdx /= 2;
            encurtou_ = plano_.acao == Plano::disco_cheio;
            break;
    }
    if (resposta_ != 0) regs_.orig_rax = static_cast<unsigned long>(-1);  // no call at all
    if (plano_.acao != Plano::mata)
        pede(PTRACE_SETREGS, filho_, reinterpret_cast<unsigned long>(&regs_));
    e_.chamadas.back().adulterada = true;
}

void Rastreio::entra() {
    pede(PTRACE_GETREGS, filho_, reinterpret_cast<unsigned long>(&regs_));
    tipo_ = tipo_de(static_cast<long>(regs_.orig_rax));
    resposta_ = 0;
    if (regs_.orig_rax == SYS_exit_group && no_fim_) no_fim_(static_cast<int>(regs_.rdi));
    if (!tipo_) return;
    e_.chamadas.push_back({tipo_->nome, path_de(*tipo_)});
    outro_ = tipo_->numero == SYS_rename ? texto(regs_.rsi) : "";
    struct stat st;
    novo_ = tipo_->numero == SYS_openat && (regs_.rdx & O_CREAT) != 0 &&
            lstat(e_.chamadas.back().path.c_str(), &st) != 0;
    if (alcancada(tipo_->nome)) adultera();
}

void Rastreio::sai() {
    if (!tipo_) return;
    user_regs_struct fim;
    if (pede(PTRACE_GETREGS, filho_, reinterpret_cast<unsigned long>(&fim)) != 0) return;
    if (resposta_ != 0) {
        fim.rax = static_cast<unsigned long>(resposta_);
        pede(PTRACE_SETREGS, filho_, reinterpret_cast<unsigned long>(&fim));
    } else {
        nota_no_disco(static_cast<long>(fim.rax));
    }
}

void Rastreio::nota_no_disco(long resposta) {
    if (resposta < 0) return;
    const std::string& path = e_.chamadas.back().path;
    switch (tipo_->numero) {
        case SYS_openat:
            abertos_[static_cast<int>(resposta)] = path;
            if (novo_) e_.disco.nasce(path);
            if ((regs_.rdx & O_TRUNC) != 0) e_.disco.suja(path);
            break;
        case SYS_close:
            abertos_.erase(static_cast<int>(regs_.rdi));
            break;
        case SYS_write:
        case SYS_writev:
        case SYS_ftruncate:
            e_.disco.suja(path);
            break;
        case SYS_fsync:
        case SYS_fdatasync:
            e_.disco.sincroniza(path);
            break;
        case SYS_mkdir:
            e_.disco.nasce(path);
            break;
        case SYS_rename:
            e_.disco.renomeia(path, outro_);
            break;
        case SYS_unlink:
            e_.disco.apaga(path);
            break;
        default:
            break;
    }
}

Execucao Rastreio::segue() {
    bool dentro = false;
    unsigned long sinal = 0;
    for (;;) {
        pede(PTRACE_SYSCALL, filho_, sinal);
        sinal = 0;
        int estado;
        if (waitpid(filho_, &estado, 0) != filho_)
            throw std::system_error(errno, std::generic_category(), "waitpid");
        if (WIFEXITED(estado) || WIFSIGNALED(estado)) {
            e_.sinal = WIFSIGNALED(estado) ? WTERMSIG(estado) : 0;
            e_.saida = WIFEXITED(estado) ? WEXITSTATUS(estado) : 0;
            e_.abertos = abertos_.size();
            return std::move(e_);
        }
        if (WSTOPSIG(estado) != (SIGTRAP | 0x80)) {
            sinal = static_cast<unsigned long>(WSTOPSIG(estado));
            continue;
        }
        dentro = !dentro;
        dentro ? entra() : sai();
    }
}

}  // namespace

void Disco::sincroniza(const std::string& path) {
    sujos_.erase(path);
    std::erase_if(nascidos_, [&](const std::string& n) {
        return std::filesystem::path(n).parent_path() == path;
    });
}

void Disco::renomeia(const std::string& de, const std::string& para) {
    sujos_.erase(para);
    if (sujos_.erase(de) != 0) sujos_.insert(para);
    nascidos_.erase(de);
}

void Disco::apaga(const std::string& path) {
    sujos_.erase(path);
    nascidos_.erase(path);
}

void Disco::perde(const std::string& raiz) const {
    for (const std::string& s : sujos_)
        if (s.starts_with(raiz + "/")) truncate(s.c_str(), 0);
    for (const std::string& n : nascidos_)
        if (n.starts_with(raiz + "/")) std::filesystem::remove_all(n);
}

Execucao roda(const Plano& plano, const std::function<void()>& prepara,
              const std::function<int()>& trabalho, const std::function<void(int)>& no_fim) {
    const pid_t filho = fork();
    if (filho < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (filho == 0) {
        prepara();
        alarm(limite_de_tempo);
        prctl(PR_SET_PDEATHSIG, SIGKILL);  // a sweep that is broken off leaves nobody behind
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(127);
        raise(SIGSTOP);
        _exit(trabalho());
    }
    int estado;
    if (waitpid(filho, &estado, 0) != filho || !WIFSTOPPED(estado))
        throw std::runtime_error("the child cannot be traced");
    pede(PTRACE_SETOPTIONS, filho, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    return Rastreio(filho, plano, no_fim).segue();
}

}  // namespace falhas
