// The sweeps, and what they count.
#pragma once

#include <cstdio>
#include <string>

namespace falhas {

// Points of one sweep: how many were tried, and those that went wrong, which are printed.
class Contagem {
  public:
    explicit Contagem(std::string nome) : nome_(std::move(nome)) {}

    // Notes a point; `erro` is what went wrong there, or "".
    void ponto(const std::string& onde, const std::string& erro);
    // Notes a point that this level leaves to the full one.
    void adia() { ++adiados_; }
    // Prints the counts. False when a point failed, or when there were none.
    bool fim() const;

  private:
    std::string nome_;
    unsigned tentados_ = 0, falhos_ = 0, adiados_ = 0;
};

// Each prints its counts and answers whether all was well. `pasta`: where it may work. `tudo`: the
// full level.

// Every file call of a consolidation failed, cut short, and failed from then on.
bool varre_arquivos(const std::string& pasta, bool tudo);
// Every file call of taking the lock failed. Only in a root of our own with a /tmp: the lock is one
// for the machine.
bool varre_trava();
// Killed, and without power, at every file call of a consolidation and of writing the registry.
bool varre_mortes(const std::string& pasta, bool tudo);
// Every allocation of a consolidation, of each report and of the registry failed.
bool varre_memoria(const std::string& pasta, bool tudo);
// Every kind of work, over and over: memory and descriptors stay as they are.
bool repete(const std::string& pasta, bool tudo);

}  // namespace falhas
