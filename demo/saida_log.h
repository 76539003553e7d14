// The dispatcher's log as it lies on disk: the live file, and the pieces that rotation renamed.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

#include "misc/ncutils.h"

namespace gerador {

// Lines between two rotations, or one of these.
constexpr std::uint64_t rotacao_diaria = 0;
constexpr std::uint64_t rotacao_nenhuma = UINT64_MAX;

// Writes "MAIL_DISPATCHER.LOG" in a directory. A rotation renames it, by the local day of its first
// line, to "MAIL_DISPATCHER.LOG.YYYYMMDD" (one piece a day) or "MAIL_DISPATCHER.LOG.YYYYMMDD-NNNN";
// names of pieces ascend, and all of them before the live file are the log unrotated. Two files
// never begin in the same second: their order is told by their first lines' times.
//
// Errors of the disk are thrown as std::system_error, and so is a directory that has logs already:
// real logs are not to be mixed with invented ones.
class SaidaLog {
  public:
    SaidaLog(const std::string& diretorio, std::uint64_t rotacao);

    // A line of second `t`: `carimbo`, ": ", `texto` and `fim` (its line end). May rotate first.
    void linha(std::time_t t, std::string_view carimbo, std::string_view texto,
               std::string_view fim);
    // Bytes after an earlier line, in the same file.
    void crua(std::string_view bytes);
    // A new day begins: rotates when rotation goes by the day.
    void novo_dia();
    // Writes out what is buffered.
    void conclui();

    std::uint64_t linhas() const { return linhas_; }
    std::uint64_t bytes() const { return bytes_; }
    unsigned arquivos() const { return arquivos_; }

  private:
    void abre(std::time_t t);
    void corta();

    std::string vivo_;        // path of the live file
    std::uint64_t rotacao_;   // lines a file, or one of the two values above
    Stream stream_;           // null until the file's first line
    std::time_t inicio_ = 0;  // second of the live file's first line
    std::uint64_t no_arquivo_ = 0;
    std::uint64_t linhas_ = 0;
    std::uint64_t bytes_ = 0;
    unsigned arquivos_ = 0;
};

}  // namespace gerador
