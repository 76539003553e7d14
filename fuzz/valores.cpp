// Value files and tags: what was read, written and read again; the reader's progress; escapes.
#include <cstring>

#include "borland/XmlValueStore.h"
#include "fuzz/apoio.h"
#include "misc/xmlhelper.h"

namespace {

const Arvore& arvore() {
    static const Arvore a;
    return a;
}

// A string's bytes.
std::string bytes(const VeltoString& s) {
    return {s.c_str(), static_cast<std::size_t>(s.Length())};
}

// The entries as text; NULs end texts in the file, so they do here.
std::vector<std::string> entradas(const XmlValueStore& v) {
    std::vector<std::string> e;
    for (int i = 0; i < v.storeIdx; ++i) {
        const XmlRegValue& x = *v.store[i];
        e.push_back(
            std::string(x.name.c_str()) + "=" +
            (x.vt == vtInt ? std::to_string(x.valInt) : "\"" + std::string(x.valString.c_str())));
    }
    return e;
}

bool tem_nul(const XmlValueStore& v) {
    for (int i = 0; i < v.storeIdx; ++i)
        if (bytes(v.store[i]->name).find('\0') != std::string::npos ||
            bytes(v.store[i]->valString).find('\0') != std::string::npos)
            return true;
    return false;
}

void confere_volta(XmlValueStore& v) {
    if (tem_nul(v)) return;
    const std::string path = arvore().path("volta.xml");
    exige(v.SaveToFile(path.c_str()), "the file is written");
    XmlValueStore outra;
    exige(outra.LoadFromFile(path.c_str()), "what was written can be read");
    exige(entradas(outra) == entradas(v), "entries come back as they were");
}

void confere_arquivo(const std::string& texto) {
    const std::string path = arvore().grava("Values.xml", texto);
    XmlValueStore v;
    const bool lido = v.LoadFromFile(path.c_str());
    const auto antes = entradas(v);
    exige(v.LoadFromFile(path.c_str()) == lido, "the same file, the same answer");
    exige(entradas(v) == antes, "a second reading changes nothing");
    for (int i = 0; i < v.storeIdx; ++i)
        exige(v.findName(v.store[i]->name) == i, "names are there once");
    confere_volta(v);
}

// The characters of an escaped text, one by one.
std::string sem_escapes(const std::string& s) {
    static const std::pair<std::string, char> entidades[] = {
        {"&quot;", '"'}, {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}};
    std::string t;
    for (std::size_t i = 0; i < s.size();) {
        char c = s[i];
        std::size_t n = 1;
        for (const auto& [nome, letra] : entidades) {
            std::string aqui = s.substr(i, nome.size());
            for (char& a : aqui)
                if (a >= 'A' && a <= 'Z') a = static_cast<char>(a + 32);
            if (aqui != nome) continue;
            c = letra;
            n = nome.size();
        }
        t += c;
        i += n;
    }
    return t;
}

void confere_escapes(const std::string& texto) {
    VeltoString s;
    if (!texto.empty()) s.loadPChar(texto.data(), static_cast<int>(texto.size()));
    VeltoString escapado(s);
    escapeVtXmlString(escapado);
    exige(bytes(s) == texto, "a copy is not escaped with it");
    const std::string e = bytes(escapado);
    exige(e.find_first_of("<>\"") == std::string::npos, "nothing is left to escape");
    exige(sem_escapes(e) == texto, "the escaped text");
    escapado += "<";
    int pos = 0;
    VeltoString lido;
    exige(getVtXmlDataFromString(escapado, pos, lido), "text up to a tag");
    exige(pos == static_cast<int>(e.size()) && bytes(lido) == texto, "the text read back");

    // As an attribute: between quotes all comes back too, but nothing is read behind its end.
    VeltoString tag("<a b=\"");
    tag.append(escapado);
    tag.SetLength(tag.Length() - 1);
    tag += "\">";
    pos = 0;
    VtXmlTag lida;
    exige(getVtXmlTagFromString(tag, pos, &lida) && pos == tag.Length(), "a tag is read whole");
    exige(lida.atributos() == 1 && bytes(lida.valor(0)) == texto, "the attribute's value");
}

// Tags and texts in turn through the whole of it.
void confere_avanco(const std::string& texto) {
    VeltoString s;
    if (!texto.empty()) s.loadPChar(texto.data(), static_cast<int>(texto.size()));
    VtXmlTag tag;
    tag.maximo = texto.empty() ? 0 : texto[0] & 3;
    int pos = 0;
    for (;;) {
        const int antes = pos;
        const bool inteiro = getVtXmlTagFromString(s, pos, &tag);
        exige(pos >= antes && pos <= s.Length(), "the position moves on, not beyond the end");
        exige(tag.atributos() <= tag.maximo, "no more attributes than wanted");
        for (int i = 0; i < tag.atributos(); ++i) tag.valor(i);
        if (inteiro) exige(texto[static_cast<std::size_t>(pos) - 1] == '>', "a tag ends with '>'");
        const int de = pos;
        VeltoString dado;
        const bool ha = getVtXmlDataFromString(s, pos, dado);
        const auto inicio = static_cast<std::size_t>(de);
        const std::size_t menor = std::min(texto.find('<', inicio), texto.size());
        exige(ha == (menor < texto.size()), "text that another tag ends");
        exige(pos == static_cast<int>(menor), "the position of the next tag");
        exige(bytes(dado) == sem_escapes(texto.substr(inicio, menor - inicio)), "the text");
        if (!ha || (!inteiro && pos == antes)) return;
    }
}

// Entries made of the parts of the text, and written.
void confere_entradas(Entrada e) {
    XmlValueStore v;
    while (!e.acabou() && v.storeIdx < 20) {
        const unsigned op = e.byte();
        const VeltoString nome = e.parte().c_str();
        if (op % 4 == 0)
            v.WriteInteger(nome, static_cast<int>(op) - 100);
        else if (op % 4 == 1)
            v.Delete(nome);
        else
            v.WriteString(nome, e.parte().c_str());
    }
    confere_volta(v);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* dados, std::size_t n) {
    const std::string texto(reinterpret_cast<const char*>(dados), n);
    confere_arquivo(texto);
    confere_escapes(texto);
    confere_avanco(texto);
    confere_entradas(Entrada(dados, n));
    return 0;
}
