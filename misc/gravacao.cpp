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
// "", errno set, when that cannot be found out: a link must not be taken for the file itself.
std::string sem_ligacoes(std::string path) {
    for (int saltos = 0; saltos < 40; ++saltos) {
        char destino[PATH_MAX];
        const ssize_t n = readlink(path.c_str(), destino, sizeof destino);
        if (n < 0 && errno != EINVAL && errno != ENOENT) return "";
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

// Makes the temporary's name free: removes what a killed run left behind. Anything that no run can
// have left belongs to somebody else and stays; the answer is then false, errno set.
bool retira_resto(const char* path) {
    struct stat st;
    if (lstat(path, &st) != 0) return errno == ENOENT;
    if (S_ISREG(st.st_mode) && st.st_uid == geteuid()) return unlink(path) == 0;
    errno = EACCES;
    return false;
}

}  // namespace

Gravacao::~Gravacao() {
    if (stream_ && !temporario_.empty()) unlink(temporario_.c_str());
}

bool Gravacao::abre(const char* path) {
    // Memory may end here, while nothing is open yet.
    alvo_ = sem_ligacoes(path);
    temporario_ = alvo_ + ".novo";
    if (alvo_.empty()) return false;
    const int alvo = insiste([=] { return open(path, escrita); });
    if (alvo < 0 && errno != ENOENT) return false;
    struct stat velho;
    const bool aberto =
        alvo < 0 ? abre_sobre(nullptr) : fstat(alvo, &velho) == 0 && abre_sobre(&velho);
    const GuardaErrno guarda;
    if (alvo >= 0) close(alvo);
    return aberto;
}

// `velho` is the old file, null when there is none.
bool Gravacao::abre_sobre(const struct stat* velho) {
    const bool no_lugar = velho && (!S_ISREG(velho->st_mode) || velho->st_nlink > 1);
    if (!no_lugar && abre_temporario(velho)) return true;
    return (no_lugar || nao_cabe_temporario(errno)) && abre_no_lugar();
}

bool Gravacao::abre_temporario(const struct stat* velho) {
    if (!retira_resto(temporario_.c_str())) return false;
    const int fd = insiste([&] {
        return open(temporario_.c_str(), escrita | O_CREAT | O_EXCL | O_NOFOLLOW,
                    velho ? 0600 : 0666);
    });
    if (fd < 0) return false;
    if (!velho || herda(fd, *velho)) stream_.reset(fdopen(fd, "wb"));
    if (stream_) return true;
    const GuardaErrno guarda;
    close(fd);
    unlink(temporario_.c_str());
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
        const GuardaErrno guarda;
        if (!feito) unlink(temporario_.c_str());
    }
    return feito && sincroniza_diretorio_de(alvo_.c_str());
}
