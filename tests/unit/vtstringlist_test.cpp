// The list of texts: capacities, order, lookup, and objects that stay where they are.
#include "borland/vtstringlist.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> textos(const VeltoStringList& l) {
    std::vector<std::string> r;
    for (int i = 0; i < l.Count; ++i) r.emplace_back(l.list[i]->c_str());
    return r;
}

using T = std::vector<std::string>;

void enche(VeltoStringList& l, const T& t) {
    for (const auto& s : t) l.Add(s.c_str());
}

int objetos[3];

VeltoObject* objeto(int i) {
    return static_cast<VeltoObject*>(static_cast<void*>(&objetos[i]));
}

TEST(VeltoStringList, Capacities) {
    VeltoStringList l;
    EXPECT_EQ(l.list, nullptr);
    const struct {
        int entradas, size;
    } casos[] = {{0, 0}, {1, 10}, {10, 10}, {11, 15}, {15, 15}, {16, 22}, {23, 33}, {34, 49}};
    for (const auto& c : casos) {
        while (l.Count < c.entradas) {
            const int antes = l.Count;
            EXPECT_EQ(l.Add("x"), antes);
        }
        EXPECT_EQ(l.size, c.size) << c.entradas;
    }
    l.Clear();
    EXPECT_EQ(l.Count, 0);
    EXPECT_EQ(l.size, 49);
    EXPECT_EQ(l.Objects, nullptr);
}

TEST(VeltoStringList, SharesRecordsAndItself) {
    const VeltoString s("abc");
    VeltoStringList l;
    l.Add(s);
    l.Insert(0, s);
    EXPECT_EQ(l[0].data, s.data);
    EXPECT_EQ(s.data->refcount, 3);
    EXPECT_EQ(&l.Strings, &l);
    EXPECT_EQ(&l.Values[1], &l[1]);
}

TEST(VeltoStringList, InsertAnswersTheCountBefore) {
    VeltoStringList l;
    enche(l, {"a", "b", "c"});
    EXPECT_EQ(l.Insert(0, "0"), 3);
    EXPECT_EQ(l.Insert(2, "2"), 4);
    EXPECT_EQ(l.Insert(5, "z"), 5);
    EXPECT_EQ(textos(l), (T{"0", "a", "2", "b", "c", "z"}));
    while (l.Count < 10) l.Add("x");
    EXPECT_EQ(l.Insert(1, "onze"), 10);
    EXPECT_EQ(l.size, 15);
    EXPECT_STREQ(l[1].c_str(), "onze");
    EXPECT_STREQ(l[6].c_str(), "z");
}

TEST(VeltoStringList, DeleteClosesTheGap) {
    VeltoStringList l;
    enche(l, {"a", "b", "c", "d"});
    l.Delete(3);
    EXPECT_EQ(textos(l), (T{"a", "b", "c"}));
    l.Delete(0);
    EXPECT_EQ(textos(l), (T{"b", "c"}));
}

TEST(VeltoStringList, BadIndicesHarmNothing) {
    VeltoStringList l;
    enche(l, {"a", "b"});
    for (int i : {-1, 2, 1000}) {
        l.Delete(i);
        EXPECT_EQ(l.Insert(i == 2 ? 3 : i, "x"), -1);
        l[i] = "lixo";
        EXPECT_TRUE(l[i].IsEmpty());
    }
    EXPECT_EQ(textos(l), (T{"a", "b"}));
}

TEST(VeltoStringList, SortsBytes) {
    VeltoStringList l;
    l.Sort();
    enche(l, {"B", "\xE1", "a", "", "C", "ab"});
    l.Sort();
    EXPECT_EQ(textos(l), (T{"", "B", "C", "a", "ab", "\xE1"}));
}

TEST(VeltoStringList, LookupByName) {
    VeltoStringList l;
    enche(l, {"username=a", "user", "user=b", "user=c", "vazio=", "=sem nome", "a=b=c"});
    const struct {
        const char* nome;
        const char* valor;
    } casos[] = {{"user", "b"},         {"username", "a"}, {"use", ""},  {"vazio", ""},
                 {"", "sem nome"},      {"a", "b=c"},      {"a=b", "c"}, {"USER", ""},
                 {nullptr, "sem nome"}, {"falta", ""}};
    for (const auto& c : casos) EXPECT_STREQ(l[c.nome].c_str(), c.valor) << (c.nome ? c.nome : "-");
}

TEST(VeltoStringList, ObjectsStayAtTheirIndex) {
    VeltoStringList l;
    for (int i = 0; i < 9; ++i) l.Add("x");
    EXPECT_EQ(l.AddObject("b", objeto(0)), 9);
    for (int i = 0; i < 9; ++i) EXPECT_EQ(l.Objects[i], nullptr);
    EXPECT_EQ(l.AddObject("a", objeto(1)), 10);
    EXPECT_EQ(l.size, 15);
    EXPECT_EQ(l.Objects[9], objeto(0));
    for (int i = 11; i < 15; ++i) EXPECT_EQ(l.Objects[i], nullptr);
    l.Sort();
    l.Delete(0);
    l.Insert(0, "y");
    EXPECT_EQ(l.Objects[9], objeto(0));
    EXPECT_EQ(l.Objects[10], objeto(1));
    l.Clear();
    l.Add("novo");
    l.AddObject("novo", objeto(2));
    EXPECT_EQ(l.Objects[0], nullptr);
    EXPECT_EQ(l.Objects[1], objeto(2));
    EXPECT_EQ(l.Objects[9], objeto(0));
}

TEST(VeltoStringList, AssignTakesStringsOnly) {
    VeltoStringList de, para;
    de.AddObject("a", objeto(0));
    de.Add("b");
    enche(para, {"velho"});
    para.Assign(&de);
    EXPECT_EQ(textos(para), (T{"a", "b"}));
    EXPECT_EQ(para.Objects, nullptr);
    para.AddStrings(&para);
    EXPECT_EQ(textos(para), (T{"a", "b", "a", "b"}));
}

}  // namespace
