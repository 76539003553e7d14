// The value store: entries in a growing array, and its file out and in.
#include "borland/XmlValueStore.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <string_view>
#include <unordered_map>

#include "borland/xmlhelper.h"
#include "misc/chave.h"
#include "misc/gravacao.h"
#include "misc/ncutils.h"

namespace {

constexpr const char* elemento = "regvaluestore";

// Everything that `path` holds, into `texto`. False when it cannot be opened or is beyond what one
// text holds.
bool le_tudo(const char* path, VeltoString& texto) {
    const Stream f = abre_leitura(path);
    if (!f) return false;
    texto.setAllocationPolicy(4096, 10);
    char pedaco[1023];
    while (const std::size_t n = std::fread(pedaco, 1, sizeof pedaco, f.get())) {
        if (texto.Length() > INT_MAX - 4096) return false;
        texto.append(pedaco, static_cast<int>(n));
    }
    return true;
}

VeltoString escapado(const VeltoString& s) {
    VeltoString copia(s);
    escapeVtXmlString(copia);
    return copia;
}

}  // namespace

// One reading of one value file. It keeps an index of the names: a walk for each value would make
// the time grow with the square of their number.
class LeituraDeValores {
  public:
    LeituraDeValores(XmlValueStore& destino, VeltoString& texto)
        : destino_(destino), texto_(texto) {
        // A short entry takes 32 bytes.
        indice_.reserve(static_cast<std::size_t>(texto.Length()) / 32);
        for (int i = 0; i < destino.storeIdx; ++i)
            indice_.try_emplace(chave(destino.store[i]->name), destino.store[i]);
    }

    bool le() {
        tag_.maximo = 2;  // one is right, and two are already wrong
        if (!proximo() || !proximo() || tag_.tagName != elemento) return false;
        while (proximo()) {
            if (tag_.tagType == closeTag && tag_.tagName == elemento) return true;
            if (!valor()) return false;
        }
        return false;
    }

  private:
    struct Hash {
        std::size_t operator()(std::string_view s) const { return hash_chave(s.data(), s.size()); }
    };

    bool proximo() { return getVtXmlTagFromString(texto_, pos_, &tag_); }

    // One value, whose opening tag was just read. It is stored before its closing tag is looked at.
    bool valor() {
        if (tag_.tagType != openTag || tag_.atributos() != 1 || (*tag_.paramList)[0] != "name")
            return false;
        const VeltoString nome = tag_.valor(0);
        const bool texto = tag_.tagName == "string";
        VeltoString dado;
        if (!getVtXmlDataFromString(texto_, pos_, dado)) return false;
        if (!texto && tag_.tagName != "integer") return false;
        XmlRegValue& v = entrada(nome);
        v.vt = texto ? vtString : vtInt;
        if (texto)
            v.valString = dado;
        else
            v.valInt = dado.ToInt();
        return proximo() && tag_.tagType == closeTag &&
               tag_.tagName == (texto ? "string" : "integer");
    }

    XmlRegValue& entrada(const VeltoString& nome) {
        // A new entry shares the record of `nome`, so the key lasts as long as the entry.
        const auto [lugar, nova] = indice_.try_emplace(chave(nome));
        if (nova) lugar->second = destino_.acrescenta(nome);
        return *lugar->second;
    }

    static std::string_view chave(const VeltoString& nome) {
        return {nome.c_str(), static_cast<std::size_t>(nome.Length())};
    }

    XmlValueStore& destino_;
    VeltoString& texto_;
    int pos_ = 0;
    VtXmlTag tag_;
    std::unordered_map<std::string_view, XmlRegValue*, Hash> indice_;
};

XmlValueStore::~XmlValueStore() {
    Clear();
    delete[] store;
}

void XmlValueStore::Clear() {
    for (int i = 0; i < storeIdx; ++i) delete store[i];
    storeIdx = 0;
}

XmlRegValue* XmlValueStore::acrescenta(const VeltoString& name) {
    if (storeIdx == storeSz) storeSz += 10;
    if (storeSz > alocado_) {
        const int quantos = std::max(storeSz, alocado_ * 2);
        XmlRegValue** const novo = new XmlRegValue*[quantos];
        std::copy_n(store, storeIdx, novo);
        delete[] store;
        store = novo;
        alocado_ = quantos;
    }
    store[storeIdx] = new XmlRegValue;
    store[storeIdx]->name = name;
    return store[storeIdx++];
}

void XmlValueStore::WriteString(const VeltoString& name, const VeltoString& value) {
    const int i = findOrAllocName(name);
    XmlRegValue& v = *store[i];
    v.vt = vtString;
    if (&value != &v.valString) v.valString = value;
}

void XmlValueStore::WriteInteger(const VeltoString& name, int value) {
    const int i = findOrAllocName(name);
    XmlRegValue& v = *store[i];
    v.vt = vtInt;
    v.valInt = value;
}

VeltoString XmlValueStore::ReadString(const VeltoString& name) {
    const int i = findName(name);
    return i >= 0 && store[i]->vt == vtString ? store[i]->valString : VeltoString();
}

int XmlValueStore::ReadInteger(const VeltoString& name) {
    const int i = findName(name);
    return i >= 0 && store[i]->vt == vtInt ? store[i]->valInt : 0;
}

bool XmlValueStore::Delete(const VeltoString& name) {
    const int i = findName(name);
    if (i < 0) return false;
    delete store[i];
    std::copy(store + i + 1, store + storeIdx, store + i);
    --storeIdx;
    return true;
}

void XmlValueStore::EnumNames(VeltoStringList* list) {
    for (int i = 0; i < storeIdx; ++i) list->Add(store[i]->name);
}

int XmlValueStore::findName(const VeltoString& name) {
    for (int i = 0; i < storeIdx; ++i)
        if (store[i]->name == name) return i;
    return -1;
}

int XmlValueStore::findOrAllocName(const VeltoString& name) {
    const int i = findName(name);
    if (i >= 0) return i;
    acrescenta(name);
    return storeIdx - 1;
}

bool XmlValueStore::LoadFromFile(const VeltoString& path) {
    VeltoString texto;
    return le_tudo(path.c_str(), texto) && LeituraDeValores(*this, texto).le();
}

bool XmlValueStore::SaveToFile(const VeltoString& path) {
    Gravacao g;
    if (!g.abre(path.c_str())) return false;
    std::FILE* const f = g.stream();
    std::fprintf(f, "<?xml version=\"1.0\" encoding=\"ISO8859-1\" ?>\n<%s>\n", elemento);
    for (int i = 0; i < storeIdx; ++i) {
        const XmlRegValue& v = *store[i];
        const VeltoString nome = escapado(v.name);
        if (v.vt == vtInt) {
            std::fprintf(f, "  <integer name=\"%s\">%d</integer>\n", nome.c_str(), v.valInt);
        } else {
            const VeltoString valor = escapado(v.valString);
            std::fprintf(f, "  <string name=\"%s\">%s</string>\n", nome.c_str(), valor.c_str());
        }
    }
    std::fprintf(f, "</%s>", elemento);
    return g.conclui();
}
