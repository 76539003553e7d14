// The consolidation driver: cuts a growing, rotated log into one set of output files a local day.
#pragma once

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <vector>

#include "borland/vtstring.h"
#include "common/relatorio.h"
#include "common/relogio.h"
#include "misc/leitor.h"

// The reading position, kept from one day to the next.
struct OutStatus {
    int fileIdx;      // index in inputFiles of the next file to open
    std::FILE* fin;   // the open input, or null
    char lbuf[2048];  // the current line as read, line end included
};

// Knows where logs and output live, finds the logs that still hold unconsolidated lines, reads them
// across file boundaries, and calls five operations that a concrete parser supplies. Days are local
// days; all times are Unix seconds. Directories are at most 128 bytes. Trace lines go to `debugOut`
// when it is set; they end in LF.
class LogFileParser {
  public:
    static constexpr std::size_t max_entradas = 1000;  // the ending one included

    char def_dir[129];                    // default directory name; not used
    char def_fname[81];                   // name of the live log, with which rotated ones begin
    char data_dir[129];                   // root of the output tree
    char logs_dir[129];                   // where the logs are
    bool forceMode;                       // consolidate up to now, and again on the same day
    bool activity_today;                  // a line of the current day reached parser()
    int consolid_period;                  // seconds
    time_t lastConsolid;                  // midnight of the (next) day to consolidate
    std::FILE* debugOut;                  // trace; taken over and closed by consolidate()
    InputFiles inputFiles[max_entradas];  // ascending; ended by a null `file`
    OutStatus osBuf;

    LogFileParser();
    LogFileParser(const LogFileParser&) = delete;
    LogFileParser& operator=(const LogFileParser&) = delete;

    // Opens the output of the day that starts at lastConsolid. False: it could not be.
    virtual bool createFiles() { return true; }
    // Handles the line in osBuf.lbuf, whatever was brought there. Always 1.
    virtual int parser() = 0;
    // Finishes the day's output. False ends the run after this day.
    virtual bool dumpFiles() = 0;
    // Records lastConsolid and what is carried over in the last-consolidation file.
    virtual bool createLastConsolidFile(const char* path) = 0;
    // Reads what is carried over, from behind the first line.
    virtual bool readExtraInfo(std::FILE* f) = 0;
    // Called with the next lines of the open log, before parser() is called for those that belong
    // to the day, so that the parser can prepare for them. The texts hold until the next such call,
    // and LeitorLinhas::folga bytes behind each can be read.
    virtual void antecipa(const LeitorLinhas::Trecho* linhas, std::size_t n);

    // Take a directory; it is copied. False for null or more than 128 bytes. setDataDir also makes
    // the directory (one level, 0755) when it cannot be opened, and answers false when that fails.
    bool setDataDir(const char* dir);
    bool setLogDir(const char* dir);
    const char* getDataDir() const { return data_dir; }
    const char* getLogDir() const { return logs_dir; }
    // The product's installation directory, from the registry: its first 127 bytes, "" when key or
    // value are missing. Creates nothing.
    VeltoString getPontaraPath();
    // Cannot be taken back.
    void setForceMode() { forceMode = true; }

    // Consolidates every day from the point recorded in the file up to today's midnight (in force
    // mode: up to now) and records the point reached, except after a forced run that was not a
    // first one. A day whose files cannot be created ends the run and is its point. False when the
    // run stopped because something could not be read or written as it should: then nothing is
    // recorded and the next run does the same days again.
    bool consolidate(const char* lastConsolidFile);

    // Unix seconds of the stamp at the start of a log line, 0 when it is none (see Relogio).
    time_t convTimeFromLog(const char* text) { return relogio_.do_registro(text); }
    // Time of a log's first line; 0 when it has none, cannot be opened or is no regular file.
    time_t getLogInitTime(const char* path);
    // The point recorded in the last-consolidation file, 0 for a first run.
    time_t getLastConsolid(const char* path);
    // Fills inputFiles with the logs beside the live log `path` whose first line is later than
    // lastConsolid: at most the 999 oldest, the rest is left to the next run. True when there is
    // one.
    bool getInputFiles(const char* path);
    // Reads the day of lastConsolid. True: stopped at a line of a later day; false: input ran out.
    bool readInputFiles();
    // The local midnight that follows the day of `t`, also over days of 23 and 25 hours.
    time_t getNextPeriod(time_t t);

    // The clock; tests set their own.
    time_t (*relogio_do_sistema)(time_t*) = ::time;
    // Bytes asked of the system at a time when logs are read; the result does not depend on it.
    std::size_t bytes_por_leitura = LeitorLinhas::bloco;

  protected:
    // The time of the line in osBuf.lbuf.
    time_t hora_do_registro() { return relogio_.da_linha(osBuf.lbuf); }

    // Not virtual: nobody deletes a parser through this class.
    ~LogFileParser();

    void traco(const char* formato, ...) const __attribute__((format(printf, 2, 3)));
    // Traces why something is refused; false.
    bool recusa(const char* texto) const {
        traco("%s", texto);
        return false;
    }

    Relogio relogio_;

    static constexpr std::size_t maior_lote = 64;  // lines shown at a time

    // Which of the lines last shown to antecipa() is the one in osBuf.lbuf; -1 when it is none of
    // them, because it was changed or brought from elsewhere.
    int posicao_no_lote() const;

    // Set by whoever meets a failure after which the point must not move; ends the run.
    bool parada_ = false;

  private:
    struct Candidato;
    bool escolhe_entrada();
    void percorre_dias(time_t ate);
    void termina(bool limpa_debug);
    void esvazia_entradas();
    bool abre_entrada();
    void fecha_entrada();
    bool le_linha();
    bool posiciona();
    void guarda(std::vector<Candidato>& achados);
    bool recurso_em_falta(int erro);
    static constexpr std::size_t maior_linha_ = 2046;  // longer lines go on as the next line

    LeitorLinhas leitor_;
    LeitorLinhas::Trecho lote_[maior_lote];  // the lines last read
    std::size_t no_lote_ = 0;                // how many there are
    std::size_t tomadas_ = 0;                // how many of them were brought into osBuf.lbuf
    std::FILE* mudo_ = nullptr;              // swallows what is written after debugOut was closed
};
