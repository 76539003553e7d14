// One log line, or a few: the compact lines that parser() writes, against the rules told a second
// time.
#include "common/LogMailFileParser.h"

#include <cstring>

#include "fuzz/apoio.h"
#include "fuzz/referencia.h"

namespace {

class Parser : public LogMailFileParser {
  public:
    ~Parser() { consolidate(nullptr); }  // empties the tables: the clock says that it is too early

    static time_t cedo(time_t*) { return 0; }
};

std::string compacta(const referencia::Palavras& linhas) {
    Saida saida;
    {
        Parser p;
        p.relogio_do_sistema = Parser::cedo;
        p.calculatePeriodLimits();
        p.compact_logfile = saida.stream;
        for (const std::string& l : linhas) {
            std::memcpy(p.osBuf.lbuf, l.c_str(), l.size() + 1);
            exige(p.parser() == 1, "parser answers 1");
        }
        p.compact_logfile = nullptr;
    }
    return saida.texto();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* dados, std::size_t n) {
    Entrada e(dados, n);
    define_zona(e.byte());
    const referencia::Palavras linhas = referencia::linhas(e.resto(), 2046);
    std::string quer;
    for (const std::string& l : linhas) quer += referencia::Evento(l).compacta;
    exige(compacta(linhas) == quer, "the compact lines");
    return 0;
}
