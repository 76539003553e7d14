// A directory of its own for a test, removed with everything in it.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// Paths given to the members are relative to the directory.
class ArvoreTemporaria {
  public:
    ArvoreTemporaria() {
        std::string modelo = (std::filesystem::temp_directory_path() / "vt_").string();
        modelo.append(6, 'X');
        if (mkdtemp(modelo.data())) raiz_ = modelo;
        EXPECT_FALSE(raiz_.empty()) << "no temporary directory";
    }
    ArvoreTemporaria(const ArvoreTemporaria&) = delete;
    ArvoreTemporaria& operator=(const ArvoreTemporaria&) = delete;
    ~ArvoreTemporaria() {
        std::error_code erro;
        if (!raiz_.empty()) std::filesystem::remove_all(raiz_, erro);
    }

    // The directory itself, or the absolute path of something in it.
    std::string path(const std::string& rel = "") const {
        return rel.empty() ? raiz_ : raiz_ + "/" + rel;
    }

    // Writes a whole file, with the directories above it; answers its absolute path.
    std::string write(const std::string& rel, const std::string& texto) const {
        const std::string p = path(rel);
        std::filesystem::create_directories(std::filesystem::path(p).parent_path());
        std::ofstream f(p, std::ios::binary);
        f << texto;
        EXPECT_TRUE(f.flush()) << p;
        return p;
    }

    // The whole content of a file; "" when it is not there.
    std::string read(const std::string& rel) const {
        std::ifstream f(path(rel), std::ios::binary);
        return {std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>()};
    }

    // Also true for a symbolic link that leads nowhere.
    bool exists(const std::string& rel) const {
        return std::filesystem::exists(std::filesystem::symlink_status(path(rel)));
    }

  private:
    std::string raiz_;
};
