// Value files and tags: what was read, written and read again; the reader's progress.
#include <gtest/gtest.h>

#include "borland/XmlValueStore.h"
#include "borland/xmlhelper.h"
#include "fuzz/alvo.h"
#include "tests/unit/apoio/arvore.h"

namespace {

std::string bytes(const VeltoString& s) {
    return {s.c_str(), static_cast<std::size_t>(s.Length())};
}

VeltoString texto(const std::string& s) {
    VeltoString v;
    if (!s.empty()) v.loadPChar(s.data(), static_cast<int>(s.size()));
    return v;
}

// The entries as text; NULs end texts in the file, so they do here.
std::string entradas(const XmlValueStore& v) {
    std::string e;
    for (int i = 0; i < v.storeIdx; ++i) {
        const XmlRegValue& x = *v.store[i];
        e += x.name.c_str();
        e += x.vt == vtInt ? "=" + std::to_string(x.valInt)
                           : "=\"" + std::string(x.valString.c_str());
        e += '\n';
    }
    return e;
}

void confere_arquivo(const std::string& conteudo) {
    static const ArvoreTemporaria arvore;
    const std::string path = arvore.write("Values.xml", conteudo);
    XmlValueStore v, outra;
    const bool lido = v.LoadFromFile(path.c_str());
    const std::string antes = entradas(v);
    EXPECT_EQ(v.LoadFromFile(path.c_str()), lido);
    EXPECT_EQ(entradas(v), antes) << "a second reading changes nothing";
    for (int i = 0; i < v.storeIdx; ++i) EXPECT_EQ(v.findName(v.store[i]->name), i);
    if (conteudo.find('\0') != std::string::npos) return;
    EXPECT_TRUE(v.SaveToFile(path.c_str()));
    EXPECT_TRUE(outra.LoadFromFile(path.c_str()));
    EXPECT_EQ(entradas(outra), antes);
}

// Escaped, a text comes back, as data and as an attribute.
void confere_escapes(const std::string& conteudo) {
    VeltoString escapado = texto(conteudo), lido;
    escapeVtXmlString(escapado);
    VeltoString tag("<a b=\"");
    tag.append(escapado);
    tag += "\">";
    escapado += "<";
    int pos = 0;
    EXPECT_TRUE(getVtXmlDataFromString(escapado, pos, lido));
    EXPECT_EQ(pos, escapado.Length() - 1);
    EXPECT_EQ(bytes(lido), conteudo);
    VtXmlTag lida;
    EXPECT_TRUE(getVtXmlTagFromString(tag, pos = 0, &lida) && pos == tag.Length());
    EXPECT_TRUE(lida.atributos() == 1 && bytes(lida.valor(0)) == conteudo);
}

// Tags and texts in turn through the whole of it.
void confere_avanco(const std::string& conteudo) {
    VeltoString s = texto(conteudo);
    VtXmlTag tag;
    tag.maximo = conteudo.empty() ? 0 : conteudo[0] & 3;
    VeltoString dado;
    int pos = 0, antes = -1;
    for (bool ha = true; ha && pos > antes; antes = pos) {
        const bool inteiro = getVtXmlTagFromString(s, pos, &tag);
        EXPECT_TRUE(pos >= antes && pos <= s.Length());
        EXPECT_LE(tag.atributos(), tag.maximo);
        for (int i = 0; i < tag.atributos(); ++i) tag.valor(i);
        EXPECT_TRUE(!inteiro || conteudo[static_cast<std::size_t>(pos) - 1] == '>');
        const std::size_t menor = conteudo.find('<', static_cast<std::size_t>(pos));
        ha = getVtXmlDataFromString(s, pos, dado);
        EXPECT_EQ(ha, menor != conteudo.npos);
        EXPECT_EQ(static_cast<std::size_t>(pos), std::min(menor, conteudo.size()));
    }
}

}  // namespace

void confere(std::string_view entrada) {
    const std::string conteudo(entrada);
    confere_arquivo(conteudo);
    confere_escapes(conteudo);
    confere_avanco(conteudo);
}
