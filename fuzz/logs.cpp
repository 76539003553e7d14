// The records of a last-consolidation file, then a log.
#include "fuzz/alvo.h"
#include "tests/unit/apoio/incomum.h"

void confere(std::string_view entrada) {
    const auto p = partes(entrada, 2);
    confere_log(p[0], p[1]);
}
