// The indexed table against a plain list: the same answers after every random step.
#include "misc/tabela.h"

#include <gtest/gtest.h>

#include <random>
#include <type_traits>
#include <vector>

#include "common/auxiliar.h"

namespace {

// A table is read as a list, and cannot be changed as one, which would leave its index behind.
static_assert(std::is_convertible_v<Tabela<Msg>&, const DList<Msg>&>);
static_assert(!std::is_convertible_v<Tabela<Msg>&, DList<Msg>&>);
static_assert(!std::is_convertible_v<Tabela<Msg>*, DList<Msg>*>);
template <class T>
concept cabeca_muda = requires(T t) {
    t.head = nullptr;
};
static_assert(cabeca_muda<DList<Msg>> && !cabeca_muda<Tabela<Msg>>);

TEST(Tabela, respondeComoALista) {
    std::mt19937 sorte(7);
    const auto escolhe = [&](std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(sorte);
    };
    Tabela<Msg> tabela;
    const DList<Msg>& lista = tabela;  // the same elements, searched by walking
    std::vector<Msg*> dentro;
    std::size_t achados = 0, apagados = 0;
    for (int passo = 0; passo < 20000; ++passo) {
        // It grows to several hundred, shrinks to nothing, and grows again; keys repeat.
        const bool poe = passo / 4000 % 2 == 0 ? escolhe(4) != 0 : escolhe(4) == 0;
        const std::string id = "M" + std::to_string(escolhe(400));
        if (poe || dentro.empty()) {
            Msg* m = new Msg(id.c_str(), 0);
            m->size = escolhe(3) == 0;
            escolhe(3) ? tabela.putFirst(m) : tabela.putLast(m);
            dentro.push_back(m);
        } else {
            const std::size_t i = escolhe(dentro.size());
            Msg* m = dentro[i];
            Msg* seguinte = m->next;
            EXPECT_EQ(tabela.removeAndGetNext(m), seguinte);
            delete m;
            dentro[i] = dentro.back();
            dentro.pop_back();
        }
        if (passo % 3000 == 2999) {
            const std::size_t antes = dentro.size();
            std::erase_if(dentro, [](const Msg* m) { return m->size != 0; });
            tabela.apaga_se([](const Msg* m) { return m->size != 0; });
            apagados += antes - dentro.size();
        }
        ASSERT_EQ(procurar_msg(&tabela, id.c_str()), procurar_msg(&lista, id.c_str())) << passo;
        ASSERT_EQ(tabela.total(), dentro.size());
        achados += procurar_msg(&tabela, id.c_str()) != nullptr;
    }
    EXPECT_GT(achados, 5000u);
    EXPECT_GT(apagados, 500u);
    for (Msg* m : dentro) delete m;
}

}  // namespace
