// Small file utilities: the directory test, a stream holder, opening and syncing.
#pragma once

#include <cerrno>
#include <cstdio>
#include <memory>

// True when `path` can be examined and its mode has the bit 0x4000. Only that bit is looked at, so
// a socket or a block device passes too: callers only ask whether something stands at a key's
// place.
bool isDirectory(const char* path);

struct FechaStream {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
// A stdio stream that is closed when it goes out of scope.
using Stream = std::unique_ptr<std::FILE, FechaStream>;

// Puts errno back at the end of the scope, for code that clears away after a failure.
class GuardaErrno {
  public:
    GuardaErrno() = default;
    GuardaErrno(const GuardaErrno&) = delete;
    GuardaErrno& operator=(const GuardaErrno&) = delete;
    ~GuardaErrno() { errno = erro_; }

  private:
    const int erro_ = errno;
};

// Makes a system call again when a signal interrupted it: `chama` answers as the call does. Gives
// up after a thousand interruptions in a row.
template <class F>
auto insiste(F chama) {
    auto r = chama();
    for (int vezes = 0; r < 0 && errno == EINTR && vezes < 1000; ++vezes) r = chama();
    return r;
}

// Opens `path` for reading, close-on-exec, and never waits: a FIFO without a writer reads as empty.
// Null on failure, errno set.
Stream abre_leitura(const char* path);

// As abre_leitura, but only regular files (after links): anything else answers null with errno
// ENOENT. When the kind of file cannot be found out, errno tells why.
Stream abre_regular(const char* path);

// Opens `path` for writing from its start (created 0666 less the umask, truncated), close-on-exec,
// and never waits. Null on failure, errno set; the file's content is then unchanged.
std::FILE* abre_escrita(const char* path);

// Flushes, syncs and closes `f`. False when anything written to it, ever, did not reach the disk;
// errno then tells the first reason known.
bool fecha_gravado(std::FILE* f);

// Hands what the kernel still holds of `fd` to the disk. Files that cannot be synced (a terminal, a
// pipe) count as done. False on failure, errno set.
bool sincroniza(int fd);

// Syncs the directory that holds `path`, so that a new name in it lasts. False on failure.
bool sincroniza_diretorio_de(const char* path);
