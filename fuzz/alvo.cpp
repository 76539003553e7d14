// The entry of libFuzzer, and without libFuzzer a run over every file of the folders named.
#include "fuzz/alvo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

std::vector<std::string> partes(std::string_view entrada, std::size_t n) {
    std::vector<std::string> p(n);
    for (std::size_t i = 0; i < n; ++i) {
        p[i] = entrada.substr(0, i + 1 < n ? entrada.find('\x1e') : entrada.npos);
        entrada.remove_prefix(std::min(p[i].size() + 1, entrada.size()));
    }
    return p;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* dados, std::size_t n) {
    GTEST_FLAG_SET(break_on_failure, true);
    confere({reinterpret_cast<const char*>(dados), n});
    return 0;
}

#ifndef VT_LIBFUZZER
int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    int vezes = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& e : fs::directory_iterator(argv[i])) {
            std::ifstream f(e.path(), std::ios::binary);
            // Of exactly its size, so that a byte read behind it shows.
            std::vector<std::uint8_t> dados{std::istreambuf_iterator<char>(f), {}};
            dados.shrink_to_fit();
            // Said before the run, so that the last one named is the one that failed.
            std::printf("%s\n", e.path().c_str());
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(dados.data(), dados.size());
            ++vezes;
        }
    std::printf("%d inputs\n", vezes);
    return vezes > 0 ? 0 : 1;
}
#endif
