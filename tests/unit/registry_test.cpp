// Keys as directories, values written back, and what a failure leaves.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "borland/XmlRegistry.h"
#include "tests/unit/apoio/arvore.h"
#include "tests/unit/apoio/limite.h"

namespace {

class Registro : public testing::Test {
  protected:
    std::string chaves() {
        VeltoStringList l;
        l.Add("emptied first");
        reg.GetKeyNames(&l);
        std::string r;
        for (int i = 0; i < l.Count; ++i) (r += l[i].c_str()) += ' ';
        return r;
    }
    bool ha(const std::string& rel) { return arvore.exists(raiz + rel); }

    const std::string raiz = "HKEY_CURRENT_USER/", a = raiz + "A/Values.xml";
    ArvoreTemporaria arvore;
    XmlRegistry reg{arvore.path().c_str()};
};

TEST_F(Registro, caminhos) {
    const XmlRegistry fixo;
    EXPECT_STREQ(fixo.rootPath.c_str(), "/etc/regdb");
    EXPECT_STREQ(reg.RootKey.c_str(), "HKEY_CURRENT_USER");
    EXPECT_EQ(reg.GetDirPath().c_str() + std::string("/"), arvore.path(raiz));
    reg.CurrentPath = "A b\\C";
    EXPECT_EQ(reg.GetFilePath().c_str(), arvore.path(raiz + "A b/C/Values.xml"));
    reg.RootKey = "R";
    EXPECT_EQ(reg.GetFullPath("\\%s").c_str(), arvore.path("R/A b/C/%s"));
}

TEST_F(Registro, abreChaves) {
    arvore.write(raiz + "A/file", "");
    const mode_t antes = umask(022);
    const struct {
        const char* chave;
        bool cria, abre;
        const char* atual;
    } passos[] = {
        {"B", false, false, ""},        {"A\\B\\C", true, true, "A\\B\\C"},
        {"\\A", false, true, "A"},      {"B", false, true, "A\\B"},
        {"C", false, true, "A\\B\\C"},  {"D", false, false, ""},
        {"A\\B", false, true, "A\\B"},  {"\\", false, true, ""},
        {"\\A\\x", true, true, "A\\x"}, {"\\A\\file", false, false, ""},
        {"A\\file", true, false, ""},
    };
    for (const auto& p : passos) {
        EXPECT_EQ(reg.OpenKey(p.chave, p.cria), p.abre) << p.chave;
        EXPECT_STREQ(reg.CurrentPath.c_str(), p.atual) << p.chave;
    }
    umask(antes);
    for (const char* d : {"A/B", "A/B/C"}) {
        struct stat st {};
        EXPECT_EQ(stat(arvore.path(raiz + d).c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 07777, 0755u) << d;
    }
    EXPECT_FALSE(ha("A/B/C/Values.xml"));
    ASSERT_TRUE(reg.OpenKey("\\A", false));
    EXPECT_FALSE(reg.OpenKey(reg.CurrentPath, false));
    // Making a directory is told only where more than the last one was missing.
    for (const auto& [chave, feitas] :
         {std::pair{"N\\B", 1}, {"N\\B", 0}, {"N\\C", 0}, {"A\\file\\D", 0}}) {
        reg.CurrentPath = chave;
        EXPECT_EQ(reg.CreateKeyDir(), feitas) << chave;
    }
    EXPECT_TRUE(ha("N/C"));
}

// When the key is left, and only if something changed.
TEST_F(Registro, escreveAoSair) {
    {
        XmlRegistry outro(arvore.path().c_str());
        ASSERT_TRUE(outro.OpenKey("A", true));
        outro.WriteString("Path", "x");
        EXPECT_FALSE(arvore.exists(a));
        ASSERT_TRUE(outro.OpenKey("\\B", true));
        EXPECT_TRUE(arvore.exists(a));
        EXPECT_TRUE(outro.ReadString("Path").IsEmpty());
        outro.WriteInteger("n", 3);
        EXPECT_FALSE(ha("B/Values.xml"));
    }
    EXPECT_TRUE(ha("B/Values.xml"));
    ASSERT_TRUE(reg.OpenKey("\\A", false));
    EXPECT_STREQ(reg.ReadString("Path").c_str(), "x");
    EXPECT_FALSE(reg.DeleteValue("none"));
    EXPECT_TRUE(reg.isDirty);
    EXPECT_TRUE(reg.DeleteValue("Path"));
    reg.CloseKey();
    EXPECT_TRUE(reg.CurrentPath == "" && !reg.isDirty && reg.storage.storeIdx == 0);
    EXPECT_EQ(arvore.read(a).find("Path"), std::string::npos);
    ASSERT_TRUE(reg.OpenKey("B", false));
    EXPECT_EQ(reg.ReadInteger("n"), 3);
    VeltoStringList nomes;
    reg.GetValueNames(&nomes);
    EXPECT_EQ(nomes.Count, 1);
    const std::string torto = "<x><regvaluestore>\n<integer n";
    arvore.write(a, torto);
    ASSERT_TRUE(reg.OpenKey("\\A", false));
    ASSERT_TRUE(reg.OpenKey("\\C", true));
    reg.CloseKey();
    EXPECT_EQ(arvore.read(a), torto);
    EXPECT_FALSE(ha("C/Values.xml"));
}

TEST_F(Registro, gravacaoQueFalhaDeixaAVelha) {
    ASSERT_TRUE(reg.OpenKey("A", true));
    reg.WriteString("a", "old");
    reg.CloseKey();
    const std::string antes = arvore.read(a);
    ASSERT_TRUE(reg.OpenKey("A", false));
    reg.WriteString("a", std::string(50000, 'x').c_str());
    {
        const Limite cheio(RLIMIT_FSIZE, 10000);
        reg.CloseKey();
    }
    EXPECT_EQ(arvore.read(a), antes);
    ASSERT_TRUE(reg.OpenKey("A", false));
    EXPECT_EQ(chaves(), "");
    EXPECT_STREQ(reg.ReadString("a").c_str(), "old");
}

TEST_F(Registro, nomesEFimDasChaves) {
    EXPECT_EQ(chaves(), "");
    for (const char* n : {"b/x", "B/x", "Values.xml", "a", ".hidden", "values.xml"})
        arvore.write(raiz + n, "");
    EXPECT_EQ(chaves(), ".hidden B a b values.xml ");
    // A key goes with its values, not with keys below it.
    arvore.write(a, "x");
    arvore.write(raiz + "A/B/Values.xml", "x");
    EXPECT_FALSE(reg.DeleteKey("A"));
    EXPECT_TRUE(!arvore.exists(a) && ha("A/B/Values.xml"));
    ASSERT_TRUE(reg.OpenKey("A", false));
    EXPECT_TRUE(reg.DeleteKey("B"));
    EXPECT_FALSE(reg.DeleteKey("B"));
    reg.CloseKey();
    EXPECT_TRUE(reg.DeleteKey("A"));
    EXPECT_FALSE(ha("A"));
}

TEST_F(Registro, umSocketPassaPorDiretorio) {
    ASSERT_TRUE(reg.OpenKey("", true));
    sockaddr_un nome{};
    nome.sun_family = AF_UNIX;
    const std::string p = arvore.path(raiz + "s");
    ASSERT_LT(p.size(), sizeof nome.sun_path);
    std::memcpy(nome.sun_path, p.c_str(), p.size());
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&nome), sizeof nome), 0);
    EXPECT_TRUE(reg.OpenKey("s", false));
    EXPECT_EQ(reg.storage.storeIdx, 0);
    close(fd);
}

}  // namespace
