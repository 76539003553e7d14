// A piece of work in a child process whose file calls are counted, and one of them tampered with.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace falhas {

// A system call that touches a file, as the child made it.
struct Chamada {
    const char* nome;
    std::string path;         // of the file, or of what the descriptor was opened for
    bool adulterada = false;  // it was made to fail or cut short
};

// What is done to which calls.
struct Plano {
    enum Acao { nada, erro, curta, disco_cheio, mata };
    enum Alcance { uma, mesmas, todas };  // one call; from it on those of its name; from it on all

    std::size_t em = 0;  // the first call touched, counted from 1; 0: none
    Acao acao = nada;
    Alcance alcance = uma;
    int erro_dado = 0;  // errno that the call answers
};

// What a power cut would leave: the pages of files written since their last sync are lost, and so
// are names made since the last sync of their directory. (A rename is taken to last at once, which
// is the worse case: a name that leads to lost pages.)
class Disco {
  public:
    void nasce(const std::string& path) { nascidos_.insert(path); }
    void suja(const std::string& path) { sujos_.insert(path); }
    void sincroniza(const std::string& path);
    void renomeia(const std::string& de, const std::string& para);
    void apaga(const std::string& path);

    // Makes the tree below `raiz` what is left of it.
    void perde(const std::string& raiz) const;

  private:
    std::set<std::string> sujos_, nascidos_;
};

struct Execucao {
    std::vector<Chamada> chamadas;
    int sinal = 0;            // that ended the child, or 0
    int saida = 0;            // what the work answered
    std::size_t abertos = 0;  // descriptors that it opened and did not close
    Disco disco;
};

// Runs `trabalho` in a forked child under the plan, behind `prepara`, which is left in peace. Every
// system call of the child is stopped at, whoever makes it, stdio included. A child that runs for
// two minutes gets SIGALRM. `no_fim`, if any, is called in this process with what the work
// answered, while the child is still there. Throws std::runtime_error for a system call that it
// cannot tell to be of a file or not.
Execucao roda(const Plano& plano, const std::function<void()>& prepara,
              const std::function<int()>& trabalho, const std::function<void(int)>& no_fim = {});

}  // namespace falhas
