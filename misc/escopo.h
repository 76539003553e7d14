// Something to do when a scope is left, by whatever way.
#pragma once

#include <utility>

//     const AoSair fim([&] { relogio.termina(); });
//
// What is done may not throw.
template <class F>
class AoSair {
  public:
    explicit AoSair(F faz) : faz_(std::move(faz)) {}
    AoSair(const AoSair&) = delete;
    AoSair& operator=(const AoSair&) = delete;
    ~AoSair() { faz_(); }

  private:
    F faz_;
};
