// Replacing a file whole or not at all: for the recorded point and the registry's value files.
#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <string>

#include "misc/ncutils.h"

// One writing of one file:
//
//     Gravacao g;
//     if (!g.abre(path)) ...          // errno tells why; nothing was touched
//     fprintf(g.stream(), ...);
//     if (!g.conclui()) ...           // errno tells why; the old file is whole
//
// A regular file is written beside itself under the fixed name `path` + ".novo" (links resolved),
// synced, given the old file's mode, owner and group (a new file: 0666 less the umask), and renamed
// over; then the directory is synced. Where a replacement would do harm or cannot be made, the
// target is written in place and synced: anything but a regular file, a file with several hard
// links, a directory that takes no new file, an owner that cannot be kept, a name beside it that is
// taken by anything but a regular file of this process's user.
class Gravacao {
  public:
    Gravacao() = default;
    Gravacao(const Gravacao&) = delete;
    Gravacao& operator=(const Gravacao&) = delete;
    // An unfinished writing is abandoned: its temporary goes, the old file stays.
    ~Gravacao();

    // False when `path` cannot be written; it is then neither created nor truncated.
    bool abre(const char* path);
    // The stream to write to, between abre() and conclui(); owned by this object.
    std::FILE* stream() const { return stream_.get(); }
    // False when anything written did not reach the disk.
    bool conclui();

  private:
    bool abre_sobre(const struct stat* velho);
    bool abre_temporario(const struct stat* velho);
    bool abre_no_lugar();

    std::string alvo_;        // the target, links resolved
    std::string temporario_;  // "" when writing in place
    Stream stream_;
};
