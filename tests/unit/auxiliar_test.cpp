// Words, splitters and lookups, by tables of cases.
#include "common/auxiliar.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "common/Evento.h"
#include "common/LogMailFileParser.h"
#include "misc/bytes.h"
#include "misc/finais.h"
#include "misc/palavras.h"
#include "tests/unit/apoio/um_a_um.h"

namespace {

using Palavras = std::vector<std::string>;

Palavras separa(std::string linha, int max) {
    char* t[50] = {};
    const int n = getTokens(linha.data(), t, max);
    return {t, t + n};
}

TEST(Auxiliar, getTokens) {
    const struct {
        const char* linha;
        int max;
        Palavras palavras;
    } casos[] = {
        {"32 MAILQ SUBMIT Msg\n", 50, {"MAILQ", "SUBMIT", "Msg"}},
        {" a   b \n", 50, {"a", "b"}},
        {"x a b \r\n", 50, {"a", "b", "\r"}},
        {"x a b\r\n", 50, {"a", "b"}},
        {"x um dois tres\n", 2, {"um", "d"}},
        {"x a  ", 50, {"a"}},  // no line feed: the line ends at its NUL
        {"x", 50, {}},
        {"x a\nb c\n", 50, {"a"}},
    };
    for (const auto& c : casos) EXPECT_EQ(separa(c.linha, c.max), c.palavras) << c.linha;
}

// The splitting rule, one character at a time.
Palavras separa_devagar(std::string linha, std::size_t max) {
    Palavras palavras;
    std::size_t p = 0;
    const auto aqui = [&] { return p < linha.size() ? linha[p] : '\0'; };
    std::vector<std::size_t> inicios;
    while (aqui() != '\n' && aqui() != '\r' && aqui() != '\0' && inicios.size() < max) {
        if (aqui() == ' ') {
            linha[p++] = '\0';
            while (aqui() == ' ') ++p;
            if (aqui() == '\n' || aqui() == '\0') break;
            inicios.push_back(p);
        }
        ++p;
    }
    linha.resize(p);
    for (std::size_t i : inicios) palavras.emplace_back(linha.c_str() + i);
    return palavras;
}

// Every byte in every place of a number, digits of all values around it.
TEST(Auxiliar, oitoHexadecimaisComoStrtoul) {
    const std::string digitos = "0123456789abcdef";
    for (std::size_t lugar = 0; lugar < 8; ++lugar)
        for (int byte = 0; byte < 256; ++byte) {
            std::string texto = digitos.substr(static_cast<std::size_t>(byte) % 8, 8);
            texto[lugar] = static_cast<char>(byte);
            const bool todos = texto.find_first_not_of(digitos) == std::string::npos;
            std::uint32_t numero = 0;
            ASSERT_EQ(oito_hexadecimais(texto.data(), numero), todos) << lugar << ' ' << byte;
            if (todos) {
                ASSERT_EQ(numero, std::strtoul(texto.c_str(), nullptr, 16)) << texto;
            }
        }
}

// Of exactly its size, so that a byte read behind it shows under a sanitizer. Many bytes are of
// those that end words and lines, but not in every text.
std::unique_ptr<char[]> linha_ao_acaso(std::mt19937& sorte, std::size_t n) {
    std::unique_ptr<char[]> texto(new char[n + 1]);
    const unsigned raras = 8 + sorte() % 40;
    const bool so_brancos = sorte() % 2;
    for (std::size_t i = 0; i < n; ++i) {
        texto[i] = " \n\rabcdefgh"[sorte() % raras % 11];
        if (so_brancos && texto[i] < ' ') texto[i] = ' ';
    }
    texto[n] = '\0';
    return texto;
}

TEST(Auxiliar, copiaPalavrasComoUmaAUma) {
    std::mt19937 sorte(11);
    for (int vez = 0; vez < 20000; ++vez) {
        const auto texto = linha_ao_acaso(sorte, Cortes::maior);
        char a[Cortes::maior], b[Cortes::maior];
        Cortes c = copia_palavras(a, texto.get());
        ASSERT_EQ(c, copia_palavras_uma_a_uma(b, texto.get()));
        ASSERT_EQ(std::memcmp(a, b, sizeof a), 0);
        const std::size_t limite = sorte() % (Cortes::maior + 1);
        std::vector<std::size_t> quer, lidos;
        c.para_cada([&](std::size_t i) { return i < limite ? quer.push_back(i) : void(), true; });
        c.limita(limite);
        c.para_cada([&](std::size_t i) { return lidos.push_back(i), true; });
        ASSERT_EQ(lidos, quer);
    }
}

TEST(Auxiliar, marcasEPalavrasComoUmaAUma) {
    std::mt19937 sorte(12);
    for (int vez = 0; vez < 20000; ++vez) {
        const std::size_t n = sorte() % 200, m = sorte() % (n + 1);
        const auto texto = linha_ao_acaso(sorte, n);
        const char* const t = texto.get();
        for (std::size_t i = 1; i <= std::min<std::size_t>(n, 64); ++i)
            ASSERT_EQ(marcas(t + n - i, i), marcas_uma_a_uma(t + n - i, i));
        if (n >= 64) {
            ASSERT_EQ(finais(t), finais_um_a_um(t));
        }
        if (n >= 32) {
            ASSERT_EQ(primeiro_branco(t, m), primeiro_branco_um_a_um(t, m));
        }
        if (n > 0) {
            std::string outro(t, n);
            ASSERT_TRUE(mesmos_bytes(t, outro.data(), n));
            outro[sorte() % n] ^= 1;
            ASSERT_FALSE(mesmos_bytes(t, outro.data(), n));
        }
        if (m >= 16 && vez % 8 < 2) {
            const std::size_t nul = sorte() % n;
            texto[nul] = '\0';
            ASSERT_EQ(tem_nul(t, m), nul < m);
        }
        const std::string linha = t;
        const std::size_t max = sorte() % 50;
        ASSERT_EQ(separa(linha, static_cast<int>(max)), separa_devagar(linha, max)) << linha;
    }
}

// A line taken apart with its length known, against the splitter that looks for its end: words up
// to the first NUL, of 299 bytes at most, ten of them.
TEST(Auxiliar, palavrasDoEventoComoGetTokens) {
    std::mt19937 sorte(13);
    for (int vez = 0; vez < 20000; ++vez) {
        std::string linha = "Sun Mar 15 10:20:30 2009: 07";
        for (unsigned n = sorte() % 14; n > 0; --n)
            linha += " " + std::string(sorte() % (sorte() % 20 ? 14 : 200), "aMO"[n % 3]);
        for (unsigned n = sorte() % 3; n > 0; --n)
            linha[sorte() % linha.size()] = std::string(" \t\r\n\x01\x80", 7)[sorte() % 7];
        linha += std::vector<std::string>{"", "\n", "\r\n", " \n", "\n"}[sorte() % 5];
        std::string lida = linha.substr(0, 299).c_str();
        char* t[Evento::palavras_lidas + 1] = {};
        const int n = lida.size() > 26 ? getTokens(&lida[26], t, Evento::palavras_lidas + 1) : 0;
        const Palavras quer(t, t + std::min(n, Evento::palavras_lidas));
        const std::size_t tamanho = linha.size();
        linha.append(Evento::folga, 'z');
        Evento e;
        e.separa(linha.data(), tamanho);
        Palavras palavras;
        for (int i = 0; i < Evento::palavras_lidas && e.palavra(i).data(); ++i) {
            palavras.emplace_back(e.palavra(i));
            ASSERT_EQ(std::strlen(e.palavra(i).data()), palavras.back().size());
        }
        ASSERT_EQ(palavras, quer) << linha;
    }
}

// count < 0: the splitter answered null.
TEST(Auxiliar, explode) {
    const struct {
        const char* texto;
        char sep;
        int total;
        Palavras pedacos;
    } casos[] = {
        {"a;b;\n", ';', 3, {"a", "b", ""}},
        {"   ", ';', -1, {}},
        {"a,,b", ',', 3, {"a", "", "b"}},
        {" a b", ' ', 2, {"", "a"}},
        {" a b\n", ' ', 2, {"", "a"}},
        {"  x;y", ';', 2, {"  x", "y"}},
        {"\n", ';', 1, {""}},
    };
    for (const auto& c : casos) {
        int n = -1;
        std::string texto = c.texto;
        const std::unique_ptr<char*[]> p(explode(texto.data(), c.sep, &n));
        EXPECT_EQ(p ? n : -1, c.total) << c.texto;
        if (!p) continue;
        EXPECT_EQ(Palavras(p.get(), p.get() + n), c.pedacos) << c.texto;
        EXPECT_EQ(p[static_cast<std::size_t>(n)], nullptr);
    }
}

template <class Tipo, class Pergunta>
void classifica(Pergunta pergunta, std::initializer_list<std::pair<const char*, Tipo>> casos) {
    for (const auto& [palavra, quer] : casos) EXPECT_EQ(pergunta(palavra), quer) << palavra;
}

// Words are told by few of their letters; those of the log are met in tests of events.
TEST(Auxiliar, classifica) {
    classifica<Agent>(getAgent, {{"M   Q", MAILQ},
                                 {"MAIL", AGENT_UNKNOWN},
                                 {"MAILX", AGENT_UNKNOWN},
                                 {"x", AGENT_UNKNOWN},
                                 {"", AGENT_UNKNOWN},
                                 {nullptr, AGENT_UNKNOWN}});
    classifica<Status>(getStatus, {{"ARQUIVO", ARQUIVO},
                                   {"ERROR_X", STATUS_UNKNOWN},
                                   {"SPAM", STATUS_UNKNOWN},
                                   {"D", STATUS_UNKNOWN},
                                   {"", STATUS_UNKNOWN},
                                   {nullptr, STATUS_UNKNOWN}});
    classifica<UserType>(getUserType, {{"INTERNO", INTERNO},
                                       {"POP", EXTERNO},
                                       {"SMTPCONNI", INTERNO},
                                       {"SMTPCONNEXT", EXTERNO},
                                       {"SMTPCONN", USER_UNKNOWN},
                                       {"X", USER_UNKNOWN},
                                       {nullptr, USER_UNKNOWN}});
    classifica<time_t>(strhex_to_time,
                       {{"5f3a1b2c", 1597643564}, {"0x10 1 2", 16}, {"", 0}, {nullptr, 0}});
}

// In any case and by prefix, where that is asked for; else as it stands. A table answers like a
// list.
TEST(Auxiliar, procuraNomes) {
    Usuario ana("ana", 1), rui("Rui@x.test", 1), vazio("", 1), eva("eva", 1);
    DList<Usuario> lista;
    Tabela<Usuario> tabela;
    lista.putFirst(&ana);
    lista.putFirst(&rui);
    tabela.putFirst(&eva);
    EXPECT_EQ(procurar_usuario(&lista, "Ana@dominio", true), &ana);
    EXPECT_EQ(procurar_usuario(&lista, "Ana@dominio", false), nullptr);
    EXPECT_EQ(procurar_usuario(&lista, "rui@x.tes", true), nullptr);
    EXPECT_EQ(procurar_usuario(&lista, "rUI@x.test.br", true), &rui);
    EXPECT_EQ(procurar_usuario(&tabela, "eva", false), &eva);
    EXPECT_EQ(procurar_usuario(&tabela, "Eva@dominio", true), &eva);
    EXPECT_EQ(procurar_usuario(&tabela, "eva@dominio", false), nullptr);
    lista.putFirst(&vazio);
    EXPECT_EQ(procurar_usuario(&lista, "qualquer", true), &vazio);
    EXPECT_EQ(procurar_usuario(&lista, "qualquer", false), nullptr);
    tabela.remove(&eva);
    Domain d{};  // without an end
    memset(d.name, 'd', sizeof d.name);
    DList<Domain> dominios;
    dominios.putFirst(&d);
    EXPECT_EQ(procurar_dominio(&dominios, std::string(300, 'd').c_str()), &d);
    EXPECT_EQ(procurar_dominio(&dominios, std::string(299, 'd').c_str()), nullptr);
}

TEST(Usuario, contadores) {
    Usuario u("ana", 3), sem_nome(nullptr, 0);
    for (unsigned p = 0; p < 3; ++p) EXPECT_EQ(u.incSent(p, static_cast<int>(p) + 1), 1);
    EXPECT_EQ(u.incSent(3, 1), 0);
    u.addSentBytes(0, -1);
    u.addSentBytes(1, 2);
    for (const auto& [periodo, total] : {std::pair{-1, 6u}, {2, 3u}, {3, 0u}, {-2, 6u}})
        EXPECT_EQ(u.count(SENT, periodo), total) << periodo;
    for (const int que : {-1, ATT_BLOCKED + 1})
        EXPECT_EQ(u.count(static_cast<InfoType>(que), 0), 0u);
    EXPECT_EQ(u.getStats(-1).sent, 6u);
    EXPECT_EQ(u.getStats(-1).bytes_sent, 1u);  // wraps at 32 bits
    EXPECT_EQ(u.getStats(1).bytes_sent, 2u);
    EXPECT_EQ(u.getStats(9).sent, 0u);
    u.msgs_reference = 4;
    u.reset_vars();
    EXPECT_EQ(u.count(SENT, -1) + u.msgs_reference, 0u);
    EXPECT_EQ(sem_nome.getNumPeriods(), 24u);
    EXPECT_EQ(sem_nome.incAttBlocked(23, 5) + sem_nome.incAttBlocked(24, 5), 1);
    EXPECT_EQ(sem_nome.count(ATT_BLOCKED, 23), 5u);
}

TEST(Msg, errosPendentes) {
    Msg m("id", 0);
    EXPECT_EQ(m.add_error(etCONNECT, nullptr), 0);
    for (const ErrorType tipo : {etCONNECT, etCONNECT, etHELO}) m.add_error(tipo, "T");
    // The text is known already, whatever the kind.
    EXPECT_EQ(m.error_list.first(), m.error_list.last());
    EXPECT_EQ(m.procurar_erro(etHELO, "T"), nullptr);
    EXPECT_NE(m.procurar_erro(etCONNECT, "T"), nullptr);
    const std::pair<ErrorType, const char*> erros[] = {{etDATA, ""},     {etDATA, ""},
                                                       {etDEST, "dest"}, {etSIZE, ""},
                                                       {etFINAL, "x"},   {etCONNECTION, "x"}};
    for (const auto& [tipo, texto] : erros) m.add_error(tipo, texto);
    LogMailFileParser p;
    p.remover_error(&m, nullptr);  // one DATA goes
    p.remover_error(&m, "T");      // CONNECT and the other DATA go
    m.remove_error(etDEST, "dest");
    std::string ficam;
    for (const ErrorInfo* e = m.error_list.first(); e; e = e->next)
        ficam += std::to_string(e->error_type) + " ";
    EXPECT_EQ(ficam, "9 8 ");
}

// A sender's text is freed with the last who holds it: messages, and the user of that name.
TEST(Msg, remetente) {
    auto* a = new Msg("a", 0);
    Msg b("b", 0), c("c", 0);
    a->define_remetente(TextoPartilhado("ana@x", 5));
    b.define_remetente("rui@x");
    b.define_remetente(b.sendername);
    EXPECT_STREQ(b.sendername, "rui@x");
    TextoPartilhado comum("eva@x", 5);
    for (Msg* m : {a, &b, &c}) m->define_remetente(comum);
    EXPECT_EQ(a->sendername, c.sendername);
    delete a;
    comum = TextoPartilhado();
    EXPECT_STREQ(b.sendername, "eva@x");
    b.define_remetente(nullptr);
    EXPECT_EQ(b.sendername, nullptr);
    auto* u = new Usuario("zoe@x", 24);
    b.define_remetente(u->nome());
    EXPECT_EQ(b.sendername, u->name);
    delete u;
    EXPECT_STREQ(b.sendername, "zoe@x");
    c.define_remetente(Usuario(nullptr, 24).nome());
    EXPECT_EQ(c.sendername, nullptr);
}

TEST(Msg, destinatariosELimites) {
    const std::string n200(200, 'n'), n201(201, 'n');
    Msg m(std::string(30, 'i').c_str(), 5);
    EXPECT_EQ(std::string(m.id), std::string(23, 'i'));
    EXPECT_EQ(m.start_time, 5);
    EXPECT_STREQ(Msg(nullptr, 7).id, "");
    EXPECT_FALSE(m.addRecipient(nullptr) || m.addRecipient(n201.c_str()));
    RCPTO *const r = m.addRecipient(n200.c_str()), *const eva = m.addRecipient("eva");
    EXPECT_EQ(m.getRecipientByName(n200.c_str()), r);
    EXPECT_EQ(m.getRecipientByName("eva"), eva);
    EXPECT_FALSE(m.getRecipientByName("Eva") || m.getRecipientByName(nullptr));
    EXPECT_STREQ(m.str_error, "");
    for (const std::size_t n : {1023, 1024, 2000}) {
        m.str_error = std::string(n, 'e');
        EXPECT_EQ(std::strlen(m.str_error), 1023u) << n;
    }
}

// Of every length, those included that come from elsewhere than the reserves of short texts; the
// second time from places given back.
TEST(TextoPartilhado, comprimentos) {
    std::vector<TextoPartilhado> textos;
    const auto certo = [](std::size_t n) {
        return std::string(n, static_cast<char>('a' + n % 26));
    };
    for (int vez = 0; vez < 2; ++vez) {
        for (std::size_t n = 0; n < 300; ++n) textos.emplace_back(certo(n).c_str(), n);
        for (std::size_t n = 0; n < 300; ++n) {
            EXPECT_TRUE(textos[n].igual(certo(n).c_str(), n));
            EXPECT_FALSE(textos[n].igual(certo(n + 26).c_str(), n + 26));
            EXPECT_EQ(textos[n].texto(), certo(n));
            EXPECT_EQ(TextoPartilhado::tamanho(textos[n].texto()), n);
        }
        textos.clear();
    }
}

}  // namespace
