// Tags and value files: what is written, what is read back, and what a bad file leaves.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "borland/XmlValueStore.h"
#include "borland/xmlhelper.h"
#include "tests/unit/apoio/arvore.h"

namespace {

const std::string cabecalho = "<?xml version=\"1.0\" encoding=\"ISO8859-1\" ?>\n<regvaluestore>\n";

std::string conteudo(const VeltoString& s) {
    return {s.c_str(), static_cast<std::size_t>(s.Length())};
}

// The tag as one text: a type sign, the name, then [attribute:value] each, [attribute] without a
// value.
std::string descreve(const VtXmlTag& t) {
    std::string r = std::string(1, "+-."[t.tagType]) + t.tagName.c_str();
    for (int i = 0; i < t.atributos(); ++i) {
        r.append("[").append((*t.paramList)[i].c_str());
        if (t.paramList->Objects && t.paramList->Objects[i])
            r.append(":").append(conteudo(t.valor(i)));
        r += ']';
    }
    return r;
}

TEST(Xml, marcas) {
    const struct {
        const char *texto, *lido;
        int pos;  // afterwards
    } casos[] = {
        {"<a>x", "+a", 3},
        {" \t\r\n< \n a>", "+a", 10},
        {"< / a >", "-a[]", 7},
        {"</a/>", ".a", 5},
        {"<//a>", "-a", 5},
        {"<a/ >", ".a", 5},
        {"<a />", ".a[]", 5},
        {"<>", "+", 2},
        {"<a b=\"c\"/>", ".a[b:c]", 10},
        {"<a b=\"c\"/ >", "none", 10},
        {"<a b=\"c\" />", ".a[b:c][]", 11},
        {"<a b=\"c\"  d=\"e\">", "+a[b:c][][d:e]", 16},
        {"<a b = c>", "+a[b:c]", 9},
        {"<a b c=d>", "+a[b][c:d]", 9},
        {"<a b /x>", "none", 7},
        {"<a b >", "+a[b]", 6},
        {"<a b=\"\">", "+a[b]", 8},
        {"<a b=x\"y z>\"w>", "+a[b:xy z>w]", 14},
        {"<a b=c&amp;>", "+a[b:c&amp;]", 12},
        {"<a b=\"&QUOT;&Amp;&lT;&gt;&no;&\">", "+a[b:\"&<>&no;&]", 32},
        {"<a b=\"&amp;lt;\">", "+a[b:&lt;]", 16},
        {"<a b=\"'\n/=\">", "+a[b:'\n/=]", 12},
        {"<a b=c/d>", "none", 8},
        {"<a =x>", "+a[:x]", 6},
        {"x<a>", "none", 1},
        {"<a", "none", 2},
        {"<a b=\"c>", "none", 8},
        {"<a b=\"&am", "none", 9},
        {"", "none", 0},
    };
    VtXmlTag tag;
    for (const auto& c : casos) {
        VeltoString texto(c.texto);
        int pos = 0;
        const bool lido = getVtXmlTagFromString(texto, pos, &tag);
        EXPECT_EQ(lido ? descreve(tag) : "none", c.lido) << c.texto;
        EXPECT_EQ(pos, c.pos) << c.texto;
    }
    tag.reset();
    EXPECT_EQ(descreve(tag), "+");
    VeltoString texto("<a b=\"1\" c=\"2\" d=\"3\">");
    for (int fora : {21, 100, -1}) EXPECT_FALSE(getVtXmlTagFromString(texto, fora, &tag));
    tag.maximo = 2;  // more is read over
    int pos = 0;
    ASSERT_TRUE(getVtXmlTagFromString(texto, pos, &tag));
    EXPECT_EQ(descreve(tag) + std::to_string(pos), "+a[b:1][c:2]21");
}

TEST(Xml, dados) {
    const struct {
        const char* texto;
        bool achou;
        const char* dado;
        int pos;
    } casos[] = {
        {"<c", true, "", 0},
        {" \n a <", true, " \n a ", 5},
        {"&LT;&gt;&Quot;&amp;<", true, "<>\"&", 19},
        {"&lt &nbsp;&&amp;lt;<", true, "&lt &nbsp;&&lt;", 19},
        {"'\xE1\"><", true, "'\xE1\">", 4},
        {"ab&amp", false, "ab&amp", 6},
        {"", false, "", 0},
    };
    for (const auto& c : casos) {
        VeltoString texto(c.texto), dado("before");
        int pos = 0;
        EXPECT_EQ(getVtXmlDataFromString(texto, pos, dado), c.achou) << c.texto;
        EXPECT_STREQ(dado.c_str(), c.dado);
        EXPECT_EQ(pos, c.pos) << c.texto;
    }
    VeltoString s("a<b>&amp;\"c\"'\xE9"), nada;
    const VeltoString antes(s);
    escapeVtXmlString(s);
    EXPECT_STREQ(s.c_str(), "a&lt;b&gt;&amp;amp;&quot;c&quot;'\xE9");
    EXPECT_STREQ(antes.c_str(), "a<b>&amp;\"c\"'\xE9");
    escapeVtXmlString(nada);
    EXPECT_EQ(nada.data, nullptr);
}

class ArquivoDeValores : public testing::Test {
  protected:
    // Reads `texto` as a value file into `store`.
    bool carrega(const std::string& texto) {
        return store.LoadFromFile(arvore.write("Values.xml", texto).c_str());
    }

    std::string salva() {
        EXPECT_TRUE(store.SaveToFile(arvore.path("Values.xml").c_str()));
        return arvore.read("Values.xml");
    }

    // name=value; in store order, strings in quotes.
    std::string valores() const {
        std::string r;
        for (int i = 0; i < store.storeIdx; ++i) {
            const XmlRegValue& v = *store.store[i];
            r += conteudo(v.name) + "=" +
                 (v.vt == vtInt ? std::to_string(v.valInt) : '"' + conteudo(v.valString) + '"') +
                 ";";
        }
        return r;
    }

    ArvoreTemporaria arvore;
    XmlValueStore store;
};

// As written, and any values written come back. What is cut short is refused.
TEST_F(ArquivoDeValores, escritosELidos) {
    EXPECT_EQ(salva(), cabecalho + "</regvaluestore>");
    store.WriteString("Path", "a<b & \"c\"");
    store.WriteInteger("n>1", -5);
    store.WriteString("", "");
    const std::string todo = salva();
    EXPECT_EQ(todo, cabecalho +
                        "  <string name=\"Path\">a&lt;b &amp; &quot;c&quot;</string>\n"
                        "  <integer name=\"n&gt;1\">-5</integer>\n"
                        "  <string name=\"\"></string>\n</regvaluestore>");
    for (std::size_t n = 0; n < todo.size(); ++n) {
        XmlValueStore outra;
        EXPECT_FALSE(outra.LoadFromFile(arvore.write("cut.xml", todo.substr(0, n)).c_str())) << n;
        EXPECT_LE(outra.storeIdx, 3);
    }
    std::mt19937 acaso(7);
    const auto texto = [&](unsigned maximo) {
        std::string s(acaso() % maximo, ' ');
        for (char& c : s) c = static_cast<char>(1 + acaso() % 255);
        return s;
    };
    for (int volta = 0; volta < 30; ++volta) {
        for (int i = 0; i < 40; ++i)
            if (const std::string nome = texto(i % 3 ? 12 : 3); acaso() % 3)
                store.WriteString(nome.c_str(), texto(3000).c_str());
            else
                store.WriteInteger(nome.c_str(), static_cast<int>(acaso()));
        const std::string antes = valores(), arquivo = salva();
        store.Clear();
        ASSERT_TRUE(carrega(arquivo));
        ASSERT_EQ(valores(), antes);
        store.Clear();
    }
    for (int i = 0; i < 45; ++i) EXPECT_EQ(store.findOrAllocName(std::to_string(i).c_str()), i);
    store.Clear();
    EXPECT_EQ(store.storeIdx, 0);
    EXPECT_EQ(store.storeSz, 50);  // grown by ten, and kept
}

// What was read up to the fault stays.
TEST_F(ArquivoDeValores, malFormados) {
    const struct {
        const char* corpo;  // behind a string "a" with the value "1"
        bool inteiro;
        const char* resta;
    } casos[] = {
        {"</regvaluestore>\nwhatever <follows", true, ""},
        {"</ regvaluestore >", true, ""},
        {"<INTEGER name=\"b\">2</INTEGER></regvaluestore>", false, ""},
        {"", false, ""},
        {"stray</regvaluestore>", false, ""},
        {"</other>", false, ""},
        {"<regvaluestore/>", false, ""},
        {"<string name=\"b\"/></regvaluestore>", false, ""},
        {"<string name=\"b\" >2</string></regvaluestore>", false, ""},
        {"<string id=\"b\">2</string></regvaluestore>", false, ""},
        {"<string>2</string></regvaluestore>", false, ""},
        {"<string name=\"b\">2", false, ""},
        {"<string name=\"b\">2</integer></regvaluestore>", false, "b=\"2\";"},
        {"<string name=\"b\">2<string></regvaluestore>", false, "b=\"2\";"},
        {"<string name=\"b\">2</str", false, "b=\"2\";"},
        {"<string name=b>2</string></regvaluestore>", true, "b=\"2\";"},
        {"<string name>2</string></regvaluestore>", true, "=\"2\";"},
        {"<integer name=\"b\"> 12x</integer></regvaluestore>", true, "b=12;"},
        {"<integer name=\"b\">x</integer></regvaluestore>", true, "b=0;"},
    };
    for (const auto& c : casos) {
        store.Clear();
        const std::string um = "<string name=\"a\">1</string>";
        EXPECT_EQ(carrega(cabecalho + um + c.corpo), c.inteiro) << c.corpo;
        EXPECT_EQ(valores(), std::string("a=\"1\";") + c.resta) << c.corpo;
    }
    store.Clear();
    for (const char* texto : {"<regvaluestore>", "<x><other></regvaluestore>", "<x",
                              "text<x><regvaluestore></regvaluestore>"})
        EXPECT_FALSE(carrega(texto)) << texto;
    EXPECT_TRUE(carrega("<x></regvaluestore></regvaluestore>"));
    EXPECT_EQ(valores(), "");
}

// A name is one entry, of the type written last; a file is read into the entries that are there.
TEST_F(ArquivoDeValores, entradas) {
    const char* const nomes[] = {"a", "A", "", "\xE1", "b"};
    for (int i = 0; i < 5; ++i) store.WriteInteger(nomes[i], i);
    store.WriteString("A", "text");
    EXPECT_EQ(store.ReadInteger("A"), 0);
    store.WriteString("A", store.store[1]->valString);
    EXPECT_STREQ(store.ReadString("A").c_str(), "text");
    store.WriteInteger("A", 7);
    EXPECT_TRUE(store.ReadString("A").IsEmpty());
    EXPECT_EQ(store.findName(VeltoString()), 2);
    EXPECT_FALSE(store.Delete("c"));
    EXPECT_TRUE(store.Delete("a"));
    EXPECT_TRUE(carrega(cabecalho + "<string name=\"b\">x</string><integer name=\"c\">1</integer>"
                                    "<integer name=\"c\">2</integer></regvaluestore>"));
    EXPECT_EQ(valores(), "A=7;=2;\xE1=3;b=\"x\";c=2;");
    VeltoStringList l;
    l.Add("before");
    store.EnumNames(&l);
    EXPECT_EQ(l.Count, 6);
    EXPECT_STREQ(l[5].c_str(), "c");
}

TEST_F(ArquivoDeValores, semLerNemEscrever) {
    store.WriteInteger("kept", 1);
    for (const std::string& p : {arvore.path("missing"), arvore.path(), std::string()})
        EXPECT_FALSE(store.LoadFromFile(p.c_str())) << p;
    for (const std::string& p : {arvore.path("no/such/place"), arvore.path()})
        EXPECT_FALSE(store.SaveToFile(p.c_str())) << p;
    EXPECT_EQ(valores(), "kept=1;");
}

}  // namespace
