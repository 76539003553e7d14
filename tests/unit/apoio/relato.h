// Hand-written day files, the reports over them, and their rows as text.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "common/logresult.h"
#include "tests/unit/apoio/rele.h"

// A tree of day files and a parser set to it. Days and times are written as those of rele.h.
class Relato {
  public:
    explicit Relato(const char* tz = "UTC0");
    Relato(const Relato&) = delete;
    Relato& operator=(const Relato&) = delete;

    // Writes the compact file of a day from lines separated by "|". "9:30 1 1 A ..." gets that time
    // of the day in hexadecimal; "@" in front keeps a line as it stands; "9:30 A" is a submission
    // of message A.
    Relato& compacto(const std::string& dia, const std::string& linhas);
    // Writes a statistics file as it stands.
    Relato& estatistica(const std::string& dia, const std::string& texto);
    // What was traced since the last call; the tree's path is written "@".
    std::string traco();

    // Each report's rows over a result set of its own, as text. Where no range is given it is the
    // 15th.
    std::string dias(const std::string& de = "15", const std::string& ate = fim);
    std::string dias_de(const std::vector<std::string>& quem, const std::string& de = "15",
                        const std::string& ate = fim);
    std::string horas(const std::string& de = "15", const std::string& ate = fim);
    std::string horas_de(const char* quem, const std::string& de = "15",
                         const std::string& ate = fim);
    struct Filtro {
        const char *para = nullptr, *de = nullptr, *id = nullptr;
        int min_kb = 0, max_kb = 0;
    };
    std::string mensagens(const Filtro& f, const std::string& de = "15",
                          const std::string& ate = fim);
    std::string trace(const char* id, const std::string& de = "15", const std::string& ate = fim);

    static constexpr char fim[] = "15 23:59:59";
    ArvoreTemporaria arvore;
    LogMailFileParser p;

  private:
    Zona zona_;
    Memoria traco_;
    std::size_t traco_lido_ = 0;
};

// A table of cases, "question => answer" a line; those that begin with "#" are remarks. "=0A" and
// the like stand for the byte of that number.
std::vector<std::pair<std::string, std::string>> casos(const char* tabela);

// Requests a user at the front of the set's list.
void pede(LogResult& r, const std::string& usuario);

// All reports of a range, as text. With `lista` from lists of files made beforehand, `de` not after
// `ate`.
std::string tudo(LogMailFileParser& p, long de, long ate, bool lista = false);

// Rows, each ended by "/". "15 10:00:00: int ext bytes_int bytes_ext virus spam error att_blocked".
std::string texto(const DList<MsgsData>& linhas);
// "<hour>h ..." as above, without the rows that are all 0; the number of rows behind them.
std::string texto_horas(const DList<MsgsData>& linhas);
// "<user>:/" and his days.
std::string texto(const DList<MsgsDayUser>& usuarios);
// "id S|N size start sender flags text", flags of I V S E.
std::string texto(const DList<UserMsgs>& linhas);
// "id sender size start end flags text", then a row a recipient: "name time [E] status".
std::string texto(const Msg& m);
