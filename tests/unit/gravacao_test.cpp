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
    int grava(const std::string& rel, const std::string& texto = "new") {
        Gravacao g;
        errno = EISDIR;  // of something else, long ago
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

    void muda(const std::string& rel, mode_t modo) {
        ASSERT_EQ(chmod(arvore.path(rel).c_str(), modo), 0);
    }

    long entradas() {
        std::filesystem::directory_iterator todas(arvore.path());
        return std::distance(begin(todas), end(todas));
    }

    ArvoreTemporaria arvore;
};

// A new file takes the umask; an old one is replaced, keeps mode and owner, and whoever had it open
// still reads all of it. What a killed run left beside it goes.
TEST_F(GravacaoTest, novosESubstituidos) {
    const mode_t antes = umask(027);
    EXPECT_EQ(grava("novo"), 0);
    umask(antes);
    EXPECT_EQ(estado("novo").st_mode & 07777, 0640u);
    const std::string a = arvore.write("a", "old");
    arvore.write("a.novo", "of a killed run");
    muda("a", 0604);
    ASSERT_TRUE(geteuid() != 0 || chown(a.c_str(), 12, 34) == 0);
    const struct stat velho = estado("a");
    const Stream leitor = abre_leitura(a.c_str());
    EXPECT_EQ(grava("a", "brand new"), 0);
    const struct stat novo = estado("a");
    EXPECT_EQ(arvore.read("a"), "brand new");
    EXPECT_NE(novo.st_ino, velho.st_ino);
    EXPECT_EQ(novo.st_mode, velho.st_mode);
    EXPECT_TRUE(novo.st_uid == velho.st_uid && novo.st_gid == velho.st_gid);
    char lido[8] = {};
    EXPECT_EQ(std::fread(lido, 1, sizeof lido, leitor.get()), 3u);
    EXPECT_STREQ(lido, "old");
    EXPECT_EQ(entradas(), 2);
}

TEST_F(GravacaoTest, ligacoesSaoSeguidas) {
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
    liga("anel", "anel");
    EXPECT_EQ(grava("perdida"), ENOENT);
    EXPECT_EQ(grava("anel"), ELOOP);
    // A second name of the file sees what is written: it is written in place.
    arvore.write("b", "old and longer");
    ASSERT_EQ(link(arvore.path("b").c_str(), arvore.path("c").c_str()), 0);
    EXPECT_EQ(grava("b"), 0);
    EXPECT_EQ(arvore.read("c"), "new");
    EXPECT_FALSE(arvore.exists("b.novo"));
}

TEST_F(GravacaoTest, abandonadaDeixaOVelho) {
    arvore.write("a", "old");
    {
        Gravacao g;
        ASSERT_TRUE(g.abre(arvore.path("a").c_str()));
        std::fputs("half of it", g.stream());
        EXPECT_TRUE(arvore.exists("a.novo"));
    }
    EXPECT_EQ(arvore.read("a"), "old");
    EXPECT_EQ(entradas(), 1);
    // The second text passes the limit only after several flushes of the stream's buffer.
    for (const std::size_t tamanho : {std::size_t{3000}, std::size_t{300000}}) {
        int erro;
        {
            const Limite cheio(RLIMIT_FSIZE, tamanho - 10);
            erro = grava("a", std::string(tamanho, 'x'));
        }
        EXPECT_EQ(erro, EFBIG) << tamanho;
        EXPECT_EQ(arvore.read("a"), "old");
        EXPECT_EQ(entradas(), 1);
    }
}

// A new name lasts only once its folder is synced. That takes a descriptor, and here no more can be
// had.
TEST_F(GravacaoTest, pastaNaoSincronizadaEDita) {
    Gravacao g;
    ASSERT_TRUE(g.abre(arvore.path("a").c_str()));
    const Limite esgotado(RLIMIT_NOFILE, static_cast<rlim_t>(fileno(g.stream())));
    EXPECT_FALSE(g.conclui());
    EXPECT_EQ(errno, EMFILE);
}

// A link, a directory or another user's file beside the target is left alone, and the target
// written in place.
TEST_F(GravacaoTest, oQueNaoERestoFica) {
    arvore.write("victim", "whole");
    liga("victim", "link.novo");
    arvore.write("dir.novo/inside", "whole");
    const std::string other = arvore.write("other.novo", "whole");
    ASSERT_TRUE(geteuid() != 0 || chown(other.c_str(), 65534, 65534) == 0);
    for (const std::string nome : {"link", "dir", "other"}) {
        arvore.write(nome, "old and longer");
        const ino_t antes = estado(nome).st_ino;
        EXPECT_EQ(grava(nome), 0) << nome;
        EXPECT_EQ(arvore.read(nome), "new") << nome;
        // The owner of all three, where the test does not run as root, replaces what is his.
        EXPECT_TRUE(estado(nome).st_ino == antes || (nome == "other" && geteuid() != 0));
    }
    for (const char* nome : {"victim", "dir.novo/inside"}) EXPECT_EQ(arvore.read(nome), "whole");
    EXPECT_TRUE(S_ISLNK(estado("link.novo").st_mode));
}

// No pipe is renamed over; what cannot be written is told at once.
TEST_F(GravacaoTest, canosEAlvosImpossiveis) {
    ASSERT_EQ(mkfifo(arvore.path("cano").c_str(), 0600), 0);
    EXPECT_EQ(grava("cano"), ENXIO);  // nobody reads it
    const Stream leitor = abre_leitura(arvore.path("cano").c_str());
    EXPECT_EQ(grava("cano", "through"), 0);
    char lido[16] = {};
    EXPECT_EQ(read(fileno(leitor.get()), lido, sizeof lido), 7);
    EXPECT_TRUE(S_ISFIFO(estado("cano").st_mode));
    arvore.write("d/x", "");
    EXPECT_EQ(grava("d"), EISDIR);
    EXPECT_EQ(grava("cano/b"), ENOTDIR);
    EXPECT_EQ(grava("none/b"), ENOENT);
    EXPECT_EQ(entradas(), 2);
    liga("/dev/full", "cheio");
    muda("", 0755);
    // Never as root: a fault in the code under test would replace the machine's device.
    const SemPrivilegio outro;
    EXPECT_EQ(grava("cheio", "x"), ENOSPC);
    EXPECT_EQ(grava("cheio", std::string(100000, 'x')), ENOSPC);
}

// No new file in the directory; or one that could not be given to the old file's owner.
TEST_F(GravacaoTest, semTemporarioEscreveNoLugar) {
    arvore.write("d/a", "");
    muda("d/a", 0666);
    muda("", 0755);
    for (const mode_t modo : {0777, 0555}) {
        arvore.write("d/a", "old and longer");
        muda("d", modo);
        const struct stat antes = estado("d/a");
        int erro, sem_lugar;
        {
            const SemPrivilegio outro;
            erro = grava("d/a");
            sem_lugar = modo == 0555 ? grava("d/b") : EACCES;
        }
        EXPECT_EQ(erro, 0);
        EXPECT_EQ(sem_lugar, EACCES);
        EXPECT_EQ(arvore.read("d/a"), "new");
        EXPECT_EQ(estado("d/a").st_uid, antes.st_uid);
        // The owner itself, where the test does not run as root, may replace it.
        EXPECT_TRUE(estado("d/a").st_ino == antes.st_ino || (modo == 0777 && geteuid() != 0));
        EXPECT_FALSE(arvore.exists("d/a.novo"));
    }
    muda("d", 0755);
}

}  // namespace
