// Allocations that fail when they are told to: those of C++, of the C library for itself (streams,
// directories), and the blocks of the records.
//
// Under the address sanitizer, which brings its own allocator, the core's calls are redirected by
// the linker and the C library's are left alone; in the other builds these take its place.
#include "faults/memoria.h"

#include <sys/mman.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace falhas {

namespace {

bool armado = false;
std::size_t pedidos = 0, primeiro = 0, ultimo = 0;

bool nega() {
    if (!armado) return false;
    ++pedidos;
    if (pedidos < primeiro || pedidos > ultimo) return false;
    errno = ENOMEM;
    return true;
}

}  // namespace

SemMemoria::SemMemoria(std::size_t em, bool dali_em_diante) {
    pedidos = 0;
    primeiro = em != 0 ? em : SIZE_MAX;
    ultimo = dali_em_diante ? SIZE_MAX : primeiro;
    armado = true;
}

SemMemoria::~SemMemoria() {
    armado = false;
}

std::size_t SemMemoria::contados() const {
    return pedidos;
}

}  // namespace falhas

#ifdef __SANITIZE_ADDRESS__
#define EM_LUGAR_DE(f) __wrap_##f
#define A_VERDADEIRA(f) __real_##f
#else
#define EM_LUGAR_DE(f) f
#define A_VERDADEIRA(f) __libc_##f
#endif

extern "C" {
void* A_VERDADEIRA(malloc)(std::size_t);
void* A_VERDADEIRA(calloc)(std::size_t, std::size_t);
void* A_VERDADEIRA(realloc)(void*, std::size_t);
void* __real_mmap(void*, std::size_t, int, int, int, off_t);

[[gnu::visibility("default")]] void* EM_LUGAR_DE(malloc)(std::size_t n) {
    return falhas::nega() ? nullptr : A_VERDADEIRA(malloc)(n);
}
[[gnu::visibility("default")]] void* EM_LUGAR_DE(calloc)(std::size_t n, std::size_t m) {
    return falhas::nega() ? nullptr : A_VERDADEIRA(calloc)(n, m);
}
[[gnu::visibility("default")]] void* EM_LUGAR_DE(realloc)(void* p, std::size_t n) {
    return falhas::nega() ? nullptr : A_VERDADEIRA(realloc)(p, n);
}
void* __wrap_mmap(void* p, std::size_t n, int protecao, int modo, int fd, off_t inicio) {
    return falhas::nega() ? MAP_FAILED : __real_mmap(p, n, protecao, modo, fd, inicio);
}
}

#ifdef __SANITIZE_ADDRESS__
void* operator new(std::size_t n) {
    if (void* p = EM_LUGAR_DE(malloc)(n ? n : 1)) return p;
    throw std::bad_alloc();
}
void* operator new[](std::size_t n) {
    return operator new(n);
}
void* operator new(std::size_t n, const std::nothrow_t&) noexcept {
    return EM_LUGAR_DE(malloc)(n ? n : 1);
}
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept {
    return EM_LUGAR_DE(malloc)(n ? n : 1);
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete[](void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    std::free(p);
}
#endif
