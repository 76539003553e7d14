// What the fuzz targets share: the input cut into parts, checks that end the process, files in
// memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

// The entry of a target, called once an input; always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* dados, std::size_t n);

// Ends the process with `falha` on the standard error unless `certo`.
void exige(bool certo, const char* falha);

// An input: some bytes of options, then text, in parts that 0x1E separates.
class Entrada {
  public:
    Entrada(const std::uint8_t* dados, std::size_t n)
        : texto_(reinterpret_cast<const char*>(dados), n) {}

    // The next byte; 0 when there is none.
    unsigned byte() { return p_ < texto_.size() ? static_cast<unsigned char>(texto_[p_++]) : 0; }
    // The next part, without its separator; "" when there is none.
    std::string parte();
    // All that is left.
    std::string resto() { return texto_.substr(std::min(p_, texto_.size())); }
    bool acabou() const { return p_ >= texto_.size(); }

  private:
    std::string texto_;
    std::size_t p_ = 0;
};

// A directory of the process's own, on a file system in memory where there is one; removed at its
// end.
class Arvore {
  public:
    Arvore();
    ~Arvore();
    Arvore(const Arvore&) = delete;
    Arvore& operator=(const Arvore&) = delete;

    std::string path(const std::string& rel) const { return raiz_ + "/" + rel; }
    // Writes a file, with the directories above it; answers its path.
    std::string grava(const std::string& rel, const std::string& texto) const;
    std::string le(const std::string& rel) const;
    void apaga(const std::string& rel) const;
    // All files below a directory by their paths.
    std::map<std::string, std::string> arquivos(const std::string& rel) const;

  private:
    std::string raiz_;
};

// A stream that writes into a text.
class Saida {
  public:
    Saida() : stream(open_memstream(&texto_, &tamanho_)) {}
    ~Saida();
    Saida(const Saida&) = delete;
    Saida& operator=(const Saida&) = delete;
    std::string texto();
    std::FILE* stream;

  private:
    char* texto_ = nullptr;
    std::size_t tamanho_ = 0;
};

// One of some zones, chosen by an option byte: without shifts, west with shifts, shifts of half an
// hour.
void define_zona(unsigned opcao);
