// Trees of logs and day files on which consolidations are disturbed, and what is right afterwards.
#pragma once

#include <sys/stat.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "common/LogMailFileParser.h"

namespace falhas {

// Relative path to content; directories end in "/" and are empty.
using Imagem = std::map<std::string, std::string>;

// What the work answers that is done on a tree.
enum Saida { feito = 0, parado = 1, recusado = 2, sem_memoria = 3, outra_excecao = 4 };
const char* nome(int saida);

// What the disturbance may have led to, beyond the old point or the new one.
struct Licenca {
    bool ponto_no_dia = false;  // a day file could not be made: that day is the point
    bool log_pulado = false;    // a log could not be opened: its lines are missing
    bool perda = false;         // killed, or power lost: nothing is told, temporaries stay
    bool calado = false;        // too much failed for the failure itself to be told
};

// Two days to consolidate: 2009-03-31 and 2009-04-01, seen from the 2nd of April, whose morning is
// in the live log. Generated traffic, a log a day.
class Cenario {
  public:
    struct Feitio {
        const char* nome;
        bool primeira;   // no day was ever consolidated; else 2009-03-30 is finished and recorded
        bool travessia;  // messages are in flight at both midnights; else at none, and each day
                         // begins in its first period
        unsigned mensagens;  // a day
    };

    // Makes the tree in a directory of its own below `pasta`, and runs it once undisturbed.
    Cenario(const Feitio& feitio, const std::string& pasta);

    const char* nome() const { return feitio_.nome; }
    bool principal() const { return !feitio_.primeira && !feitio_.travessia; }
    const std::string& raiz() const { return raiz_; }

    // Puts everything back as it was before the run; finished days are not touched.
    void repoe();
    // Lets standard error and the trace of the process go into the tree.
    void escuta();
    std::FILE* traco() const { return traco_; }
    // Consolidates with a new parser; answers a Saida.
    int consolida();
    // The same with a parser of the caller's; exceptions leave it. It is given its directories
    // first, which it may refuse (false).
    bool aponta(LogMailFileParser& p) const;
    int consolida(LogMailFileParser& p) const;
    // Judges what a disturbed run left, runs once more undisturbed, judges that. Answers what is
    // wrong, or "".
    std::string julga(int saida, const Licenca& licenca, LogMailFileParser* de_novo = nullptr);
    // What in the tree is not as after an undisturbed run, behind the words `quando`; or "".
    std::string compara(const char* quando) const;

  private:
    Imagem imagem() const;
    void escreve(const std::string& rel, const std::string& texto) const;
    std::string le(const std::string& rel) const;
    void nota_pontos();
    bool comeca_cedo();
    std::string terminados() const;
    bool ponto_legitimo(const std::string& ponto, const Licenca& licenca) const;

    Feitio feitio_;
    std::string raiz_;
    std::string ultimo_;  // path of the last-consolidation file
    std::string agora_;
    std::FILE* traco_ = nullptr;
    std::string velho_, novo_;      // the point before and after the run
    std::set<std::string> pontos_;  // a run that cannot make a day file
    Imagem certa_;                  // the tree after an undisturbed run
    Imagem logs_;
    std::map<std::string, struct stat> finais_;  // the finished day's files
};

}  // namespace falhas
