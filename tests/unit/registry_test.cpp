// Keys as directories, values written back, and what a failure leaves.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "borland/XmlRegistry.h"
#include "tests/unit/apoio/arvore.h"
#include "tests/unit/apoio/limite.h"

namespace {

class Registry : public testing::Test {
  protected:
    std::vector<std::string> chaves() {
        VeltoStringList l;
        l.Add("emptied first");
        reg.GetKeyNames(&l);
        std::vector<std::string> r;
        for (int i = 0; i < l.Count; ++i) r.emplace_back(l[i].c_str());
        return r;
    }

    mode_t modo(const std::string& rel) {
        struct stat st;
        return stat(arvore.path(rel).c_str(), &st) == 0 ? st.st_mode & 07777 : 0;
    }

    ArvoreTemporaria arvore;
    XmlRegistry reg{arvore.path().c_str()};
};

TEST_F(Registry, Beginning) {
    const XmlRegistry fixo;
    EXPECT_STREQ(fixo.rootPath.c_str(), "/etc/regdb");
    EXPECT_STREQ(fixo.RootKey.c_str(), "HKEY_CURRENT_USER");
    EXPECT_TRUE(fixo.CurrentPath == "" && !fixo.isDirty);
}

TEST_F(Registry, Paths) {
    const std::string raiz = arvore.path("HKEY_CURRENT_USER");
    EXPECT_EQ(reg.GetDirPath().c_str(), raiz);
    reg.CurrentPath = "A b\\C";
    EXPECT_EQ(reg.GetFilePath().c_str(), raiz + "/A b/C/Values.xml");
    reg.RootKey = "R";
    EXPECT_EQ(reg.GetFullPath("\\%s").c_str(), arvore.path("R/A b/C/%s"));
}

TEST_F(Registry, OpenKey) {
    const struct {
        const char* chave;
        bool cria;
        bool abre;
        const char* atual;
    } passos[] = {
        {"A", false, false, ""},         {"A\\B\\C", true, true, "A\\B\\C"},
        {"\\A", false, true, "A"},       {"B", false, true, "A\\B"},
        {"C", false, true, "A\\B\\C"},   {"D", false, false, ""},
        {"A\\B", false, true, "A\\B"},   {"\\", false, true, ""},
        {"\\A\\x", true, true, "A\\x"},  {"file", false, false, ""},
        {"A\\x\\file", true, false, ""},
    };
    for (const auto& p : passos) {
        if (std::strcmp(p.chave, "file") == 0) arvore.write("HKEY_CURRENT_USER/A/x/file", "");
        EXPECT_EQ(reg.OpenKey(p.chave, p.cria), p.abre) << p.chave;
        EXPECT_STREQ(reg.CurrentPath.c_str(), p.atual) << p.chave;
    }
    ASSERT_TRUE(reg.OpenKey("\\A", false));
    EXPECT_FALSE(reg.OpenKey(reg.CurrentPath, false));
}

TEST_F(Registry, ChainsAreCreatedWithTheirMode) {
    const mode_t antes = umask(022);
    EXPECT_TRUE(reg.OpenKey("\\A\\B\\C", true));
    umask(antes);
    for (const char* d : {"HKEY_CURRENT_USER", "HKEY_CURRENT_USER/A", "HKEY_CURRENT_USER/A/B",
                          "HKEY_CURRENT_USER/A/B/C"})
        EXPECT_EQ(modo(d), 0755u) << d;
    EXPECT_FALSE(arvore.exists("HKEY_CURRENT_USER/A/B/C/Values.xml"));
}

TEST_F(Registry, CreateKeyDirTellsOnlyTheLongWay) {
    reg.CurrentPath = "A\\B";
    EXPECT_EQ(reg.CreateKeyDir(), 1);
    EXPECT_EQ(reg.CreateKeyDir(), 0);
    reg.CurrentPath = "A\\C";
    EXPECT_EQ(reg.CreateKeyDir(), 0);
    EXPECT_TRUE(arvore.exists("HKEY_CURRENT_USER/A/C"));
    arvore.write("HKEY_CURRENT_USER/file", "");
    reg.CurrentPath = "file\\D";
    EXPECT_EQ(reg.CreateKeyDir(), 0);
}

TEST_F(Registry, WritesBackWhenItLeavesTheKey) {
    const std::string a = "HKEY_CURRENT_USER/A/Values.xml", b = "HKEY_CURRENT_USER/B/Values.xml";
    {
        XmlRegistry outro(arvore.path().c_str());
        ASSERT_TRUE(outro.OpenKey("A", true));
        outro.WriteString("Path", "x");
        EXPECT_FALSE(arvore.exists(a));
        ASSERT_TRUE(outro.OpenKey("\\B", true));
        EXPECT_TRUE(arvore.exists(a));
        EXPECT_TRUE(outro.ReadString("Path").IsEmpty());
        outro.WriteInteger("n", 3);
        EXPECT_FALSE(arvore.exists(b));
    }
    EXPECT_TRUE(arvore.exists(b));
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
    EXPECT_STREQ(nomes[0].c_str(), "n");
}

TEST_F(Registry, OpeningWithoutChangesWritesNothing) {
    const std::string v = "HKEY_CURRENT_USER/A/Values.xml",
                      texto = "<x><regvaluestore>\n<integer n";
    arvore.write(v, texto);
    ASSERT_TRUE(reg.OpenKey("A", false));
    ASSERT_TRUE(reg.OpenKey("\\B", true));
    reg.CloseKey();
    EXPECT_EQ(arvore.read(v), texto);
    EXPECT_FALSE(arvore.exists("HKEY_CURRENT_USER/B/Values.xml"));
}

TEST_F(Registry, FailedSaveLeavesTheOldFile) {
    ASSERT_TRUE(reg.OpenKey("A", true));
    reg.WriteString("a", "old");
    reg.CloseKey();
    const std::string v = "HKEY_CURRENT_USER/A/Values.xml", antes = arvore.read(v);
    ASSERT_TRUE(reg.OpenKey("A", false));
    reg.WriteString("a", std::string(50000, 'x').c_str());
    {
        const DiscoCheio cheio(10000);
        reg.CloseKey();
    }
    EXPECT_EQ(arvore.read(v), antes);
    ASSERT_TRUE(reg.OpenKey("A", false));
    EXPECT_EQ(chaves(), std::vector<std::string>());
    EXPECT_STREQ(reg.ReadString("a").c_str(), "old");
}

TEST_F(Registry, DeleteKeyKeepsSubkeys) {
    const std::string raiz = "HKEY_CURRENT_USER/A";
    arvore.write(raiz + "/Values.xml", "x");
    arvore.write(raiz + "/B/Values.xml", "x");
    EXPECT_FALSE(reg.DeleteKey("A"));
    EXPECT_FALSE(arvore.exists(raiz + "/Values.xml"));
    EXPECT_TRUE(arvore.exists(raiz + "/B/Values.xml"));
    ASSERT_TRUE(reg.OpenKey("A", false));
    EXPECT_TRUE(reg.DeleteKey("B"));
    EXPECT_FALSE(arvore.exists(raiz + "/B"));
    EXPECT_FALSE(reg.DeleteKey("B"));
    reg.CloseKey();
    EXPECT_TRUE(reg.DeleteKey("A"));
    EXPECT_FALSE(arvore.exists(raiz));
}

TEST_F(Registry, KeyNames) {
    EXPECT_EQ(chaves(), std::vector<std::string>());
    for (const char* n : {"b/x", "B/x", "Values.xml", "a", ".hidden", "values.xml"})
        arvore.write(std::string("HKEY_CURRENT_USER/") + n, "");
    EXPECT_EQ(chaves(), (std::vector<std::string>{".hidden", "B", "a", "b", "values.xml"}));
}

TEST_F(Registry, LooseDirectoryTestLetsASocketPass) {
    ASSERT_TRUE(reg.OpenKey("", true));
    sockaddr_un nome{};
    nome.sun_family = AF_UNIX;
    const std::string p = arvore.path("HKEY_CURRENT_USER/s");
    ASSERT_LT(p.size(), sizeof nome.sun_path);
    std::memcpy(nome.sun_path, p.c_str(), p.size());
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&nome), sizeof nome), 0);
    EXPECT_TRUE(reg.OpenKey("s", false));
    EXPECT_EQ(reg.storage.storeIdx, 0);
    close(fd);
}

}  // namespace
