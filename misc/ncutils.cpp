// Small file utilities: the directory test, a stream holder, opening and syncing.
#include "misc/ncutils.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

bool isDirectory(const char* path) {
    struct stat st;
    return stat(path, &st) == 0 && (st.st_mode & 0x4000) != 0;
}

Stream abre_leitura(const char* path) {
    const int fd = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) return nullptr;
    Stream s(fdopen(fd, "rb"));
    if (!s) close(fd);
    return s;
}

Stream abre_regular(const char* path) {
    Stream s = abre_leitura(path);
    struct stat st;
    if (!s || (fstat(fileno(s.get()), &st) == 0 && S_ISREG(st.st_mode))) return s;
    s.reset();
    errno = ENOENT;
    return nullptr;
}

std::FILE* abre_escrita(const char* path) {
    const int fd =
        open(path, O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
    if (fd < 0) return nullptr;
    std::FILE* f = fdopen(fd, "wb");
    if (!f) close(fd);
    return f;
}

bool fecha_gravado(std::FILE* f) {
    // ferror is asked as well: after a failed flush a later fclose can answer 0.
    const bool gravado = std::fflush(f) == 0 && !std::ferror(f) && sincroniza(fileno(f));
    const int erro = errno;
    const bool fechado = std::fclose(f) == 0;
    if (!gravado) errno = erro;
    return gravado && fechado;
}

bool sincroniza(int fd) {
    while (fsync(fd) != 0) {
        if (errno == EINTR) continue;
        return errno == EINVAL || errno == ENOTSUP;
    }
    return true;
}

bool sincroniza_diretorio_de(const char* path) {
    std::string dir(path);
    const auto barra = dir.rfind('/');
    dir = barra == std::string::npos ? "." : barra == 0 ? "/" : dir.substr(0, barra);
    const int fd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return errno == EACCES;  // one that may be written into but not opened
    const bool feito = sincroniza(fd);
    close(fd);
    return feito;
}
