// Runs a target once over every file of the folders named: the saved corpus as a test.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/apoio.h"

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    int vezes = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& e : fs::directory_iterator(argv[i])) {
            std::ifstream f(e.path(), std::ios::binary);
            const std::string texto{std::istreambuf_iterator<char>(f),
                                    std::istreambuf_iterator<char>()};
            // Said before the run, so that the last one named is the one that failed.
            std::printf("%s\n", e.path().c_str());
            std::fflush(stdout);
            // Of exactly its size, so that a byte read behind it shows.
            std::vector<std::uint8_t> dados(texto.begin(), texto.end());
            dados.shrink_to_fit();
            LLVMFuzzerTestOneInput(dados.data(), dados.size());
            ++vezes;
        }
    std::printf("%d inputs\n", vezes);
    return vezes > 0 ? 0 : 1;
}
