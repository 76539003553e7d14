// The shared text against a plain model, its record sizes, its oddities and its lock.
#include "borland/vtstring.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

std::string conteudo(const VeltoString& s) {
    return {s.c_str(), static_cast<std::size_t>(s.Length())};
}

// Trim as its callers know it: whole without blanks at the ends, else one character short.
std::string modelo_trim(const std::string& s) {
    const auto branco = [](char c) { return static_cast<signed char>(c) <= 32; };
    if (s.empty() || (!branco(s.front()) && !branco(s.back()))) return s;
    std::size_t de = 0;
    while (de < s.size() && branco(s[de])) ++de;
    std::size_t ate = s.size() - 1;
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
        if (m_[i].size() > 3000) corta(i);
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

    void corta(int i) {
        v_[i].SetLength(10);
        m_[i].resize(10);
    }

    std::mt19937 acaso_;
    VeltoString v_[total];
    std::string m_[total];

    const std::vector<std::function<void(int, int)>> ops_ = {
        [this](int i, int j) {
            if (i == j) return;  // a string assigned to itself is a case of its own
            v_[i] = v_[j], m_[i] = m_[j];
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
            const std::size_t p = std::clamp<int>(pos - 1, 0, v_[i].Length());
            const std::string novo = m_[j];
            v_[i].Insert(v_[j].c_str(), pos), m_[i].insert(p, novo);
        },
        [this](int i, int) {
            const int n = numero(v_[i].Length() + 30) - 3, antes = v_[i].Length();
            v_[i].SetLength(n);
            for (int k = antes + 1; k <= n; ++k) v_[i][k] = 'n';
            m_[i].resize(std::max(n, 0), 'n');
        },
        [this](int i, int j) {
            const std::string novo = "<" + m_[j] + "|" + m_[i] + ">";
            const int n = v_[i].printf("<%s|%s>", v_[j].c_str(), v_[i].c_str());
            m_[i] = novo;
            EXPECT_EQ(n, static_cast<int>(novo.size()));
        },
        [this](int i, int j) {
            const std::string novo = m_[j] + "-7" + m_[i];
            const int n = v_[i].cat_printf("%s%d%s", v_[j].c_str(), -7, v_[i].c_str());
            m_[i] += novo;
            EXPECT_EQ(n, static_cast<int>(novo.size()));
        },
        [this](int i, int) { v_[i].Empty(), m_[i].clear(); },
        [this](int i, int) { v_[i].setAllocationPolicy(numero(200), numero(25)); },
        [this](int i, int j) { v_[i] = v_[j].Trim(), m_[i] = modelo_trim(m_[j]); },
        [this](int i, int j) {
            v_[i] = v_[j].LowerCase();
            m_[i] = m_[j];
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
            const auto achado = m_[i].find(s);
            EXPECT_EQ(v_[i].Pos(s.c_str()), achado == std::string::npos || m_[i].empty()
                                                ? 0
                                                : static_cast<int>(achado) + 1);
            const auto ultimo = m_[j].find_last_of(s);
            EXPECT_EQ(v_[j].LastDelimiter(s.c_str()),
                      ultimo == std::string::npos ? 0 : static_cast<int>(ultimo) + 1);
        },
    };
};

TEST(VeltoString, AgreesWithPlainCopies) {
    for (unsigned semente = 1; semente <= 20; ++semente) {
        SCOPED_TRACE(semente);
        Dueto d(semente);
        for (int i = 0; i < 1500 && !testing::Test::HasFatalFailure(); ++i) d.passo();
    }
}

const std::string dez(10, 'd'), cem(100, 'c'), mil(1000, 'm');

struct CasoTamanho {
    const char* nome;
    void (*faz)(VeltoString&);
    unsigned size;
    unsigned len;
    int factor;
};

class Tamanhos : public testing::TestWithParam<CasoTamanho> {};

TEST_P(Tamanhos, Record) {
    VeltoString s;
    GetParam().faz(s);
    ASSERT_NE(s.data, nullptr);
    EXPECT_EQ(s.data->size, GetParam().size);
    EXPECT_EQ(s.data->len, GetParam().len);
    EXPECT_EQ(s.data->factor, GetParam().factor);
    EXPECT_EQ(s.data->refcount, 1);
}

using V = VeltoString;
const CasoTamanho tamanhos[] = {
    {"new_text", [](V& s) { s = dez.c_str(); }, 34, 10, 0},
    {"four_characters_more_still_fit", [](V& s) { s = dez.c_str(), s += "1234"; }, 34, 14, 0},
    {"five_do_not", [](V& s) { s = dez.c_str(), s += "12345"; }, 39, 15, 0},
    {"policy_on_empty", [](V& s) { s.setAllocationPolicy(100, 10); }, 124, 0, 10},
    {"policy_negative_room", [](V& s) { s.setAllocationPolicy(-5, 3); }, 24, 0, 3},
    {"policy_keeps_record_of_text", [](V& s) { s = "ab", s.setAllocationPolicy(100, 10); }, 26, 2,
     10},
    {"assigned_into_kept_record",
     [](V& s) { s.setAllocationPolicy(100, 10), s = mil.c_str(), s = "x"; }, 1024, 1, 10},
    {"doubling", [](V& s) { s.setAllocationPolicy(100, 10), s = cem.c_str(), s += dez.c_str(); },
     260, 110, 10},
    {"doubling_not_enough", [](V& s) { s.setAllocationPolicy(100, 10), s = mil.c_str(); }, 1024,
     1000, 10},
    {"by_half", [](V& s) { s.setAllocationPolicy(100, 5), s.SetLength(105); }, 195, 105, 5},
    {"short_of_the_margin", [](V& s) { s.setAllocationPolicy(100, 10), s.SetLength(237); }, 261,
     237, 10},
    {"just_the_margin", [](V& s) { s.setAllocationPolicy(100, 10), s.SetLength(236); }, 260, 236,
     10},
    {"negative_factor", [](V& s) { s.setAllocationPolicy(100, -30), s.SetLength(105); }, 129, 105,
     -30},
    {"set_length_on_empty", [](V& s) { s.SetLength(10); }, 30, 10, 0},
    {"set_length_on_empty_then_one_more", [](V& s) { s.SetLength(10), s += "x"; }, 35, 11, 0},
    {"insert_into_empty", [](V& s) { s.Insert("abc", 7); }, 27, 3, 0},
    {"zero_byte", [](V& s) { s = V('\0'); }, 25, 1, 0},
    {"printf_on_empty", [](V& s) { s.printf("%s", dez.c_str()); }, 34, 10, 0},
    {"printf_nothing", [](V& s) { s.printf("%s", ""); }, 24, 0, 0},
    {"printf_below_room", [](V& s) { s.setAllocationPolicy(11, 7), s.printf("%s", dez.c_str()); },
     35, 10, 7},
    {"printf_fits", [](V& s) { s.setAllocationPolicy(7, 7), s.printf("%s", dez.c_str()); }, 31, 10,
     7},
    {"printf_at_the_limit_forgets_factor",
     [](V& s) { s.setAllocationPolicy(6, 7), s.printf("%s", dez.c_str()); }, 34, 10, 0},
    {"cat_printf_on_empty", [](V& s) { s.cat_printf("%s", dez.c_str()); }, 30, 10, 0},
    {"cat_printf_nothing_on_empty", [](V& s) { s.cat_printf("%s", ""); }, 20, 0, 0},
    {"cat_printf_fits", [](V& s) { s = dez.c_str(), s.cat_printf("%d", 123); }, 34, 13, 0},
    {"cat_printf_at_the_limit_grows", [](V& s) { s = dez.c_str(), s.cat_printf("%d", 1234); }, 38,
     14, 0},
    {"cat_printf_keeps_factor",
     [](V& s) { s.setAllocationPolicy(100, 10), s.cat_printf("%s%s", cem.c_str(), dez.c_str()); },
     260, 110, 10},
    {"longer_than_any_buffer", [](V& s) { s = "x", s.cat_printf("%s", mil.c_str()); }, 1025, 1001,
     0},
};

INSTANTIATE_TEST_SUITE_P(VeltoString, Tamanhos, testing::ValuesIn(tamanhos),
                         [](const auto& info) { return std::string(info.param.nome); });

TEST(VeltoString, PrivateCopyKeepsSizeAndFactor) {
    VeltoString a;
    a.setAllocationPolicy(100, 10);
    a = "abc";
    VeltoString b(a);
    ASSERT_EQ(a.data, b.data);
    EXPECT_EQ(a.data->refcount, 2);
    b += "d";
    EXPECT_STREQ(a.c_str(), "abc");
    EXPECT_STREQ(b.c_str(), "abcd");
    EXPECT_EQ(a.data->refcount, 1);
    EXPECT_EQ(b.data->size, 124u);
    EXPECT_EQ(b.data->factor, 10);
}

TEST(VeltoString, SomeChangesReachEverySharer) {
    VeltoString a("abc"), b(a);
    b[1] = 'X';
    EXPECT_STREQ(a.c_str(), "Xbc");
    b.setAllocationPolicy(500, 5);
    EXPECT_EQ(a.data, b.data);
    EXPECT_EQ(a.data->factor, 5);
}

TEST(VeltoString, Empty) {
    VeltoString a("abc");
    a.Empty();
    EXPECT_EQ(a.data, nullptr);
    a.setAllocationPolicy(100, 10);
    VeltoStringData* registro = a.data;
    a = "abc";
    a.Empty();
    EXPECT_EQ(a.data, registro);
    EXPECT_EQ(a.data->size, 124u);
    a = "abc";
    const VeltoString outra(a);
    a.Empty();
    EXPECT_STREQ(outra.c_str(), "abc");
    EXPECT_TRUE(a.IsEmpty());
}

TEST(VeltoString, OwnTextAsArgument) {
    VeltoString sozinha("abc");
    const VeltoString& mesma = sozinha;
    sozinha = mesma;
    EXPECT_EQ(sozinha.data, nullptr);

    VeltoString a("abc"), b(a);
    const VeltoString& mesma_a = a;
    a = mesma_a;
    EXPECT_STREQ(a.c_str(), "abc");
    EXPECT_EQ(a.data->refcount, 2);

    a = a.c_str() + 1;
    EXPECT_STREQ(a.c_str(), "bc");
    a += a;
    EXPECT_STREQ(a.c_str(), "bcbc");
    a.Insert(a.c_str() + 1, 2);
    EXPECT_STREQ(a.c_str(), "bcbccbc");
    a.append(a.c_str() + 5, 2);
    EXPECT_STREQ(a.c_str(), "bcbccbcbc");
    EXPECT_STREQ(b.c_str(), "abc");

    VeltoString crescente;
    crescente.setAllocationPolicy(100, 10);
    crescente = "abc";
    crescente = crescente.c_str() + 1;
    EXPECT_STREQ(crescente.c_str(), "bc");
    crescente = crescente.c_str();
    EXPECT_STREQ(crescente.c_str(), "");
}

TEST(VeltoString, Searches) {
    const VeltoString abc("abc"), vazia;
    EXPECT_EQ(abc.Pos("b"), 2);
    EXPECT_EQ(abc.Pos("x"), 0);
    EXPECT_EQ(abc.Pos(nullptr), 1);
    EXPECT_EQ(vazia.Pos("a"), 0);
    EXPECT_EQ(vazia.Pos(""), 0);
    EXPECT_EQ(VeltoString("a/b/c").LastDelimiter("/"), 4);
    EXPECT_EQ(VeltoString("a.b/c").LastDelimiter("./"), 4);
    EXPECT_EQ(abc.LastDelimiter("/"), 0);
    EXPECT_EQ(abc.LastDelimiter(""), 0);
    EXPECT_EQ(abc.LastDelimiter(nullptr), 0);
    EXPECT_EQ(vazia.LastDelimiter("/."), 0);
    EXPECT_EQ(VeltoString(" 42x").ToInt(), 42);
    EXPECT_EQ(vazia.ToInt(), 0);
    EXPECT_EQ(abc[1], 'a');
}

TEST(VeltoString, Comparisons) {
    const VeltoString vazia, zero('\0'), abc("abc"), prefixo("abc", 2);
    VeltoString esvaziada;
    esvaziada.setAllocationPolicy(10, 1);
    EXPECT_TRUE(vazia == "" && vazia == static_cast<const char*>(nullptr) && vazia == esvaziada);
    EXPECT_TRUE(esvaziada == "" && esvaziada == vazia);
    EXPECT_TRUE(vazia != "a" && vazia != abc && abc != vazia && abc != "");
    EXPECT_TRUE(prefixo == "ab" && prefixo != "abc" && prefixo != abc);
    EXPECT_TRUE(zero != "" && zero != vazia);
}

TEST(VeltoString, SubStrings) {
    const VeltoString s("abcdef");
    EXPECT_STREQ(s.SubString(2, 0).c_str(), "bcdef");
    EXPECT_STREQ(s.SubString(5, 10).c_str(), "ef");
    EXPECT_EQ(s.SubString(7, 1).data, nullptr);
    EXPECT_EQ(s.SubString(-1, 3).data, nullptr);
    EXPECT_EQ(s.SubString(2, -1).data, nullptr);
    EXPECT_EQ(conteudo(s.SubString(0, 3)), std::string("\0ab", 3));
    EXPECT_EQ(VeltoString().SubString(1, 0).data, nullptr);
}

TEST(VeltoString, NullTextsAreEmpty) {
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

TEST(VeltoString, Trim) {
    struct {
        const char* texto;
        const char* resto;
    } casos[] = {
        {" abc ", "ab"},      {"abc ", "ab"}, {" abc", "ab"}, {" a ", ""},
        {"   ", ""},          {"\xE9", ""},   {"", ""},       {"\xE9\xE9tudo\xE3", "tud"},
        {"a\xE9z", "a\xE9z"},
    };
    for (const auto& c : casos)
        EXPECT_STREQ(VeltoString(c.texto).Trim().c_str(), c.resto) << c.texto;
    const VeltoString abc("abc");
    EXPECT_EQ(abc.Trim().data, abc.data);
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

}  // namespace
