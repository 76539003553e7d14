// Preloaded into a process of a test: moves its clock by VT_RELOGIO seconds, kills it before the
// file call of number VT_MATA, or lets the one of number VT_CHEIO fail for want of space.
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

template <class F>
F* verdadeira(const char* nome) {
    return reinterpret_cast<F*>(dlsym(RTLD_NEXT, nome));
}

}  // namespace

extern "C" {

int rename(const char* de, const char* para) noexcept {
    return passa() ? verdadeira<int(const char*, const char*)>("rename")(de, para) : -1;
}

int mkdir(const char* nome, mode_t modo) noexcept {
    return passa() ? verdadeira<int(const char*, mode_t)>("mkdir")(nome, modo) : -1;
}

int rmdir(const char* nome) noexcept {
    return passa() ? verdadeira<int(const char*)>("rmdir")(nome) : -1;
}

int unlink(const char* nome) noexcept {
    return passa() ? verdadeira<int(const char*)>("unlink")(nome) : -1;
}

int chmod(const char* nome, mode_t modo) noexcept {
    return passa() ? verdadeira<int(const char*, mode_t)>("chmod")(nome, modo) : -1;
}

int utime(const char* nome, const utimbuf* quando) noexcept {
    return passa() ? verdadeira<int(const char*, const utimbuf*)>("utime")(nome, quando) : -1;
}

int fsync(int fd) {
    return passa() ? verdadeira<int(int)>("fsync")(fd) : -1;
}

time_t time(time_t* para) noexcept {
    const time_t agora = verdadeira<time_t(time_t*)>("time")(nullptr) + numero("VT_RELOGIO");
    if (para) *para = agora;
    return agora;
}

int gettimeofday(timeval* para, void* zona) noexcept {
    const int r = verdadeira<int(timeval*, void*)>("gettimeofday")(para, zona);
    para->tv_sec += numero("VT_RELOGIO");
    return r;
}

int clock_gettime(clockid_t relogio, timespec* para) noexcept {
    const int r = verdadeira<int(clockid_t, timespec*)>("clock_gettime")(relogio, para);
    if (relogio == CLOCK_REALTIME) para->tv_sec += numero("VT_RELOGIO");
    return r;
}
}
