// The shared text and the list of texts: against a plain model, then the sizes, oddities and the
// lock.
#include "borland/vtstring.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "borland/vtstringlist.h"

namespace {

std::string conteudo(const VeltoString& s) {
    return {s.c_str(), static_cast<std::size_t>(s.Length())};
}

// Trim as its callers know it: whole without blanks at the ends, else one character short.
std::string modelo_trim(const std::string& s) {
    const auto branco = [](char c) { return static_cast<signed char>(c) <= 32; };
    if (s.empty() || (!branco(s.front()) && !branco(s.back()))) return s;
    std::size_t de = 0, ate = s.size() - 1;
    while (de < s.size() && branco(s[de])) ++de;
    while (ate > de && branco(s[ate])) --ate;
    return ate > de ? s.substr(de, ate - de) : "";
}

// Several strings that share records, beside copies that share nothing.
class Dueto {
  public:
    explicit Dueto(unsigned semente) : acaso_(semente) {}

    void passo() {
        const int i = numero(total), j = numero(total);
        ops_[numero(static_cast<int>(ops_.size()))](i, j);
        for (int k = 0; k < total; ++k) {
            ASSERT_EQ(conteudo(v_[k]), m_[k]);
            ASSERT_EQ(v_[k].c_str()[v_[k].Length()], '\0');
            ASSERT_EQ(v_[k] == v_[i], m_[k] == m_[i]);
            ASSERT_EQ(v_[k] != m_[j].c_str(), m_[k] != m_[j]);
        }
        if (m_[i].size() > 3000) v_[i].SetLength(10), m_[i].resize(10);
    }

  private:
    static constexpr int total = 6;

    int numero(int abaixo_de) { return static_cast<int>(acaso_() % abaixo_de); }

    std::string texto(int maximo) {
        static const std::string letras = " \tabcXYZ/.\xE9\xFF<&%";
        std::string s(numero(maximo + 1), ' ');
        for (char& c : s) c = letras[numero(static_cast<int>(letras.size()))];
        return s;
    }

    std::mt19937 acaso_;
    VeltoString v_[total];
    std::string m_[total];

    const std::vector<std::function<void(int, int)>> ops_ = {
        [this](int i, int j) {
            if (i != j) v_[i] = v_[j], m_[i] = m_[j];  // to itself is a case of its own
        },
        [this](int i, int) { m_[i] = texto(60), v_[i] = m_[i].c_str(); },
        [this](int i, int j) { v_[i] += v_[j], m_[i] += m_[j]; },
        [this](int i, int j) { v_[i] += v_[j].c_str(), m_[i] += m_[j]; },
        [this](int i, int) {
            const std::string s = texto(40);
            const int n = numero(static_cast<int>(s.size()) + 1);
            v_[i].append(s.c_str(), n), m_[i] += n ? s.substr(0, n) : s;
        },
        [this](int i, int j) {
            const int pos = numero(v_[i].Length() + 6) - 2;
            const std::string novo = m_[j];
            m_[i].insert(std::clamp<int>(pos - 1, 0, v_[i].Length()), novo);
            v_[i].Insert(v_[j].c_str(), pos);
        },
        [this](int i, int) {
            const int n = numero(v_[i].Length() + 30) - 3, antes = v_[i].Length();
            v_[i].SetLength(n), m_[i].resize(std::max(n, 0), 'n');
            for (int k = antes + 1; k <= n; ++k) v_[i][k] = 'n';
        },
        [this](int i, int j) {
            const std::string novo = "<" + m_[j] + "|" + m_[i] + ">";
            EXPECT_EQ(v_[i].printf("<%s|%s>", v_[j].c_str(), v_[i].c_str()), novo.size());
            m_[i] = novo;
        },
        [this](int i, int j) {
            const std::string novo = m_[j] + "-7" + m_[i];
            EXPECT_EQ(v_[i].cat_printf("%s%d%s", v_[j].c_str(), -7, v_[i].c_str()), novo.size());
            m_[i] += novo;
        },
        [this](int i, int) { v_[i].Empty(), m_[i].clear(); },
        [this](int i, int) { v_[i].setAllocationPolicy(numero(200), numero(25)); },
        [this](int i, int j) { v_[i] = v_[j].Trim(), m_[i] = modelo_trim(m_[j]); },
        [this](int i, int j) {
            v_[i] = v_[j].LowerCase(), m_[i] = m_[j];
            for (char& c : m_[i])
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        },
        [this](int i, int j) {
            const int de = 1 + numero(v_[j].Length() + 2), n = numero(40);
            v_[i] = v_[j].SubString(de, n);
            const std::size_t cabe = n ? n : std::string::npos;
            m_[i] = de <= static_cast<int>(m_[j].size()) ? m_[j].substr(de - 1, cabe) : "";
        },
        [this](int i, int) {
            if (v_[i].IsEmpty()) return;
            const int k = 1 + numero(v_[i].Length());
            v_[i].Unique();
            v_[i][k] = m_[i][k - 1] = 'W';
        },
        [this](int i, int j) {
            const std::string s = texto(2);
            const std::size_t achado = m_[i].empty() ? std::string::npos : m_[i].find(s);
            EXPECT_EQ(v_[i].Pos(s.c_str()), static_cast<int>(achado + 1));
            EXPECT_EQ(v_[j].LastDelimiter(s.c_str()), static_cast<int>(m_[j].find_last_of(s) + 1));
        },
    };
};

TEST(VeltoString, concordaComCopias) {
    for (unsigned semente = 1; semente <= 20; ++semente) {
        Dueto d(semente);
        for (int i = 0; i < 1500 && !testing::Test::HasFatalFailure(); ++i) d.passo();
    }
}

// What a record takes, and when it grows. The steps of a row: "p100:10" sets room and factor, "=9"
// assigns so many letters, "+9" adds them, "l9" sets the length, "i9" inserts, "f9" and "c9" are
// printf and cat_printf.
TEST(VeltoString, tamanhos) {
    const struct {
        const char* passos;
        unsigned size, len;
        int factor;
    } casos[] = {
        {"=10 +4", 34, 14, 0},
        {"=10 +5", 39, 15, 0},
        {"p100:10", 124, 0, 10},
        {"p-5:3", 24, 0, 3},
        {"=2 p100:10", 26, 2, 10},
        {"p100:10 =1000 =1", 1024, 1, 10},
        {"p100:10 =100 +10", 260, 110, 10},
        {"p100:5 l105", 195, 105, 5},
        {"p100:10 l236", 260, 236, 10},
        {"p100:10 l237", 261, 237, 10},
        {"p100:-30 l105", 129, 105, -30},
        {"l10 +1", 35, 11, 0},
        {"i3", 27, 3, 0},
        {"f10", 34, 10, 0},
        {"f0", 24, 0, 0},
        {"p11:7 f10", 35, 10, 7},
        {"p7:7 f10", 31, 10, 7},
        {"p6:7 f10", 34, 10, 0},
        {"c10", 30, 10, 0},
        {"c0", 20, 0, 0},
        {"=10 c3", 34, 13, 0},
        {"=10 c4", 38, 14, 0},
        {"p100:10 c110", 260, 110, 10},
        {"=1 c1000", 1025, 1001, 0},
    };
    for (const auto& c : casos) {
        VeltoString s;
        std::istringstream passos(c.passos);
        for (std::string passo; passos >> passo;) {
            const int n = std::stoi(passo.substr(1));
            const std::string letras(passo[0] == 'p' ? 0 : n, 'x');
            const char* const x = letras.c_str();
            if (passo[0] == 'p')
                s.setAllocationPolicy(n, std::stoi(passo.substr(passo.find(':') + 1)));
            if (passo[0] == '=') s = x;
            if (passo[0] == '+') s += x;
            if (passo[0] == 'l') s.SetLength(n);
            if (passo[0] == 'i') s.Insert(x, 7);
            if (passo[0] == 'f') s.printf("%s", x);
            if (passo[0] == 'c') s.cat_printf("%s", x);
        }
        ASSERT_NE(s.data, nullptr) << c.passos;
        EXPECT_EQ(s.data->size, c.size) << c.passos;
        EXPECT_EQ(s.data->len, c.len) << c.passos;
        EXPECT_EQ(s.data->factor, c.factor) << c.passos;
    }
}

// A change makes a copy of one's own, with the room of the old one; a letter, the policy and what
// empties it do not.
TEST(VeltoString, quemPartilha) {
    VeltoString a("abc"), b(a);
    b[1] = 'X';
    EXPECT_STREQ(a.c_str(), "Xbc");
    b.setAllocationPolicy(500, 5);
    EXPECT_EQ(a.data, b.data);
    EXPECT_EQ(a.data->factor, 5);
    a.deallocate();
    a.setAllocationPolicy(100, 10);
    a = "abc";
    b = a;
    EXPECT_EQ(a.data->refcount, 2);
    b += "d";
    EXPECT_STREQ(a.c_str(), "abc");
    EXPECT_EQ(a.data->refcount, 1);
    EXPECT_EQ(b.data->size, 124u);
    EXPECT_EQ(b.data->factor, 10);
    const VeltoStringData* registro = a.data;
    a.Empty();
    EXPECT_EQ(a.data, registro);
    EXPECT_EQ(b.Trim().data, b.data);
}

// A part of the own text as an argument. Alone and assigned to itself, a text is lost.
TEST(VeltoString, oProprioTexto) {
    VeltoString sozinha("abc"), a("abc"), b(a);
    const VeltoString &mesma = sozinha, &mesma_a = a;
    sozinha = mesma;
    EXPECT_EQ(sozinha.data, nullptr);
    a = mesma_a;
    EXPECT_EQ(a.data->refcount, 2);
    a = a.c_str() + 1;
    a += a;
    EXPECT_STREQ(a.c_str(), "bcbc");
    a.Insert(a.c_str() + 1, 2);
    a.append(a.c_str() + 5, 2);
    EXPECT_STREQ(a.c_str(), "bcbccbcbc");
    EXPECT_STREQ(b.c_str(), "abc");
    a.deallocate();
    a.setAllocationPolicy(100, 10);
    a = "abc";
    a = a.c_str() + 1;
    EXPECT_STREQ(a.c_str(), "bc");
    a = a.c_str();
    EXPECT_STREQ(a.c_str(), "");
}

// What is asked of no text, an empty record or a single NUL; and out of range.
TEST(VeltoString, nadaEForaDoTexto) {
    const VeltoString abc("abc"), vazia, zero('\0');
    VeltoString esvaziada;
    esvaziada.setAllocationPolicy(10, 1);
    EXPECT_TRUE(vazia == "" && vazia == static_cast<const char*>(nullptr) && vazia == esvaziada);
    EXPECT_TRUE(esvaziada == "" && esvaziada == vazia && zero != "" && zero != vazia);
    EXPECT_TRUE(vazia != "a" && vazia != abc && abc != vazia && abc != "" && abc != "abcd");
    EXPECT_EQ(abc.Pos(nullptr), 1);
    EXPECT_EQ(vazia.Pos("") + abc.LastDelimiter(nullptr) + abc.LastDelimiter(""), 0);
    EXPECT_EQ(vazia.LastDelimiter("/.") + vazia.ToInt(), 0);
    EXPECT_EQ(VeltoString(" 42x").ToInt(), 42);
    for (const auto& [de, n] : {std::pair{7, 1}, {-1, 3}, {2, -1}})
        EXPECT_EQ(abc.SubString(de, n).data, nullptr) << de;
    EXPECT_EQ(conteudo(abc.SubString(0, 3)), std::string("\0ab", 3));
    EXPECT_STREQ(VeltoString(" \xE9 ").Trim().c_str(), "");
    VeltoString s(nullptr, 5);
    EXPECT_EQ(s.data, nullptr);
    s = "abc";
    s += nullptr;
    s.append(nullptr, 9);
    s.Insert(nullptr, 2);
    EXPECT_STREQ(s.c_str(), "abc");
    s = nullptr;
    EXPECT_EQ(s.data, nullptr);
}

// Meant for ThreadSanitizer: copies in several threads, any of which may be the last to let go.
// Each thread also changes copies of its own, which reads the count without the lock.
TEST(VeltoStringThreads, CopiesOfOneRecord) {
    for (int volta = 0; volta < 50; ++volta) {
        VeltoString comum("the text that all share");
        const VeltoString guardada(volta % 2 ? comum : VeltoString());
        std::vector<std::thread> threads;
        for (int t = 0; t < 2; ++t)
            threads.emplace_back([minha = comum, t] {
                for (int i = 0; i < 200; ++i) {
                    VeltoString copia(minha), outra;
                    outra = copia;
                    outra.cat_printf("%d", t);
                    EXPECT_EQ(outra.Length(), copia.Length() + 1);
                }
            });
        comum += " no more";
        comum.deallocate();
        for (auto& t : threads) t.join();
        threads.clear();
        EXPECT_TRUE(!guardada.data || guardada.data->refcount == 1);
    }
}

std::string textos(const VeltoStringList& l) {
    std::string r;
    for (int i = 0; i < l.Count; ++i) (r += l.list[i]->c_str()) += ' ';
    return r;
}

// Objects stay at their index, whatever becomes of the texts.
TEST(VeltoStringList, textosEObjetos) {
    VeltoStringList l, outra;
    VeltoObject* const objeto = static_cast<VeltoObject*>(static_cast<void*>(&outra));
    for (const char* t : {"c", "B", "\xE1", "a", "", "a=b=c", "user", "user=2", "=x"}) l.Add(t);
    EXPECT_EQ(l.AddObject("z", objeto), 9);
    EXPECT_EQ(l.size, 10);
    EXPECT_EQ(l.Insert(1, "onze"), 10);  // the count before
    EXPECT_EQ(l.size, 15);
    for (const int i : {-1, 11, 1000}) {
        l.Delete(i);
        EXPECT_EQ(l.Insert(i == 11 ? 12 : i, "x"), -1);
        l[i] = "lixo";
        EXPECT_TRUE(l[i].IsEmpty());
    }
    EXPECT_EQ(textos(l), "c onze B \xE1 a  a=b=c user user=2 =x z ");
    for (const auto& [nome, valor] :
         {std::pair{"user", "2"}, {"a", "b=c"}, {"a=b", "c"}, {"", "x"}, {"use", ""}, {"USER", ""}})
        EXPECT_STREQ(l[nome].c_str(), valor) << nome;
    l.Sort();
    EXPECT_EQ(textos(l), " =x B a a=b=c c onze user user=2 z \xE1 ");
    l.Delete(10);
    l.Delete(0);
    EXPECT_EQ(textos(l), "=x B a a=b=c c onze user user=2 z ");
    EXPECT_EQ(l.Objects[8], nullptr);
    EXPECT_EQ(l.Objects[9], objeto);
    outra.Add("velho");
    outra.Assign(&l);
    outra.AddStrings(&outra);
    EXPECT_EQ(textos(outra), textos(l) + textos(l));
    EXPECT_EQ(outra.Objects, nullptr);
    l.Clear();
    EXPECT_EQ(l.Insert(0, "b") + l.Insert(0, "a") + l.Insert(2, "c"), 3);
    EXPECT_EQ(textos(l), "a b c ");
    while (l.Count < 16) l.Add("x");
    EXPECT_EQ(l.Objects[9], objeto);
    EXPECT_EQ(l.Objects[15], nullptr);
}

}  // namespace
