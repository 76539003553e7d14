// Small file utilities: the directory test, a stream holder, opening and syncing.
#include "misc/ncutils.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace {

// A stream on a descriptor that waits for nothing and goes to no other program.
Stream abre_stream(const char* path, int modo, const char* modo_do_stream) {
    modo |= O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int fd = insiste([=] { return open(path, modo, 0666); });
    if (fd < 0) return nullptr;
    Stream s(fdopen(fd, modo_do_stream));
    if (s) return s;
    const GuardaErrno guarda;
    close(fd);
    return nullptr;
}

}  // namespace

bool isDirectory(const char* path) {
    struct stat st;
    return stat(path, &st) == 0 && (st.st_mode & 0x4000) != 0;
}

Stream abre_leitura(const char* path) {
    return abre_stream(path, O_RDONLY, "rb");
}

Stream abre_regular(const char* path) {
    Stream s = abre_leitura(path);
    struct stat st;
    if (!s) return s;
    const int erro = fstat(fileno(s.get()), &st) != 0 ? errno : S_ISREG(st.st_mode) ? 0 : ENOENT;
    if (erro == 0) return s;
    s.reset();
    errno = erro;
    return nullptr;
}

std::FILE* abre_escrita(const char* path) {
    Stream s = abre_stream(path, O_WRONLY | O_CREAT, "wb");
    // Emptied last, when nothing else can fail. EINVAL: it has no length.
    if (!s || ftruncate(fileno(s.get()), 0) == 0 || errno == EINVAL) return s.release();
    const GuardaErrno guarda;
    s.reset();
    return nullptr;
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
    return insiste([=] { return fsync(fd); }) == 0 || errno == EINVAL || errno == ENOTSUP;
}

bool sincroniza_diretorio_de(const char* path) {
    std::string dir(path);
    const auto barra = dir.rfind('/');
    dir = barra == std::string::npos ? "." : barra == 0 ? "/" : dir.substr(0, barra);
    const int fd = insiste([&] { return open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (fd < 0) return errno == EACCES;  // one that may be written into but not opened
    const bool feito = sincroniza(fd);
    close(fd);
    return feito;
}
