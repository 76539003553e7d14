// The compact files of two days, then their statistics files.
#include "fuzz/alvo.h"
#include "tests/unit/apoio/incomum.h"

void confere(std::string_view entrada) {
    const auto p = partes(entrada, 4);
    confere_dias({p[0], p[1]}, {p[2], p[3]});
}
