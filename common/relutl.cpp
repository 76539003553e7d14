// The single-instance lock around consolidation.
#include "common/relutl.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>

namespace {

constexpr char arquivo[] = "/tmp/vtmrel.lck";
constexpr int modo = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

std::mutex guarda;
int descritor = -1;  // kept open: closing any descriptor of the file would drop the lock

int abre_trava() {
    // Without O_CREAT first: a sticky /tmp refuses it on a file that another user made.
    int fd = open(arquivo, modo);
    if (fd < 0 && errno == ENOENT) {
        fd = open(arquivo, modo | O_CREAT | O_EXCL, 0600);
        if (fd < 0 && errno == EEXIST) fd = open(arquivo, modo);
    }
    struct stat st;
    if (fd >= 0 && (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode))) {
        close(fd);
        return -1;
    }
    return fd;
}

// The path still names the file that is open: nobody cleaned /tmp in the meantime.
bool ainda_vale() {
    struct stat aberto, nomeado;
    return descritor >= 0 && fstat(descritor, &aberto) == 0 && lstat(arquivo, &nomeado) == 0 &&
           aberto.st_dev == nomeado.st_dev && aberto.st_ino == nomeado.st_ino;
}

}  // namespace

bool testaSeUnico() {
    const std::lock_guard<std::mutex> fechado(guarda);
    if (!ainda_vale()) {
        const int novo = abre_trava();
        if (novo < 0) return false;
        if (descritor >= 0) close(descritor);
        descritor = novo;
    }
    return lockf(descritor, F_TLOCK, 0) == 0;
}
