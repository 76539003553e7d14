// The reports over compact files, rows compared whole; and what all reports refuse.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/unit/apoio/relato.h"

namespace {

using namespace std::string_literals;

// --- Replay -----------------------------------------------------------------------------------

// Which lines of three days' files a report sees from one time to another: a message is listed for
// every submission seen, the last one first.
TEST(Relatorios, linhasQueOReplayVe) {
    const auto tabela = casos(R"(
# Both bounds belong to the range.
15 10,15 11,9:59:59 A|10 B|11 C|11:00:01 D,,, => CB
# Nothing is skipped once a line was in range; the first one after the end stops its file.
15 09:30,15 11,9 A|10 B|9 C|@0 1 1 D I a 1|@x 1 1 E I a 1,,, => EDCB
15 09:30,15 11,10 A|12 B|10:30 C,,, => A
# After such a stop the next file is searched again for the start.
15 09,16 11,10 A|@7fffffff 2 4 X,@1 1 1 B I a 1|10 C|@1 1 1 D I a 1,, => DCA
# A file that ends in range hands on to the whole next one, also over a missing day.
15 09,17 11,10 A,,@1 1 1 B I a 1|10 C, => CBA
# A file without a line in range leaves the search on.
15 09,17 11,8 A,@1 1 1 B I a 1|10 C,, => C
# Blanks count: here the third word is "1", and so is the fourth.
15 00,15 23,@0X49BCD1A0 1 1 A I a 1|@ 49bcd1a0 1 1 B I a 1|@|@49bcd1a0  1 1 C I a 1,,, => 11A
# Status is a decimal number, its low 32 bits; times are hexadecimal of any form.
15 00,15 23,@49bcd1a0 1 01 A I a 1|@1 1 1x B I a 1|@1 1 4294967297 C I a 1|@1 1 19 D I a 1,,, => CBA
15 00,15 23,@49BCD1a0 1 1 A I a 1|@+1 1 -1 E I a 1|@1 1 x F I a 1|@1 1 65537 G I a 1,,, => A
)");
    const auto vistas = [](Relato& r, const std::string& de, const std::string& ate) {
        std::string ids;
        std::istringstream linhas(r.mensagens({}, de, ate));
        for (std::string l; std::getline(linhas, l, '/');) ids += l.substr(0, l.find(' '));
        return ids;
    };
    for (const auto& [caso, quer] : tabela) {
        Relato r;
        std::istringstream campos(caso);
        std::string de, ate, linhas;
        std::getline(std::getline(campos, de, ','), ate, ',');
        for (const char* dia : {"15", "16", "17"})
            if (std::getline(campos, linhas, ',') && !linhas.empty()) r.compacto(dia, linhas);
        EXPECT_EQ(vistas(r, de, ate), quer) << caso;
    }
    // Longer than a line may be: what follows is the next line, here one of its own. A byte more or
    // less in front of it would be a time after the end.
    Relato r;
    const std::string h = T("16");
    r.compacto("16", "@" + h + std::string(2047 - 9, 'x') + "f" + h + " 1 1 LONGA INTERNO ana 1");
    EXPECT_EQ(vistas(r, "15", "17"), "LONGA");
    // Nearly nothing but blanks: more fields than a line of that length has words.
    r.compacto("16", "0 1 1 BRANCOS INTERNO ana 1" + std::string(92, ' '));
    EXPECT_EQ(vistas(r, "15", "17"), "BRANCOS");
    // Behind a line that does not matter to a trace, and is longer than one may be, stands another.
    const std::string longo(2047 - 16, 'x');
    r.compacto("15", "9 A|@" + h + " 2 2 B " + longo + h + " 2 15 A|@" + h + " 2 2 B " + longo);
    EXPECT_EQ(r.trace("A", "15", "17"), "A a 1 15 09:00:00 - IV /");
}

// --- Hours ------------------------------------------------------------------------------------

TEST(Relatorios, horas) {
    const auto tabela = casos(R"(
# Counted in the hour of its end; an hour's time goes to the one being left.
9 1 1 A INTERNO ana 100|10:01 2 4 A|10:30 1 1 B POP eva 50|11:00:05 2 4 B => 9h 15 10:01:00: 0 0 0 0 0 0 0 0/10h 15 11:00:05: 1 0 100 0 0 0 0 0/11h -: 0 1 0 50 0 0 0 0/24
# Spam and virus count twice; spam comes before virus, an error before both, once, at the end.
9 A|9 2 18 A|9 2 4 A|9 1 1 B POP eva 50|9 2 15 B|9 2 4 B => 9h -: 1 1 1 50 2 2 0 0/24
9 A|9 2 18 A|9 2 15 A|9 2 4 A => 9h -: 1 0 1 0 1 2 0 0/24
9 A|9 2 18 A|9 2 9 A x|9 2 5 A y|10 2 4 A => 9h 15 10:00:00: 0 0 0 0 0 1 0 0/10h -: 0 0 0 0 0 0 1 0/24
# A refusal for size is no error, nor is a retry; every end counts.
9 A|9 2 13 A|9 2 17 A x|9 2 4 A|9 1 4 A => 9h -: 2 0 2 0 0 0 0 0/24
# Not submitted in range: errors and virus make a record, an end does not.
9 2 4 A|9 2 9 B x|9 2 4 B|9 2 15 C|9 2 4 C => 9h -: 0 1 0 0 2 0 1 0/24
9 2 9 A x|9 A|9 2 4 A => 9h -: 1 0 1 0 0 0 0 0/24
# Six words are no submission; the letters of the user type tell.
9 1 1 A INTERNO ana|9 2 4 A|9 1 1 B SMTPAUTHI ana 7|9 1 4 B|9 1 1 C SMTP a 9|9 1 4 C => 9h -: 1 1 7 9 0 0 0 0/24
9 1 1|9 2 4|9 2 15|9 2 18|9 2 9|9 2 7|9 => 24
)");
    for (const auto& [linhas, quer] : tabela)
        EXPECT_EQ(Relato().compacto("15", linhas).horas(), quer) << linhas;
    for (const char* erro : {"5", "6", "8", "9", "10", "11", "12", "14"})
        EXPECT_EQ(Relato().compacto("15", "9 A|9 2 "s + erro + " A|9 2 4 A").horas(),
                  "9h -: 0 0 0 0 0 0 1 0/24");
}

TEST(Relatorios, horasDeVariosDias) {
    Relato r("LOC3");
    r.compacto("15", "9:59 1 1 A INTERNO ana 1|10 2 4 A")
        .compacto("16", "9 1 1 B INTERNO ana 2|9:10 2 4 B")
        .compacto("17", "0:10 1 1 C INTERNO ana 4|0:10 2 4 C|9 2 4 A");
    // The first line of a following file comes from hour 0; a range's first line from its own.
    EXPECT_EQ(r.horas("15", "17 23"),
              "0h 17 09:00:00: 1 0 4 0 0 0 0 0/9h 15 10:00:00: 2 0 3 0 0 0 0 0/"
              "10h -: 1 0 1 0 0 0 0 0/24");
    EXPECT_EQ(r.horas("15 09:59:30").substr(0, 3), "10h");
    // What an earlier report met is known to a later one: the user's report leaves it failed.
    EXPECT_EQ(r.horas("16 09:05", "16 23"), "9h -: 1 0 2 0 0 0 0 0/24");
    r.mensagens({}, "16", "16 10");
    EXPECT_EQ(r.horas("16 09:05", "16 23"), "9h -: 0 0 0 0 0 0 1 0/24");
    // Until a consolidation, which forgets it whatever its outcome.
    r.p.debugOut = nullptr;
    r.p.consolidate(r.arvore.path("last").c_str());
    r.p.debugOut = nullptr;
    EXPECT_EQ(r.horas("16 09:05", "16 23"), "24");
    // An attempt at no time is refused, also where all lines are of that hour.
    Relato u;
    u.compacto("15", "9 A").compacto("16", "@00000001 2 4 A|@00000000 2 7 A|@00000000 2 4 A");
    u.horas("15", "16 23");
    EXPECT_EQ(u.traco(),
              "LogMailFileParser::msgs_per_hour_handle_DELIVER : Params inv\xE1lidos.\r\n");
}

// --- Trace ------------------------------------------------------------------------------------

std::string troca(std::string s, const std::string& de, const std::string& por) {
    for (std::size_t i = 0; (i = s.find(de, i)) != std::string::npos; i += por.size())
        s.replace(i, de.size(), por);
    return s;
}

// "+" is the submission of A at 9 and what it makes of the message; "<Q>" a quiet connection error,
// "<D>" the date.
TEST(Relatorios, trace) {
    const auto tabela = casos(R"(
+|10 2 2 A rui@y|10 1 2 A bia|12 2 4 B => +- I /rui@y 15 10:00:00 Mensagem entregue./bia 15 10:00:00 Mensagem entregue./
+|11 2 4 A => +15 11:00:00 I /
# Lines of others, and events that a trace does not know.
+|10 1 1 a POP b 1|10 2 2 B x|10 2 9 AA x|10 2 10 B x|10 2 11 B|10 2 13 B|10 2 8 B r|10 2 5 B y|10 2 15 B => +- I /
+|10 2 12 A mx|10 2 14 A y|10 2 6 A y|10 2 17 A x|10 2 18 A|10 2 7 A => +- I /
+|10 1 1|10 2 2 A|10 2 9 A|10 2 10|10 2 4|10 2 15 => +- I /
# Submitted again with four words: time and user type change.
+|11 1 1 A => A ana@x 100 15 11:00:00 -  /
# Without a submission the rest is told, but the id is not taken; a virus gives it.
10 2 2 A r|10 2 4 A => 0 - 0 - 15 10:00:00  /r 15 10:00:00 Mensagem entregue./
10 2 15 A => A - 0 - - V /
# Refused twice, then taken: the first entry is left without a text.
+|10 2 9 A r|10 2 9 A r|11 2 2 A r => +- I /r 15 11:00:00 /r 15 10:00:00 E Destinat=E1rio r inv=E1lido./
+|10 2 9 A r|11 2 4 B => +- IE /r 15 10:00:00 E Destinat=E1rio r inv=E1lido./
# A connection error counts if it still pends at the end of any message.
+|10 2 5 A y.test => +- I <Q>/
+|10 2 5 A y.test|10 2 4 B => +- IE <Q>/
+|10 2 5 A y.test z => +- I Erro contactando o dom=EDnio y.test./
+|10 2 5 A|10 2 4 B => +- I <Q>/
+|10 2 5 A y.test|10 2 2 B y.test|10 2 4 B => +- I <Q>/
+|10 2 5 A y.test|10 2 2 B r@y.test|10 2 4 B => +- IE <Q>/
# Dated sentences follow each other; a final error replaces them.
+|10 2 11 A|10 2 13 A x => +- IE <D>A conex=E3o foi encerrada no meio da transmiss=E3o=0A<D>A mensagem foi rejeitada (muito grande).=0A/
+|10 2 8 A mx|10 2 8 A => +- IE <D>Mensagem rejeitada pelo relay mx remetente invalido.=0A<D>Mensagem rejeitada pelo relay.=0A/
+|10 2 11 A|10 2 10 A 550 nao  existe => +- IEF 550 nao  existe /
+|10 2 13 A|10 2 10 A => +- IEF <D>A mensagem foi rejeitada (muito grande).=0A/
# Lines of three words hit whatever message is traced.
10 2 13|10 2 8|10 2 11|10 2 5 => 0 - 0 - - E <Q>/
)");
    // Once more with ids of the usual length: shorter lines are no usual ones.
    for (const auto& [caso, resposta] : tabela)
        for (const std::string& id : {"A"s, std::string(16, 'A')}) {
            std::string quer = troca(resposta, "<Q>", "Erro contactando o dom\xEDnio de destino.");
            quer = troca(troca(quer, "<D>", "15/03/2009 10:00:00 - "), "+",
                         "A ana@x 100 15 09:00:00 ");
            if (quer[0] == 'A') quer.replace(0, 1, id);
            std::string linhas = troca(caso, "+", "9 1 1 A INTERNO ana@x 100");
            linhas = troca(troca(linhas, " A", " " + id), " B", " " + std::string(id.size(), 'B'));
            EXPECT_EQ(Relato().compacto("15", linhas).trace(id.c_str()), quer) << linhas;
        }
    const std::string r200(200, 'r');  // the longest name that is taken
    EXPECT_EQ(Relato()
                  .compacto("15", "9 2 2 A " + r200 + "|9 2 2 A r" + r200 + "|9 2 9 A r" + r200)
                  .trace("A"),
              "0 - 0 - -  /" + r200 + " 15 09:00:00 Mensagem entregue./");
}

// A sentence is told only while it finds its room in the 1024 bytes; the flag is set in any case.
TEST(Relatorios, espacoDoTextoDoTrace) {
    const struct {
        std::string linha;
        std::size_t precisa, escreve;  // told when the text there leaves more room than it needs
    } tabela[] = {
        {.linha = " 2 11 A", .precisa = 47 + 50, .escreve = 22 + 47},
        {.linha = " 2 13 A", .precisa = 41, .escreve = 22 + 41},
        {.linha = " 2 8 A " + std::string(100, 'm'), .precisa = 180, .escreve = 22 + 51 + 100},
        {.linha = " 2 8 A", .precisa = 0, .escreve = 22 + 31},
    };
    for (const auto& c : tabela)
        for (const std::size_t sobra : {c.precisa + 1, std::max<std::size_t>(c.precisa, 1)}) {
            const std::size_t ha = 1024 - sobra;
            Relato r;
            r.compacto("15", "9 2 10 A " + std::string(ha - 1, 'z') + "|10" + c.linha);
            Msg m("0", 0);
            r.p.msg_trace("A", hora("15"), hora(r.fim), &m);
            const std::size_t com = std::min<std::size_t>(ha + c.escreve, 1023);
            EXPECT_EQ(std::strlen(m.str_error), sobra > c.precisa ? com : ha) << c.linha << ha;
            EXPECT_TRUE(m.error);
        }
    const std::string longo(1022, 'a');
    EXPECT_EQ(Relato().compacto("15", "9 2 10 A " + longo + " b c").trace("A"),
              "0 - 0 - - F " + longo + " /");
}

// --- One user's messages ----------------------------------------------------------------------

TEST(Relatorios, mensagensFiltros) {
    const std::string A = "A Ana.Silva@aqui 1023 15 09:00:00 S I /",
                      B = "B bia@aqui 1024 15 11:00:00 S I /",
                      C = "C eva@fora 1025 15 13:00:00 S  /",
                      An = "A Ana.Silva@aqui 1023 15 10:00:00 N I /",
                      Bn = "B bia@aqui 1024 15 12:00:00 N I /",
                      Cn = "C eva@fora 1025 15 14:00:00 N  /", Dn = "D - 0 15 15:00:00 N  /";
    const std::pair<Relato::Filtro, std::string> tabela[] = {
        {{}, C + B + A},
        {{.min_kb = 1}, C + B},
        {{.max_kb = 1}, B + A},
        {{.min_kb = -1}, ""},
        {{.min_kb = 4194304}, ""},  // 4 GiB and more: beyond 32 bits of bytes
        {{.max_kb = 4194305}, C + B + A},
        {{.de = "ana"}, A},
        {{.de = "x,EVA@,ana.silva"}, C + A},
        {{.de = "ana.silva@aquix"}, ""},
        {{.de = "x,,y"}, C + B + A},  // an empty name begins everybody's
        {{.de = ""}, ""},
        {{.de = "   "}, ""},
        {{.para = "ana"}, Dn + Cn + Bn},
        {{.para = "ana@"}, Dn + Bn},
        {{.para = "ana", .max_kb = 1}, Dn + Bn},       // of D no size is known
        {{.para = "ana", .de = "bia"}, Dn + Cn + Bn},  // sent and received: received
        {{.para = "rui", .de = "ana"}, An},
        {{.id = "C"}, Cn},
        {{.de = "ana", .id = "C"}, Cn},  // one id is shown whoever sent it
        {{.id = "C", .max_kb = 1}, ""},
        {{.id = "c"}, ""},
        {{.para = "ana", .id = "B"}, Dn + Bn},  // the id narrows only what is known
    };
    for (const auto& [filtro, quer] : tabela) {
        Relato r;
        r.compacto("15",
                   "9 1 1 A INTERNO Ana.Silva@aqui 1023|10 1 2 A rui@aqui|"
                   "11 1 1 B INTERNO bia@aqui 1024|12 2 2 B ANA@fora|"
                   "13 1 1 C POP eva@fora 1025|14 1 2 C ana|15 1 2 D ana@aqui");
        EXPECT_EQ(r.mensagens(filtro), quer) << &quer - &tabela->second;
    }
}

// "+" is the submission of A and its row; "<L>" an id of 25 bytes, kept cut to 23 and looked up
// whole, so that nothing finds it again.
TEST(Relatorios, mensagensEventos) {
    const auto tabela = casos(R"(
9 1 1 A INTERNO ana => A ana 0 15 09:00:00 S I /
9 1 1 A INTERNO|9 2 2 A|9 2 4|9 2 15|9 2 9 =>
+|10 2 15 A|10 2 4 A => +V /
+|10 2 5 A y => +E Erro conectando y=0A/
+|10 2 5 A|10 2 9 A|10 2 10 A|10 2 11 A|10 2 12 A|10 2 12 A mx => + /
+|10 2 6 A y|10 2 14 A y|10 2 18 A|10 2 7 A|10 2 4 A => + /
+|10 2 8 A|10 2 10 A 550 => +E Erro no sender!/
+|10 2 9 A r => +E Destinat=E1rio inv=E1lido./
+|10 2 10 A 550 => +E /
+|10 2 11 A x => +E Erro na fase data!/
+|10 2 13 A => +E A mensagem foi rejeitada por ser muito grande./
+|10 2 17 A => +E Remetente temporiariamente indispon=EDvel./
# Submitted again: a row more, which takes the events.
+|10 1 1 A POP eva|10 2 8 A => A eva 0 15 10:00:00 S E Erro no sender!/+ /
9 1 1 <L>xx INTERNO a 1|9 2 8 <L>xx => <L> a 1 15 09:00:00 S I /
)");
    const std::string L = "0123456789abcdefghijklm";
    for (const auto& [caso, quer] : tabela) {
        const std::string linhas = troca(troca(caso, "+", "9 1 1 A INTERNO ana 100"), "<L>", L);
        EXPECT_EQ(Relato().compacto("15", linhas).mensagens({}),
                  troca(troca(quer, "+", "A ana 100 15 09:00:00 S I"), "<L>", L))
            << linhas;
    }
    // What a received message takes over from the events before it: an end leaves it failed unless
    // the sender was refused. Each delivery of a long id is a row.
    const std::string quer =
        "C - 0 15 17:00:00 N E /<L> - 0 15 15:00:00 N  /<L> - 0 15 14:00:00 N  /"
        "B - 0 15 13:00:00 N  /A ana 100 15 11:00:00 N IVE /";
    Relato r;
    r.compacto("15",
               troca("9 1 1 A INTERNO ana 100|9 2 15 A|10 2 4 A|11 2 2 A rui|12 2 8 B|12 2 4 B|"
                     "13 2 2 B rui|14 2 2 <L>xx rui|15 2 2 <L>xx rui|16 2 12 C|17 2 2 C rui",
                     "<L>", L));
    EXPECT_EQ(r.mensagens({.para = "rui"}), troca(quer, "<L>", L));
}

// Whoever is asked without what he needs refuses it, tells so, and changes nothing.
TEST(Relatorios, recusas) {
    Relato r;
    LogResult res;
    Msg m("A", 7);
    params nada{};
    InputFiles vazia{};
    MsgsData hora{};
    auto& p = r.p;
    char id[] = "A";
    char* campos[8] = {id, id, id, id, id, id, id, id};
    const auto recusou = [&](bool resposta, const std::string& traco) {
        EXPECT_FALSE(resposta) << traco;
        EXPECT_EQ(r.traco(), traco.empty() ? "" : "LogMailFileParser::" + traco + "\r\n");
    };
    const char *inverso = "get_msgs_per_day : Data inicial > data final",
               *mensagens = "get_user_msgs : Params inv\xE1lidos.",
               *trace = "msg_trace : Params. inv\xE1lidos.",
               *horas = "get_msgs_per_hour : Params inv\xE1lidos.",
               *lista = "parse_compact_file : Params. incorretos.",
               *consolid = "parse_consolid_files : Params. inv\xE1lidos.",
               *numero = ": N\xFAmeros de params. incorreto.", *da_hora = " : Params inv\xE1lidos.";
    recusou(p.get_msgs_per_day(6, 5, &res.msgs_day, nullptr), inverso);
    EXPECT_TRUE(p.get_msgs_per_day(5, 5, &res.msgs_day, nullptr));
    r.traco();
    recusou(p.get_msgs_per_hour_per_user(2, 1, "a", &res.msgs_hour), inverso);
    recusou(p.get_msgs_per_hour_per_user(1, 2, nullptr, &res.msgs_hour), inverso);
    recusou(p.get_user_msgs(nullptr, nullptr, nullptr, 0, 0, 2, 1, &res.user_msgs), mensagens);
    recusou(p.get_user_msgs(nullptr, nullptr, nullptr, 0, 0, 1, 2, nullptr), mensagens);
    recusou(p.msg_trace(nullptr, 1, 2, &m), trace);
    recusou(p.msg_trace("A", 1, 2, nullptr), trace);
    recusou(p.msg_trace("A", 2, 1, &m), trace);
    recusou(p.get_msgs_per_hour(2, 1, &res.msgs_hour), horas);
    recusou(p.get_msgs_per_hour(1, 2, nullptr), horas);
    recusou(p.parse_compact_files(nullptr, 1, 2, NONE, &nada), lista);
    recusou(p.parse_compact_files(&vazia, 1, 2, NONE, nullptr), lista);
    EXPECT_EQ(p.parse_compact_files(&vazia, 1, 2, NONE, &nada), 1);
    recusou(p.parse_consolid_files(nullptr, 1, 2, &res.msgs_day, nullptr, nullptr, nullptr),
            consolid);
    recusou(p.parse_consolid_files(&vazia, 2, 1, &res.msgs_day, nullptr, nullptr, nullptr),
            consolid);
    const std::string h = "msgs_per_hour_handle_", t = "msg_trace_handle_";
    recusou(p.msgs_per_hour_handle_SUBMIT(1, nullptr, campos, 7), h + "SUBMIT" + da_hora);
    recusou(p.msgs_per_hour_handle_SUBMIT(1, &hora, campos, 6), "");
    recusou(p.msgs_per_hour_handle_DELIVER(0, &hora, id), h + "DELIVER" + da_hora);
    recusou(p.msgs_per_hour_handle_DELIVER(1, &hora, nullptr), h + "DELIVER" + da_hora);
    recusou(p.msgs_per_hour_handle_END(nullptr, id, campos, 4), h + "END" + da_hora);
    recusou(p.msgs_per_hour_handle_ERROR(1, nullptr, campos, 4), h + "ERROR" + da_hora);
    recusou(p.msg_trace_handle_OK(id, id, 1, &m, campos, 4), t + "OK" + numero);
    recusou(p.msg_trace_handle_ERROR_DEST(id, id, 1, &m, campos, 4), t + "ERROR_DEST" + numero);
    EXPECT_EQ(m.recipients.first(), nullptr);
    EXPECT_EQ(hora.error + hora.msgs_int + hora.msgs_ext, 0u);
    EXPECT_EQ(p.msgs_per_hour_handle_DELIVER(1, &hora, id), 1);
    EXPECT_EQ(p.msgs_per_hour_handle_OK(1, id, nullptr, nullptr, 0), 1);
}

}  // namespace
