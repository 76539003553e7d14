// The splitters and the search for line ends, vectorised or not, against one character at a time.
#include <algorithm>
#include <cstring>
#include <memory>

#include "common/auxiliar.h"
#include "fuzz/apoio.h"
#include "fuzz/referencia.h"
#include "misc/bytes.h"
#include "misc/finais.h"
#include "misc/leitor.h"
#include "misc/ncutils.h"
#include "misc/palavras.h"

namespace {

using referencia::Palavras;

// A copy of exactly the text's size, so that a byte read behind it shows.
std::unique_ptr<char[]> copia(const std::string& s, bool com_nul = true) {
    std::unique_ptr<char[]> c(new char[s.size() + com_nul]);
    std::memcpy(c.get(), s.data(), s.size());
    if (com_nul) c[s.size()] = '\0';
    return c;
}

void confere_tokens(const std::string& texto, int max) {
    const auto linha = copia(texto);
    std::vector<char*> t(static_cast<std::size_t>(max) + 1, nullptr);
    const int n = getTokens(linha.get(), t.data(), max);
    const Palavras quer = referencia::palavras(texto, static_cast<std::size_t>(max));
    exige(Palavras(t.begin(), t.begin() + n) == quer, "getTokens");
    exige(t[static_cast<std::size_t>(max)] == nullptr, "no word beyond the most asked for");
}

void confere_explode(const std::string& texto, char sep) {
    const auto linha = copia(texto);
    int n = 0;
    const std::unique_ptr<char*[]> p(explode(linha.get(), sep, &n));
    const Palavras quer = referencia::pedacos(texto, sep);
    exige(static_cast<std::size_t>(n) == quer.size(), "the pieces of explode");
    if (!p) return;
    exige(p[static_cast<std::size_t>(n)] == nullptr, "a null ends the pieces");
    exige(Palavras(p.get(), p.get() + n) == quer, "explode");

    const auto outra = copia(texto);
    const auto vagas = static_cast<std::size_t>(std::count(texto.begin(), texto.end(), sep)) + 1;
    const std::unique_ptr<char*[]> q(new char*[vagas]);
    const int m = reparte(outra.get(), sep, q.get());
    exige(Palavras(q.get(), q.get() + m) == quer, "reparte as explode");
}

// `bytes`: Cortes::maior of them.
void confere_cortes(const std::string& bytes) {
    const auto texto = copia(bytes, false);
    char a[Cortes::maior], b[Cortes::maior];
    const Cortes cortes = copia_palavras(a, texto.get());
    exige(cortes == copia_palavras_uma_a_uma(b, texto.get()), "where words are cut");
    exige(std::memcmp(a, b, sizeof a) == 0, "the copy of the words");
    const bool nul = bytes.find('\0') != std::string::npos;
    exige(tem_nul(texto.get(), bytes.size()) == nul, "tem_nul");
}

void confere_marcas(const std::string& bytes) {
    const auto texto = copia(bytes, false);
    const std::size_t n = bytes.size();
    for (std::size_t i = 0; i < n; i += 29)
        for (const std::size_t m : {std::size_t{1}, std::size_t{17}, std::size_t{64}})
            if (i + m <= n) exige(marcas(&texto[i], m) == marcas_uma_a_uma(&texto[i], m), "marcas");
    for (std::size_t i = 0; i + 64 <= n; i += 13) {
        exige(finais(&texto[i]) == finais_um_a_um(&texto[i]), "finais");
        for (const std::size_t m : {i % 33, n - i})
            exige(primeiro_branco(&texto[i], m) == primeiro_branco_um_a_um(&texto[i], m),
                  "primeiro_branco");
    }
    for (std::size_t i = 0; i + Cortes::maior <= n; i += 17)
        confere_cortes(bytes.substr(i, Cortes::maior));
    std::string curtos = bytes.substr(0, Cortes::maior);
    curtos.resize(Cortes::maior);
    confere_cortes(curtos);
}

// The lines of a file by single lines and by batches, whatever is asked of the system at a time.
void confere_leitor(const std::string& bytes, std::size_t leitura, std::size_t limite) {
    static const Arvore arvore;
    const std::string path = arvore.grava("linhas", bytes);
    const Palavras quer = referencia::linhas(bytes, limite);
    for (const bool lotes : {false, true}) {
        const Stream f = abre_regular(path.c_str());
        LeitorLinhas leitor;
        leitor.abre(fileno(f.get()), leitura);
        Palavras lidas;
        LeitorLinhas::Trecho lote[5];
        for (std::size_t n; (n = leitor.varias(lote, lotes ? 5 : 1, limite)) != 0;)
            for (std::size_t i = 0; i < n; ++i) lidas.emplace_back(lote[i].inicio, lote[i].tamanho);
        exige(lidas == quer, "the lines of a file");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* dados, std::size_t n) {
    Entrada e(dados, n);
    const int max = static_cast<int>(e.byte() % 60);
    const char sep = " ,;\n@"[e.byte() % 5];
    const std::size_t leitura = 1 + e.byte();
    const std::size_t limite = 1 + e.byte() * 8;
    const std::string bytes = e.resto();
    const std::string texto = bytes.c_str();
    confere_tokens(texto, max);
    confere_explode(texto, sep);
    confere_marcas(bytes);
    confere_leitor(bytes, leitura, limite);
    return 0;
}
