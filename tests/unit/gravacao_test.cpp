// Files written whole or not at all, wherever their name leads.
#include "misc/gravacao.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "tests/unit/apoio/arvore.h"
#include "tests/unit/apoio/limite.h"

namespace {

// Another user's rights while it lives, where the test runs as root.
class SemPrivilegio {
  public:
    SemPrivilegio() : root_(geteuid() == 0) {
        if (root_ && seteuid(65534) != 0) throw std::runtime_error("still root");
    }
    SemPrivilegio(const SemPrivilegio&) = delete;
    SemPrivilegio& operator=(const SemPrivilegio&) = delete;
    ~SemPrivilegio() { EXPECT_TRUE(!root_ || seteuid(0) == 0); }

  private:
    bool root_;
};

class GravacaoTest : public testing::Test {
  protected:
    // Writes `texto` over `rel`; 0 or the errno of the first step that failed.
    int grava(const std::string& rel, const std::string& texto) {
        Gravacao g;
        if (!g.abre(arvore.path(rel).c_str())) return errno;
        EXPECT_NE(fcntl(fileno(g.stream()), F_GETFD) & FD_CLOEXEC, 0);
        std::fwrite(texto.data(), 1, texto.size(), g.stream());
        return g.conclui() ? 0 : errno;
    }

    struct stat estado(const std::string& rel) {
        struct stat st {};
        EXPECT_EQ(lstat(arvore.path(rel).c_str(), &st), 0) << rel;
        return st;
    }

    void liga(const std::string& alvo, const std::string& rel) {
        ASSERT_EQ(symlink(alvo.c_str(), arvore.path(rel).c_str()), 0);
    }

    int entradas() {
        int n = 0;
        for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator(arvore.path()))
            ++n;
        return n;
    }

    ArvoreTemporaria arvore;
};

TEST_F(GravacaoTest, NewFileTakesTheUmask) {
    const mode_t antes = umask(027);
    EXPECT_EQ(grava("a", "new"), 0);
    umask(antes);
    EXPECT_EQ(arvore.read("a"), "new");
    EXPECT_EQ(estado("a").st_mode & 07777, 0640u);
    EXPECT_EQ(entradas(), 1);
}

TEST_F(GravacaoTest, RegularFileIsReplacedAndKeepsModeAndOwner) {
    const std::string a = arvore.write("a", "old");
    ASSERT_EQ(chmod(a.c_str(), 0604), 0);
    ASSERT_TRUE(geteuid() != 0 || chown(a.c_str(), 12, 34) == 0);
    const struct stat antes = estado("a");
    const Stream leitor = abre_leitura(a.c_str());
    EXPECT_EQ(grava("a", "brand new"), 0);
    const struct stat depois = estado("a");
    EXPECT_EQ(arvore.read("a"), "brand new");
    EXPECT_NE(depois.st_ino, antes.st_ino);
    EXPECT_EQ(depois.st_mode, antes.st_mode);
    EXPECT_EQ(depois.st_uid, antes.st_uid);
    EXPECT_EQ(depois.st_gid, antes.st_gid);
    // Whoever had the old file open still reads all of it.
    char lido[8] = {};
    EXPECT_EQ(std::fread(lido, 1, sizeof lido, leitor.get()), 3u);
    EXPECT_STREQ(lido, "old");
}

TEST_F(GravacaoTest, LinksAreFollowed) {
    arvore.write("real/a", "old");
    liga("real/a", "um");
    liga(arvore.path("um"), "dois");
    liga("real/new", "solta");
    EXPECT_EQ(grava("dois", "via two links"), 0);
    EXPECT_EQ(grava("solta", "via a dangling one"), 0);
    EXPECT_EQ(arvore.read("real/a"), "via two links");
    EXPECT_EQ(arvore.read("real/new"), "via a dangling one");
    for (const char* l : {"um", "dois", "solta"}) EXPECT_TRUE(S_ISLNK(estado(l).st_mode)) << l;
    EXPECT_EQ(entradas(), 4);

    liga("real/none/x", "perdida");
    EXPECT_EQ(grava("perdida", "x"), ENOENT);
    liga("anel", "anel");
    EXPECT_EQ(grava("anel", "x"), ELOOP);
}

TEST_F(GravacaoTest, HardLinksAreWrittenInPlace) {
    const std::string a = arvore.write("a", "old and longer");
    ASSERT_EQ(link(a.c_str(), arvore.path("b").c_str()), 0);
    const ino_t antes = estado("a").st_ino;
    EXPECT_EQ(grava("a", "new"), 0);
    EXPECT_EQ(arvore.read("b"), "new");
    EXPECT_EQ(estado("a").st_ino, antes);
    EXPECT_EQ(entradas(), 2);
}

TEST_F(GravacaoTest, AbandonedWritingLeavesTheOldFile) {
    arvore.write("a", "old");
    {
        Gravacao g;
        ASSERT_TRUE(g.abre(arvore.path("a").c_str()));
        std::fputs("half of it", g.stream());
        EXPECT_TRUE(arvore.exists("a.novo"));
    }
    EXPECT_EQ(arvore.read("a"), "old");
    EXPECT_EQ(entradas(), 1);
}

TEST_F(GravacaoTest, LeftoversAreReplaced) {
    arvore.write("a", "old");
    arvore.write("a.novo", "of a killed run");
    const ino_t antes = estado("a").st_ino;
    EXPECT_EQ(grava("a", "new"), 0);
    EXPECT_EQ(arvore.read("a"), "new");
    EXPECT_NE(estado("a").st_ino, antes);
    EXPECT_EQ(entradas(), 1);
}

// A link, a directory or another user's file beside the target is left alone, and the target
// written in place.
TEST_F(GravacaoTest, WhatIsNotALeftoverStays) {
    arvore.write("victim", "whole");
    liga("victim", "link.novo");
    arvore.write("dir.novo/inside", "whole");
    arvore.write("other.novo", "whole");
    if (geteuid() == 0) {
        ASSERT_EQ(chown(arvore.path("other.novo").c_str(), 65534, 65534), 0);
    }
    for (const std::string nome : {"link", "dir", "other"}) {
        arvore.write(nome, "old and longer");
        const ino_t antes = estado(nome.c_str()).st_ino;
        EXPECT_EQ(grava(nome.c_str(), "new"), 0) << nome;
        EXPECT_EQ(arvore.read(nome), "new") << nome;
        // The owner of all three, where the test does not run as root, replaces what is his.
        EXPECT_TRUE(estado(nome.c_str()).st_ino == antes || (nome == "other" && geteuid() != 0));
    }
    for (const char* nome : {"victim", "dir.novo/inside"}) EXPECT_EQ(arvore.read(nome), "whole");
    EXPECT_TRUE(std::filesystem::is_symlink(arvore.path("link.novo")));
}

TEST_F(GravacaoTest, PipesAreNeverRenamedOver) {
    ASSERT_EQ(mkfifo(arvore.path("cano").c_str(), 0600), 0);
    const Stream leitor = abre_leitura(arvore.path("cano").c_str());
    ASSERT_TRUE(leitor);
    EXPECT_EQ(grava("cano", "through"), 0);
    char lido[16] = {};
    EXPECT_EQ(read(fileno(leitor.get()), lido, sizeof lido), 7);
    EXPECT_STREQ(lido, "through");
    EXPECT_TRUE(S_ISFIFO(estado("cano").st_mode));
    EXPECT_EQ(entradas(), 1);
}

TEST_F(GravacaoTest, FullDeviceIsTold) {
    liga("/dev/full", "cheio");
    ASSERT_EQ(chmod(arvore.path().c_str(), 0755), 0);
    // Never as root: a fault in the code under test would replace the machine's device.
    const SemPrivilegio outro;
    EXPECT_EQ(grava("cheio", "x"), ENOSPC);
    EXPECT_EQ(grava("cheio", std::string(100000, 'x')), ENOSPC);
}

TEST_F(GravacaoTest, UnwritableTargetsAreToldAtOnce) {
    ASSERT_EQ(mkdir(arvore.path("d").c_str(), 0755), 0);
    ASSERT_EQ(mkfifo(arvore.path("cano").c_str(), 0600), 0);
    arvore.write("a", "old");
    EXPECT_EQ(grava("d", "x"), EISDIR);
    EXPECT_EQ(grava("cano", "x"), ENXIO);  // nobody reads it
    EXPECT_EQ(grava("a/b", "x"), ENOTDIR);
    EXPECT_EQ(grava("none/b", "x"), ENOENT);
    EXPECT_EQ(entradas(), 3);
}

TEST_F(GravacaoTest, FullDiskLeavesTheOldFile) {
    arvore.write("a", "old");
    // The second text passes the limit only after several flushes of the stream's buffer.
    for (const std::size_t tamanho : {std::size_t{3000}, std::size_t{300000}}) {
        const std::string texto(tamanho, 'x');
        const rlim_t limite = tamanho - 10;
        int erro;
        {
            const DiscoCheio cheio(limite);
            erro = grava("a", texto);
        }
        EXPECT_EQ(erro, EFBIG) << tamanho;
        EXPECT_EQ(arvore.read("a"), "old");
        EXPECT_EQ(entradas(), 1);
    }
    EXPECT_EQ(grava("a", "new"), 0);
}

TEST_F(GravacaoTest, WithoutAFitTemporaryItIsWrittenInPlace) {
    // No new file in the directory; or one that could not be given to the old file's owner.
    for (const mode_t modo : {0555, 0777}) {
        const std::string a = arvore.write("d/a", "old and longer");
        ASSERT_EQ(chmod(a.c_str(), 0666), 0);
        ASSERT_EQ(chmod(arvore.path("d").c_str(), modo), 0);
        ASSERT_EQ(chmod(arvore.path().c_str(), 0755), 0);
        const struct stat antes = estado("d/a");
        int erro;
        {
            const SemPrivilegio outro;
            erro = grava("d/a", "new");
        }
        EXPECT_EQ(erro, 0);
        EXPECT_EQ(arvore.read("d/a"), "new");
        EXPECT_EQ(estado("d/a").st_uid, antes.st_uid);
        // The owner itself, where the test does not run as root, may replace it.
        EXPECT_TRUE(estado("d/a").st_ino == antes.st_ino || (modo == 0777 && geteuid() != 0));
        EXPECT_FALSE(arvore.exists("d/a.novo"));
    }
    ASSERT_EQ(chmod(arvore.path("d").c_str(), 0555), 0);
    {
        const SemPrivilegio outro;
        EXPECT_EQ(grava("d/b", "new"), EACCES);
    }
    EXPECT_EQ(chmod(arvore.path("d").c_str(), 0755), 0);
}

}  // namespace
