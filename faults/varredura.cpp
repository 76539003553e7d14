// The counts of the sweeps.
#include "faults/varredura.h"

namespace falhas {

void Contagem::ponto(const std::string& onde, const std::string& erro) {
    constexpr unsigned mostrados = 20;
    ++tentados_;
    if (erro.empty()) return;
    if (++falhos_ <= mostrados) std::printf("FAILED %s: %s\n", onde.c_str(), erro.c_str());
    if (falhos_ == mostrados + 1) std::printf("FAILED: more are only counted\n");
}

bool Contagem::fim() const {
    std::printf("%s: %u points tried, %u passed, %u failed", nome_.c_str(), tentados_,
                tentados_ - falhos_, falhos_);
    if (adiados_ != 0) std::printf("; %u more at the full level", adiados_);
    std::printf("\n");
    std::fflush(stdout);
    return falhos_ == 0 && tentados_ != 0;
}

}  // namespace falhas
