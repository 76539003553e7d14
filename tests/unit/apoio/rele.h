// A small mail relay for tests: writes dispatcher logs, consolidates them, reads the day files.
//
// Times are local and written "2018-03-15 10:20:30". What is left out behind is 0, and in front it
// is March 2009: "15 10" is ten o'clock of that 15th, "15" its midnight, or the day.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "common/LogMailFileParser.h"
#include "tests/unit/apoio/arvore.h"

// The time zone of the process, for as long as this stands.
class Zona {
  public:
    explicit Zona(const char* tz);
    ~Zona();

  private:
    std::string antes_;
};

// A time in full; its Unix seconds.
std::string por_extenso(const std::string& quando);
time_t hora(const std::string& quando);
// The same in hexadecimal, as compact lines begin.
std::string T(const std::string& quando);

// The path of a day file below a tree.
std::string arquivo_do_dia(const std::string& dia, const char* prefixo);

class Rele {
  public:
    explicit Rele(const char* tz = "UTC0");
    Rele(const Rele&) = delete;
    Rele& operator=(const Rele&) = delete;

    // Adds a line to the live log: stamp of `quando`, two words to skip, then `palavras`.
    Rele& linha(const std::string& quando, const std::string& palavras);
    // A local user's message from its submission to its end, delivered outside.
    Rele& mensagem(const std::string& quando, const std::string& id, const std::string& de = "ana");
    // Several messages, "time id" each.
    Rele& mensagens(std::initializer_list<const char*> todas);
    // Adds raw bytes to the live log.
    Rele& bruto(const std::string& bytes);
    // Gives the live log another name and starts a new one.
    void rotaciona(const std::string& nome);

    // Sets the clock and consolidates with a new parser (the state of a new process).
    bool consolida(const std::string& agora, bool forcado = false);
    // As above with a parser of the caller's.
    bool consolida(LogMailFileParser& p, const std::string& agora);

    // The day files of a day and the last-consolidation file.
    std::string compacto(const std::string& dia) const;
    std::string estatistica(const std::string& dia) const;
    // First line of a statistics file without its two times: "spam virus error att int bytes ...".
    std::string totais(const std::string& dia) const;
    // The lines of a user over all periods: "period: counters;" a line.
    std::string usuario(const std::string& dia, const std::string& nome) const;
    std::string ultimo() const { return arvore.read("last"); }
    // What the last consolida() traced; the tree's path is written "@".
    std::string traco() const;

    ArvoreTemporaria arvore;  // logs in "LOGS", day files in "DAT", "last"
    std::size_t bytes_por_leitura = LeitorLinhas::bloco;

  private:
    Zona zona_;
};

// A temporary stream in memory for debugOut or a compact file.
class Memoria {
  public:
    Memoria() : stream(open_memstream(&texto_, &tamanho_)) {}
    ~Memoria();
    std::string texto();
    const char* buffer() const { return texto_; }  // as the last flush or the closing left it
    std::FILE* stream;

  private:
    char* texto_ = nullptr;
    std::size_t tamanho_ = 0;
};
