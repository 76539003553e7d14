// What the fuzz targets share.
#include "fuzz/apoio.h"

#include <stdlib.h>
#include <unistd.h>

#include <ctime>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

void exige(bool certo, const char* falha) {
    if (certo) return;
    std::fprintf(stderr, "does not hold: %s\n", falha);
    std::abort();
}

std::string Entrada::parte() {
    const std::size_t de = std::min(p_, texto_.size());
    const std::size_t ate = std::min(texto_.find('\x1e', de), texto_.size());
    p_ = ate + 1;
    return texto_.substr(de, ate - de);
}

Arvore::Arvore() {
    const char* const memoria = "/dev/shm";
    const fs::path onde =
        access(memoria, W_OK) == 0 ? fs::path(memoria) : fs::temp_directory_path();
    std::string modelo = (onde / "vt_fuzz_").string();
    modelo.append(6, 'X');
    exige(mkdtemp(modelo.data()) != nullptr, "a temporary directory can be made");
    raiz_ = modelo;
}

Arvore::~Arvore() {
    std::error_code erro;
    fs::remove_all(raiz_, erro);
}

std::string Arvore::grava(const std::string& rel, const std::string& texto) const {
    const std::string p = path(rel);
    fs::create_directories(fs::path(p).parent_path());
    std::ofstream f(p, std::ios::binary);
    f << texto;
    exige(static_cast<bool>(f.flush()), "a file of the tree can be written");
    return p;
}

std::string Arvore::le(const std::string& rel) const {
    std::ifstream f(path(rel), std::ios::binary);
    return {std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>()};
}

void Arvore::apaga(const std::string& rel) const {
    fs::remove_all(path(rel));
}

std::map<std::string, std::string> Arvore::arquivos(const std::string& rel) const {
    std::map<std::string, std::string> tudo;
    if (!fs::exists(path(rel))) return tudo;
    for (const auto& e : fs::recursive_directory_iterator(path(rel))) {
        if (!e.is_regular_file()) continue;
        const std::string nome = fs::relative(e.path(), raiz_).string();
        tudo[nome] = le(nome);
    }
    return tudo;
}

Saida::~Saida() {
    if (stream) std::fclose(stream);
    std::free(texto_);
}

std::string Saida::texto() {
    std::fflush(stream);
    return {texto_, tamanho_};
}

void define_zona(unsigned opcao) {
    static const char* const zonas[] = {"UTC0", "America/Sao_Paulo", "Australia/Lord_Howe"};
    setenv("TZ", zonas[opcao % 3], 1);
    tzset();
}
