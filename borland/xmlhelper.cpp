// The tag reader: a loop over the characters with one function a state.
#include "borland/xmlhelper.h"

#include <strings.h>

#include <climits>
#include <cstring>
#include <memory>
#include <new>

namespace {

struct Entidade {
    const char* nome;
    int tamanho;
    char letra;
};

constexpr Entidade entidades[] = {
    {"&quot;", 6, '"'}, {"&amp;", 5, '&'}, {"&lt;", 4, '<'}, {"&gt;", 4, '>'}};

// The entity that `p`, a text ended by a zero byte, begins with; null when there is none.
const Entidade* entidade_em(const char* p) {
    for (const Entidade& e : entidades)
        if ((p[1] | 0x20) == e.nome[1] &&
            strncasecmp(p, e.nome, static_cast<std::size_t>(e.tamanho)) == 0)
            return &e;
    return nullptr;
}

const Entidade* entidade_de(char letra) {
    for (const Entidade& e : entidades)
        if (e.letra == letra) return &e;
    return nullptr;
}

// A text to build piece by piece, with the growth factor that keeps the time linear.
struct TextoCrescente : VeltoString {
    void junta(const char* s, int n) {
        if (!data) setAllocationPolicy(40, 10);
        append(s, n);
    }
};

// From one state to the next, for `</name a = "b" c />`:
//
//     None --<--> InTag --blank--> InParam --blank--> InEqual --=--> InValue --blank--> InParam ...
//                   |  '/' first: a closing tag  |--------=----------->|
//                   '/'                         '/'                   '/' outside of quotes
//                   +----------------------------+---------------------+--> InClose --'>'--> done
//
// '>' ends a tag in all of them but the first. Whatever else stands in a place is taken for a part
// of the name or value there, so damaged files are read as far as they go.
// What each state waits for, and what it does with the characters that mean something:
//
//     state     waits for              blank      '='        '/' or '>'
//     None      '<', nothing else
//     InTag     the tag's name         InParam    a part     ends; a first '/' is a closing tag's
//     InParam   an attribute's name    InEqual    InValue    ends
//     InEqual   its '='                skipped    InValue    ends
//     InValue   its value              InParam    a part     ends; in quotes all three are parts
//     InClose   the '>' behind a '/'
//
// In InEqual anything else begins the next attribute. '>' ends a tag at once, '/' by InClose.
class LeitorTag {
  public:
    LeitorTag(const VeltoString& text, int& pos, VtXmlTag* tag)
        : texto_(text.c_str()), total_(text.Length()), pos_(pos), tag_(tag) {}

    bool le() {
        Passo passo = segue;
        while (passo == segue) {
            if (pos_ < 0 || pos_ >= total_) return false;
            const char c = texto_[pos_++];
            const bool branco = c == ' ' || c == '\t' || c == '\r' || c == '\n';
            if (branco && pula_) continue;
            pula_ = false;
            passo = trata(c, branco);
        }
        return passo == completo;
    }

  private:
    enum Passo { segue, completo, falha };

    Passo trata(char c, bool branco) {
        switch (estado_) {
            case gtNone:
                return c == '<' ? vai(gtInTag) : falha;
            case gtInTag:
                return no_nome(c, branco);
            case gtInParam:
                return no_atributo(c, branco);
            case gtInEqual:
                return no_igual(c);
            case gtInValue:
                return no_valor(c, branco);
            case gtInClose:
                break;
        }
        return c == '>' ? completo : falha;
    }

    // To a state that drops the blanks in front of it.
    Passo vai(GtState novo) {
        estado_ = novo;
        pula_ = true;
        return segue;
    }

    // Appends the character just read, and those behind it that mean nothing in any state.
    Passo acrescenta(TextoCrescente& onde) {
        const int n = 1 + static_cast<int>(std::strcspn(texto_ + pos_, " \t\r\n/>=\"&"));
        onde.junta(texto_ + pos_ - 1, n);
        pos_ += n - 1;
        return segue;
    }

    Passo no_nome(char c, bool branco) {
        if (c == '/' && nome_.IsEmpty()) {
            tag_->tagType = closeTag;
            return vai(gtInTag);
        }
        if (!branco && c != '/' && c != '>') return acrescenta(nome_);
        tag_->tagName.loadPChar(nome_.c_str(), nome_.Length());
        nome_.Empty();
        if (branco) return vai(gtInParam);
        if (c == '>') return completo;
        tag_->tagType = simpleTag;
        return vai(gtInClose);
    }

    Passo no_atributo(char c, bool branco) {
        if (branco) return vai(gtInEqual);
        if (c == '=') return vai(gtInValue);
        if (c == '/' || c == '>') return encerra(c);
        return acrescenta(nome_);
    }

    Passo no_igual(char c) {
        if (c == '=') return vai(gtInValue);
        if (c == '/' || c == '>') return encerra(c);
        guarda();
        estado_ = gtInParam;
        return acrescenta(nome_);
    }

    Passo no_valor(char c, bool branco) {
        if (c == '"') {
            aspas_ = !aspas_;
            return segue;
        }
        if (aspas_) return entre_aspas(c);
        if (c == '/' || c == '>') return encerra(c);
        if (!branco) return acrescenta(valor_);
        guarda();
        estado_ = gtInParam;
        return segue;
    }

    Passo entre_aspas(char c) {
        const Entidade* e = c == '&' ? entidade_em(texto_ + pos_ - 1) : nullptr;
        if (!e) return acrescenta(valor_);
        pos_ += e->tamanho - 1;
        valor_.junta(&e->letra, 1);
        return segue;
    }

    // The '/' or '>' behind an attribute.
    Passo encerra(char c) {
        guarda();
        if (c == '>') return completo;
        tag_->tagType = simpleTag;
        estado_ = gtInClose;
        return segue;
    }

    // Stores the pending attribute, whatever it holds. The copies have no spare room.
    void guarda() {
        if (tag_->atributos() < tag_->maximo) {
            if (!tag_->paramList) tag_->paramList = new VeltoStringList;
            VeltoStringList& lista = *tag_->paramList;
            std::unique_ptr<VeltoString> valor;
            if (!valor_.IsEmpty())
                valor = std::make_unique<VeltoString>(valor_.c_str(), valor_.Length());
            const int i = valor ? lista.AddObject("", valor.get()) : lista.Add("");
            static_cast<void>(valor.release());  // the list has it
            lista[i].loadPChar(nome_.c_str(), nome_.Length());
        }
        nome_.Empty();
        valor_.Empty();
    }

    const char* texto_;
    int total_;
    int& pos_;
    VtXmlTag* tag_;
    GtState estado_ = gtNone;
    bool pula_ = true;
    bool aspas_ = false;
    TextoCrescente nome_;  // of the tag, then of each attribute
    TextoCrescente valor_;
};

VeltoString* como_texto(VeltoObject* objeto) {
    return static_cast<VeltoString*>(static_cast<void*>(objeto));
}

}  // namespace

VtXmlTag::~VtXmlTag() {
    reset();
    delete paramList;
}

void VtXmlTag::reset() {
    tagName.Empty();
    tagType = openTag;
    if (!paramList) return;
    for (int i = 0; paramList->Objects && i < paramList->Count; ++i) {
        delete como_texto(paramList->Objects[i]);
        paramList->Objects[i] = nullptr;
    }
    paramList->Clear();
}

VeltoString VtXmlTag::valor(int i) const {
    const VeltoString* texto = paramList->Objects ? como_texto(paramList->Objects[i]) : nullptr;
    return texto ? *texto : VeltoString();
}

bool getVtXmlTagFromString(VeltoString& text, int& pos, VtXmlTag* tag) {
    tag->reset();
    return LeitorTag(text, pos, tag).le();
}

bool getVtXmlDataFromString(VeltoString& text, int& pos, VeltoString& data) {
    data.Empty();
    if (pos < 0 || pos >= text.Length()) return false;
    const char* const base = text.c_str();
    const char* const limite = base + text.Length();
    const char* de = base + pos;
    const void* menor = std::memchr(de, '<', static_cast<std::size_t>(limite - de));
    const char* const fim = menor ? static_cast<const char*>(menor) : limite;
    pos = static_cast<int>(fim - base);
    if (fim > de) {
        // Entities only shrink the text, so one allocation takes it all.
        data.SetLength(static_cast<int>(fim - de));
        int n = 0;
        while (de < fim) {
            const Entidade* e = *de == '&' ? entidade_em(de) : nullptr;
            data[++n] = e ? e->letra : *de;
            de += e ? e->tamanho : 1;
        }
        data.SetLength(n);
    }
    return menor != nullptr;
}

void escapeVtXmlString(VeltoString& s) {
    long long total = s.Length();
    for (int i = 1; i <= s.Length(); ++i)
        if (const Entidade* e = entidade_de(s[i])) total += e->tamanho - 1;
    if (total == s.Length()) return;
    if (total > INT_MAX) throw std::bad_alloc();
    int de = s.Length();
    int para = static_cast<int>(total);
    s.SetLength(para);
    // From the end backwards: what is still to be read is never overwritten.
    for (; de < para; --de) {
        const Entidade* e = entidade_de(s[de]);
        if (e) {
            para -= e->tamanho;
            std::memcpy(&s[para + 1], e->nome, static_cast<std::size_t>(e->tamanho));
        } else {
            s[para--] = s[de];
        }
    }
}
