// Preloaded into a process of a test: moves its clock by VT_RELOGIO seconds, kills it before the
// file call of number VT_MATA, or lets the one of number VT_CHEIO fail for want of space. PHP's own
// calls: an extension is bound to the C library ahead of what is preloaded, but for the clock.
//
//     c++ -shared -fPIC -o desvio.so faults/desvio.cpp

#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>
#include <utime.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>

namespace {

long numero(const char* nome) {
    const char* valor = getenv(nome);
    return valor ? std::atol(valor) : 0;
}

long chamadas = 0;

// False when the call is to fail.
bool passa() {
    ++chamadas;
    if (chamadas == numero("VT_MATA")) raise(SIGKILL);
    if (chamadas != numero("VT_CHEIO")) return true;
    errno = ENOSPC;
    return false;
}

}  // namespace

// A file call that may be the one.
#define CHAMADA(nome, tipos, dados)                                                \
    int nome tipos noexcept {                                                      \
        using F = int tipos;                                                       \
        return passa() ? reinterpret_cast<F*>(dlsym(RTLD_NEXT, #nome)) dados : -1; \
    }

extern "C" {

CHAMADA(rename, (const char* de, const char* para), (de, para))
CHAMADA(mkdir, (const char* nome, mode_t modo), (nome, modo))
CHAMADA(rmdir, (const char* nome), (nome))
CHAMADA(unlink, (const char* nome), (nome))
CHAMADA(chmod, (const char* nome, mode_t modo), (nome, modo))
CHAMADA(utime, (const char* nome, const utimbuf* quando), (nome, quando))

time_t time(time_t* para) noexcept {
    timespec agora;
    clock_gettime(CLOCK_REALTIME, &agora);
    if (para) *para = agora.tv_sec;
    return agora.tv_sec;
}

int gettimeofday(timeval* para, void*) noexcept {
    timespec agora;
    const int r = clock_gettime(CLOCK_REALTIME, &agora);
    *para = {agora.tv_sec, agora.tv_nsec / 1000};
    return r;
}

int clock_gettime(clockid_t relogio, timespec* para) noexcept {
    using F = int(clockid_t, timespec*);
    const int r = reinterpret_cast<F*>(dlsym(RTLD_NEXT, "clock_gettime"))(relogio, para);
    if (relogio == CLOCK_REALTIME) para->tv_sec += numero("VT_RELOGIO");
    return r;
}
}
