// A temporary directory tree that goes with its test, and whole files in and out of it.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class ArvoreTemporaria {
  public:
    ArvoreTemporaria() {
        std::string modelo = (std::filesystem::temp_directory_path() / "vtXXXXXX").string();
        if (!mkdtemp(modelo.data())) std::abort();
        raiz_ = modelo;
    }
    ~ArvoreTemporaria() { std::filesystem::remove_all(raiz_); }
    ArvoreTemporaria(const ArvoreTemporaria&) = delete;
    ArvoreTemporaria& operator=(const ArvoreTemporaria&) = delete;

    // Full path of a file of the tree, or of its root.
    std::string path(const std::string& rel = "") const {
        return rel.empty() ? raiz_ : raiz_ + "/" + rel;
    }
    // Writes a whole file, making its folders.
    void write(const std::string& rel, const std::string& texto) const {
        std::filesystem::create_directories(std::filesystem::path(path(rel)).parent_path());
        std::ofstream(path(rel), std::ios::binary) << texto;
    }
    // A whole file; "" when it is not there.
    std::string read(const std::string& rel) const {
        std::ifstream f(path(rel), std::ios::binary);
        return {std::istreambuf_iterator<char>(f), {}};
    }
    bool exists(const std::string& rel) const { return std::filesystem::exists(path(rel)); }

  private:
    std::string raiz_;
};
