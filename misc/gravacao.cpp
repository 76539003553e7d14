// Replacing a file whole or not at all.
#include "misc/gravacao.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>

namespace {

constexpr int escrita = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

// The file that `path` names in the end, also when it does not exist yet: realpath() refuses that.
std::string sem_ligacoes(std::string path) {
    for (int saltos = 0; saltos < 40; ++saltos) {
        char destino[PATH_MAX];
        const ssize_t n = readlink(path.c_str(), destino, sizeof destino);
        if (n < 0) break;
        const std::string lido(destino, static_cast<std::size_t>(n));
        const auto barra = path.rfind('/');
        if (lido.starts_with('/') || barra == std::string::npos)
            path = lido;
        else
            path.replace(barra + 1, std::string::npos, lido);
    }
    return path;
}

bool nao_cabe_temporario(int erro) {
    return erro == EACCES || erro == EPERM || erro == EROFS || erro == ENAMETOOLONG;
}

// Gives `fd` the owner and the mode of the file it will replace.
bool herda(int fd, const struct stat& velho) {
    struct stat novo;
    if (fstat(fd, &novo) != 0) return false;
    if ((novo.st_uid != velho.st_uid || novo.st_gid != velho.st_gid) &&
        fchown(fd, velho.st_uid, velho.st_gid) != 0)
        return false;
    return fchmod(fd, velho.st_mode & 07777) == 0;
}

}  // namespace

Gravacao::~Gravacao() {
    if (stream_ && !temporario_.empty()) unlink(temporario_.c_str());
}

bool Gravacao::abre(const char* path) {
    const int alvo = open(path, escrita);
    if (alvo < 0 && (errno != ENOENT || *path == '\0')) return false;
    alvo_ = sem_ligacoes(path);
    struct stat st;
    const bool no_lugar =
        alvo >= 0 && (fstat(alvo, &st) != 0 || !S_ISREG(st.st_mode) || st.st_nlink > 1);
    bool aberto = !no_lugar && abre_temporario(alvo);
    if (!aberto && (no_lugar || nao_cabe_temporario(errno))) aberto = abre_no_lugar();
    const int erro = errno;
    if (alvo >= 0) close(alvo);
    errno = erro;
    return aberto;
}

// `alvo` is the old file, or negative when there is none.
bool Gravacao::abre_temporario(int alvo) {
    temporario_ = alvo_ + ".novo";
    unlink(temporario_.c_str());  // what a killed run left behind
    const int fd =
        open(temporario_.c_str(), escrita | O_CREAT | O_EXCL | O_NOFOLLOW, alvo < 0 ? 0666 : 0600);
    if (fd < 0) return false;
    struct stat velho;
    if (alvo < 0 || (fstat(alvo, &velho) == 0 && herda(fd, velho))) stream_.reset(fdopen(fd, "wb"));
    if (stream_) return true;
    const int erro = errno;
    close(fd);
    unlink(temporario_.c_str());
    errno = erro;
    return false;
}

bool Gravacao::abre_no_lugar() {
    temporario_.clear();
    stream_.reset(abre_escrita(alvo_.c_str()));
    return stream_ != nullptr;
}

bool Gravacao::conclui() {
    bool feito = fecha_gravado(stream_.release());
    if (!temporario_.empty()) {
        feito = feito && std::rename(temporario_.c_str(), alvo_.c_str()) == 0;
        const int erro = errno;
        if (!feito) unlink(temporario_.c_str());
        errno = erro;
    }
    return feito && sincroniza_diretorio_de(alvo_.c_str());
}
