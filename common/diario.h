// The day files: their names and the formats of their lines, shared by the writer and the readers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include "common/Usuario.h"
#include "common/relatorio.h"
#include "misc/ncutils.h"

namespace diario {

// Name prefixes of the two files of a day.
constexpr char compacto[] = "compact_mail_";
constexpr char estatistica[] = "mail_stat_";

// Room for any path of a day file: a data directory of 128 bytes, a prefix of 80, the numbers.
constexpr std::size_t maior_caminho = 256;

// Writes "<dir>/rels_MM-YY", the directory of a month (1 to 12) of a year of the century.
void nome_do_mes(char (&path)[maior_caminho], const char* dir, int mes, int ano);

// Writes "<dir>/rels_MM-YY/<prefix>DD.txt", a file of the day `dia` of that month.
void nome_do_dia(char (&path)[maior_caminho], const char* dir, int mes, int ano, const char* prefix,
                 int dia);

// Day totals, in the order of the first line of a statistics file. The counters wrap at 32 bits and
// are written signed, so 2^31 bytes and more show as negative numbers.
struct Totais {
    std::uint32_t spam, virus, error, att_blocked, msgs_int, bytes_int, msgs_ext, bytes_ext;
};

// --- The lines of a statistics file, as they are written and read. Numbers keep their low 32 bits.

// First line: the first second of the first counted period, the last second of the last one (Unix
// seconds), the totals. It is read whole or not at all: false when a number is missing.
void escreve_totais(std::FILE* f, time_t inicio, time_t fim, const Totais& totais);
bool le_totais(const char* linha, Totais& totais);
// What a report's row of totals shows of them.
void mostra(const Totais& totais, MsgsData& linha);

// "[<Unix seconds>]": the start of a period. Any line that begins with "[" is read as one.
void escreve_periodo(std::FILE* f, time_t inicio);
bool e_periodo(const char* linha);
time_t le_periodo(const char* linha);

// A user's counters of one period: his name of `tamanho` bytes, sent, bytes_sent, recv, bytes_recv,
// virus, spam, error, att_blocked.
void escreve_usuario(std::FILE* f, const char* nome, std::size_t tamanho, const usuStats& s);
// Reads the name, "" of a blank line, and answers where the counters begin; reads those, 0 for each
// that is missing.
const char* le_nome(const char* linha, std::string& nome);
usuStats le_contadores(const char* numeros);
// Adds them to a report's row of that user. Spam and errors change places, unlike in the totals:
// pages have always shown them so.
void soma(const usuStats& s, MsgsData& linha);

// The day files of a report: from `start`, every 86400 seconds, while not later than `end`. Names
// go by UTC here, by local time in the writer: they agree when each step has the same date in both.
// Walks only days whose file can exist (2000 to 2099), without memory for the range.
class Dias {
  public:
    // No days unless `start` is earlier than `end`.
    Dias(const char* dir, const char* prefix, time_t start, time_t end);
    // The files of an array that getFiles filled for the range, up to its first null.
    Dias(const InputFiles* files, time_t start, time_t end);

    // Goes to the (next) day; false when there is none.
    bool proximo();
    // The day's file, and `start` plus its 86400 second steps.
    const char* path() const { return files_ ? files_->file : path_; }
    time_t dia() const { return dia_; }
    // The file, open for reading; null when it cannot be opened.
    Stream abre();

  private:
    const InputFiles* files_ = nullptr;
    std::uint64_t restam_ = 0;  // days not yet walked
    bool parado_ = true;        // before the first day
    time_t dia_;
    const char* dir_ = nullptr;
    const char* prefix_ = nullptr;
    int mes_ = 0, ano_ = 0;
    int mes_ausente_ = 0, ano_ausente_ = 0;  // a month without a directory: nothing to open in it
    char path_[maior_caminho] = {};
};

// Writes the path of the day file that readers look for at `t`, and its month and year.
void nome_para_leitor(char (&path)[maior_caminho], const char* dir, const char* prefix, time_t t,
                      int& mes, int& ano);

}  // namespace diario
