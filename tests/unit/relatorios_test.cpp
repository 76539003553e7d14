// The reports over small day files, rows compared whole.
#include <gtest/gtest.h>

#include "tests/unit/apoio/relato.h"

namespace {

using namespace std::string_literals;

const std::string d15 = "2009-03-15", d16 = "2009-03-16", d17 = "2009-03-17", d18 = "2009-03-18";
const std::string inicio = d15 + " 00:00:00", fim = d15 + " 23:59:59";

// --- Statistics files -------------------------------------------------------------------------

TEST(Relatorios, totaisPorDia) {
    Relato r;
    r.estatistica(d15, "11 12 1 2 3 4 5 6 7 8\n[11]\nana 9 9 9 9 9 9 9 9\n")
        .estatistica(d17, "11 12 1 2 3 4 5 -6 7 8")
        .estatistica(d18, "11 12 1 2 3 4 5 6 7\n8\n")  // the tenth number is on another line
        .estatistica("2009-03-19", "")
        .estatistica("2009-03-20", "11 12 x 2 3 4 5 6 7 8\n")
        .estatistica("2009-03-21", "4294967297 0 0 0 0 0 0 0 0 1");
    EXPECT_EQ(r.dias(inicio, "2009-03-21 00:00:00"),
              "15 00:00:00: 5 7 6 8 2 1 3 4\n"
              "17 00:00:00: 5 7 4294967290 8 2 1 3 4\n"
              "21 00:00:00: 0 0 0 1 0 0 0 0\n");
    EXPECT_EQ(r.traco(),
              "LogMailFileParser::parse_consolid_files : Erro ao abrir "
              "@/DAT/rels_03-09/mail_stat_16.txt\r\n");
    // A row's time is the start plus whole days; the day is that of each step, by UTC.
    EXPECT_EQ(r.dias(d15 + " 17:30:00", d17 + " 17:29:59"), "15 17:30:00: 5 7 6 8 2 1 3 4\n");
    EXPECT_EQ(r.dias(inicio, inicio), "");
    EXPECT_EQ(r.dias(d15 + " 12:00:00", d15 + " 12:00:01"), "15 12:00:00: 5 7 6 8 2 1 3 4\n");
    r.traco();
    LogResult vazio;
    EXPECT_TRUE(r.p.get_msgs_per_day(5, 5, &vazio.msgs_day, nullptr));
    EXPECT_FALSE(r.p.get_msgs_per_day(6, 5, &vazio.msgs_day, nullptr));
    EXPECT_EQ(r.traco(), "LogMailFileParser::get_msgs_per_day : Data inicial > data final\r\n");
}

// East of UTC the day file that is read at a local midnight is that of the day before.
TEST(Relatorios, arquivosPorUtc) {
    for (const char* tz : {"LOC-3", "LOC3", "UTC0"}) {
        Relato r(tz);
        r.estatistica("2009-02-28", "0 0 0 0 0 0 1 0 0 0\n")
            .estatistica("2009-03-01", "0 0 0 0 0 0 2 0 0 0\n");
        EXPECT_EQ(
            r.dias("2009-03-01 00:00:00", "2009-03-01 23:59:59"),
            tz == "LOC-3"s ? "01 00:00:00: 1 0 0 0 0 0 0 0\n" : "01 00:00:00: 2 0 0 0 0 0 0 0\n");
    }
}

TEST(Relatorios, diasDeUsuarios) {
    char locais[] = "aqui.test;la.test";
    Relato r;
    r.p.add_domain(locais);
    r.estatistica(d15,
                  "1 2 0 0 0 0 0 0 0 0\n[1]\n"
                  "ana 1 10 2 20 3 4 5 6\n"
                  "ana@aqui.test 1 1 1 1 1 1 1 1\n"
                  "ana@fora.test 7 7 7 7 7 7 7 7\n"
                  "Ana 7 7 7 7 7 7 7 7\n"
                  "ana@aqui.test@la.test 7 7 7 7 7 7 7 7\n"
                  "[2]\n\n   \n  ana\t1 0 0 0 0 0 0 -1\n"
                  "rui@la.test 1 2 3\n"
                  "bia@la.test 1 1 1 1 1 1 1 1\n")
        .estatistica(d17, "1 2 0 0 0 0 0 0 0 0\n[1]\nana 1 x 5 5 5 5 5 5\nana 0 0 0 0 0 0 0 0\n")
        .estatistica(d18, "1 2 0 0 0 0 0 0 0 0\n");
    // Both forms are summed; spam 4 and error 5 of the file change places. The first of two equal
    // requests takes the lines; one with a domain is found only by his whole address.
    EXPECT_EQ(r.dias_de({"ana", "rui", "ana", "bia@la.test", "eva", "ana@fora.test"}, inicio,
                        d18 + " 00:00:00"),
              "ana:\n15 00:00:00: 3 3 21 11 4 6 5 6\n17 00:00:00: 0 1 0 0 0 0 0 0\n"
              "rui:\n15 00:00:00: 3 1 0 2 0 0 0 0\n"
              "ana:\n"
              "bia@la.test:\n15 00:00:00: 1 1 1 1 1 1 1 1\n"
              "eva:\n"
              "ana@fora.test:\n15 00:00:00: 7 7 7 7 7 7 7 7\n");
    // Rows are added to those of an earlier report.
    LogResult duas;
    pede(duas, "rui");
    for (int i = 0; i < 2; ++i)
        r.p.get_msgs_per_day(hora(inicio), hora(fim), nullptr, &duas.msgs_user_day);
    EXPECT_EQ(texto(duas.msgs_user_day),
              "rui:\n15 00:00:00: 3 1 0 2 0 0 0 0\n15 00:00:00: 3 1 0 2 0 0 0 0\n");
}

TEST(Relatorios, horasDeUsuario) {
    char locais[] = "aqui.test";
    Relato r;
    r.p.add_domain(locais);
    r.estatistica(d15,
                  "1 2 0 0 0 0 0 0 0 0\nana 9 9 9 9 9 9 9 9\n"  // before the first bracket
                  "[60]\nrui 1 1 1 1 1 1 1 1\nana@aqui.test 1 10 2 20 3 4 5 6\n"
                  "ana 9 9 9 9 9 9 9 9\n"  // only the first line of a period
                  "[120]\nana@fora.test 9 9 9 9 9 9 9 9\n"
                  "[180]\nana 0 0 1 -1\n");
    std::string muitos = "1 2 0 0 0 0 0 0 0 0\n";
    for (int i = 1; i <= 26; ++i)
        muitos += "[" + std::to_string(i) + "]\n" + (i >= 24 ? "ana 1 0 0 0 0 0 0 0\n" : "");
    r.estatistica(d17, muitos);
    EXPECT_EQ(r.horas_de("ana", inicio, fim),
              "0h 01 00:01:00: 2 1 20 10 3 5 4 6\n"
              "1h 01 00:02:00: 0 0 0 0 0 0 0 0\n"
              "2h 01 00:03:00: 1 0 4294967295 0 0 0 0 0\n24 rows\n");
    EXPECT_NE(r.horas_de("ana@fora.test", inicio, fim).find("\n1h 01 00:02:00: 9 9 9 9"),
              std::string::npos);
    // A whole address is not found when its domain is local: such lines go by the name.
    EXPECT_EQ(r.horas_de("ana@aqui.test", inicio, fim).find("0h 01 00:01:00: 2 1"), 0u);
    const std::string doisDias = r.horas_de("ana", inicio, d17 + " 00:00:00");
    EXPECT_EQ(doisDias.substr(doisDias.rfind("46h")),
              "46h 01 00:00:23: 0 0 0 0 0 0 0 0\n47h 01 00:00:24: 0 1 0 0 0 0 0 0\n48 rows\n");
    r.traco();
    EXPECT_EQ(r.p.get_msgs_per_hour_per_user(2, 1, "ana", nullptr), 0);
    EXPECT_EQ(r.p.get_msgs_per_hour_per_user(1, 2, nullptr, nullptr), 0);
    const std::string recusa =
        "LogMailFileParser::get_msgs_per_day : Data inicial > data final\r\n";
    EXPECT_EQ(r.traco(), recusa + recusa);
}

// --- Replay -----------------------------------------------------------------------------------

// Which lines of which files a report sees: a message is listed for every submission seen, the
// last one first.
TEST(Relatorios, linhasQueOReplayVe) {
    const std::string h = T(d16 + " 00:00:00");
    // Longer than a line may be: what follows is the next line, here one of its own.
    const std::string longa = "@" + h + std::string(2047 - 8, 'x') + h + " 1 1 LONGA INTERNO ana 1";
    const struct {
        std::string l15, l16, l17, de, ate, vistas;
    } casos[] = {
        // Both bounds belong to the range.
        {"9:59:59 A|10 B|11 C|11:00:01 D", "", "", "15 10", "15 11", "CB"},
        // Nothing is skipped once a line was in range; the first one after the end stops its file.
        {"9 A|10 B|9 C|@0 1 1 D I a 1|@x 1 1 E I a 1", "", "", "15 9:30", "15 11", "EDCB"},
        {"10 A|12 B|10:30 C", "", "", "15 9:30", "15 11", "A"},
        // After such a stop the next file is searched again for the start.
        {"10 A|@ffffffff 2 4 X", "@1 1 1 B I a 1|10 C|@1 1 1 D I a 1", "", "15 9", "16 11", "DCA"},
        // A file that ends in range hands on to the whole next one, also over a missing day.
        {"10 A", "", "@1 1 1 B I a 1|10 C", "15 9", "17 11", "CBA"},
        // A file without a line in range leaves the search on.
        {"8 A", "@1 1 1 B I a 1|10 C", "", "15 9", "17 11", "C"},
        // Blanks count: here the third word is "1" and the fourth too.
        {"@0X49BCD1A0 1 1 A I a 1|@ 49bcd1a0 1 1 B I a 1|@|@49bcd1a0  1 1 C I a 1", "", "", "15 0",
         "15 23", "11A"},
        // Status is a decimal number, its low 32 bits.
        {"@49bcd1a0 1 01 A I a 1|@1 1 1x B I a 1|@1 1 4294967297 C I a 1|@1 1 19 D I a 1|"
         "@1 1 -1 E I a 1|@1 1 x F I a 1|@1 1 65537 G I a 1",
         "", "", "15 0", "15 23", "CBA"},
        {"", longa, "", "15 0", "17 0", "LONGA"},
    };
    const auto instante = [](std::string t) {
        while (t.size() < 9) t += ":00";
        return hora("2009-03-" + t);
    };
    for (const auto& c : casos) {
        Relato r;
        const std::pair<std::string, const std::string&> dias[] = {
            {d15, c.l15}, {d16, c.l16}, {d17, c.l17}};
        for (const auto& [dia, linhas] : dias)
            if (!linhas.empty()) r.compacto(dia, linhas);
        LogResult res;
        r.p.get_user_msgs(nullptr, nullptr, nullptr, 0, 0, instante(c.de), instante(c.ate),
                          &res.user_msgs);
        std::string vistas;
        for (const UserMsgs* u = res.user_msgs.first(); u; u = u->next) vistas += u->msg_id;
        EXPECT_EQ(vistas, c.vistas) << c.l15.substr(0, 60);
    }
}

// --- Hours ------------------------------------------------------------------------------------

TEST(Relatorios, horas) {
    const std::string a = "9 1 1 A INTERNO ana 100", p = "10:30 1 1 B POP eva 50";
    const struct {
        std::string linhas;
        const char* quer;
    } casos[] = {
        // Counted in the hour of its end; an hour's time goes to the one being left.
        {a + "|10:01 2 4 A|" + p + "|11:00:05 2 4 B",
         "9h 15 10:01:00: 0 0 0 0 0 0 0 0\n10h 15 11:00:05: 1 0 100 0 0 0 0 0\n11h -: 0 1 0 50 0 0 "
         "0 0\n"},
        // Spam and virus count twice.
        {a + "|9 2 18 A|9 2 4 A|" + p + "|10:30 2 15 B|10:30 2 4 B",
         "9h 15 10:30:00: 1 0 100 0 0 2 0 0\n10h -: 0 1 0 50 2 0 0 0\n"},
        {a + "|9 2 18 A|9 2 15 A|9 2 4 A", "9h -: 1 0 100 0 1 2 0 0\n"},
        // An error only once, at the end, and nothing else of that message.
        {a + "|9 2 18 A|9 2 9 A x|9 2 5 A y|10 2 4 A",
         "9h 15 10:00:00: 0 0 0 0 0 1 0 0\n10h -: 0 0 0 0 0 0 1 0\n"},
        // A refusal for size is no error, nor is a retry.
        {a + "|9 2 13 A|9 2 17 A x|9 2 4 A|9 1 4 A", "9h -: 2 0 200 0 0 0 0 0\n"},
        // Not submitted in range: errors and virus make a record, an end does not.
        {"9 2 4 A|9 2 9 B x|9 2 4 B|9 2 15 C|9 2 4 C", "9h -: 0 1 0 0 2 0 1 0\n"},
        {"9 2 9 A x|" + a + "|9 2 4 A", "9h -: 1 0 100 0 0 0 0 0\n"},
        {"9 1 1 A INTERNO ana|9 2 4 A|9 1 1 B SMTPAUTHI ana 7|9 1 4 B|9 1 1 C SMTP a 9|9 1 4 C",
         "9h -: 1 1 7 9 0 0 0 0\n"},
        {"9 1 1|9 2 4|9 2 15|9 2 18|9 2 9|9 2 7|9", ""},
        {"", ""},
    };
    for (const auto& c : casos) {
        Relato r;
        r.compacto(d15, c.linhas);
        EXPECT_EQ(r.horas(inicio, fim), c.quer + "24 rows\n"s) << c.linhas;
    }
    for (const int status : {5, 6, 8, 9, 10, 11, 12, 14}) {
        Relato r;
        r.compacto(d15, a + "|9 2 " + std::to_string(status) + " A|9 2 4 A");
        EXPECT_EQ(r.horas(inicio, fim), "9h -: 0 0 0 0 0 0 1 0\n24 rows\n") << status;
    }
}

TEST(Relatorios, horasDeVariosDias) {
    Relato r("LOC3");
    r.compacto(d15, "9:59 1 1 A INTERNO ana 1|10 2 4 A")
        .compacto(d16, "9 1 1 B INTERNO ana 2|9:10 2 4 B")
        .compacto(d17, "0:10 1 1 C INTERNO ana 4|0:10 2 4 C|9 2 4 A");
    // The first line of a following file comes from hour 0; a range's first line from its own.
    EXPECT_EQ(r.horas(inicio, d17 + " 23:00:00"),
              "0h 17 09:00:00: 1 0 4 0 0 0 0 0\n9h 15 10:00:00: 2 0 3 0 0 0 0 0\n"
              "10h -: 1 0 1 0 0 0 0 0\n24 rows\n");
    EXPECT_EQ(r.horas(d15 + " 09:59:30", fim).substr(0, 3), "10h");
    // One that an earlier report met is known to a later one.
    EXPECT_EQ(r.horas(d16 + " 09:05:00", d16 + " 23:00:00"), "9h -: 1 0 2 0 0 0 0 0\n24 rows\n");
}

// --- Trace ------------------------------------------------------------------------------------

const std::string data = "15/03/2009 10:00:00 - ";

// "+" stands for the submission of A at 9, and for the message's line that it makes up to its
// flags.
TEST(Relatorios, trace) {
    const std::string r200(200, 'r');
    const std::string corte = data + "A conex\xE3o foi encerrada no meio da transmiss\xE3o\n";
    const std::string grande = data + "A mensagem foi rejeitada (muito grande).\n";
    const std::string destino = " Erro contactando o dom\xEDnio de destino.\n";
    const std::string recusado = " E Destinat\xE1rio r inv\xE1lido.\n";
    const struct {
        std::string linhas, quer;
    } casos[] = {
        {"+|10 2 2 A rui@y|10 1 2 A bia|11 2 4 A|12 2 4 B",
         "A ana@x 100 15 09:00:00 15 11:00:00 I \nrui@y 15 10:00:00 Mensagem entregue.\nbia 15 "
         "10:00:00 Mensagem entregue.\n"},
        // Lines of others, and events that a trace does not know.
        {"+|10 1 1 a POP b 1|10 2 2 B x|10 2 9 AA x|10 2 10 B x|10 2 11 B|10 2 13 B|10 2 8 B r|10 "
         "2 5 B y|10 2 15 B",
         "+ \n"},
        {"+|10 2 12 A mx|10 2 14 A y|10 2 6 A y|10 2 17 A x|10 2 18 A|10 2 7 A", "+ \n"},
        {"+|10 1 1|10 2 2 A|10 2 9 A|10 2 10|10 2 4|10 2 15", "+ \n"},
        // Submitted again with four words: only time and user type change.
        {"+|11 1 1 A", "A ana@x 100 15 11:00:00 -  \n"},
        // Without a submission the rest is told, but the id is not taken; a virus gives it.
        {"10 2 2 A r|10 2 4 A", "0 - 0 - 15 10:00:00  \nr 15 10:00:00 Mensagem entregue.\n"},
        {"10 2 15 A", "A - 0 - - V \n"},
        // Refused twice, then taken: the first entry is left without a text.
        {"+|10 2 9 A r|10 2 9 A r|11 2 2 A r", "+ \nr 15 11:00:00 \nr 15 10:00:00" + recusado},
        {"+|10 2 9 A r|11 2 4 B", "+E \nr 15 10:00:00" + recusado},
        {"+|10 2 2 A " + r200 + "|10 2 2 A r" + r200 + "|10 2 9 A r" + r200 + "|10 2 4 B",
         "+ \n" + r200 + " 15 10:00:00 Mensagem entregue.\n"},
        // A connection error counts if it still pends at the end of any message.
        {"+|10 2 5 A y.test", "+" + destino},
        {"+|10 2 5 A y.test|10 2 4 B", "+E" + destino},
        {"+|10 2 5 A y.test z", "+ Erro contactando o dom\xEDnio y.test.\n"},
        {"+|10 2 5 A|10 2 4 B", "+" + destino},
        {"+|10 2 5 A y.test|10 2 2 B y.test|10 2 4 B", "+" + destino},
        {"+|10 2 5 A y.test|10 2 2 B r@y.test|10 2 4 B", "+E" + destino},
        // Dated sentences follow each other; a final error replaces them.
        {"+|10 2 11 A|10 2 13 A x", "+E " + corte + grande + "\n"},
        {"+|10 2 8 A mx|10 2 8 A", "+E " + data +
                                       "Mensagem rejeitada pelo relay mx remetente invalido.\n" +
                                       data + "Mensagem rejeitada pelo relay.\n\n"},
        {"+|10 2 11 A|10 2 10 A 550 nao  existe", "+EF 550 nao  existe \n"},
        {"+|10 2 13 A|10 2 10 A", "+EF " + grande + "\n"},
        // Lines of three words hit whatever message is traced.
        {"10 2 13|10 2 8|10 2 11|10 2 5", "0 - 0 - - E" + destino},
    };
    for (const auto& c : casos) {
        Relato r;
        std::string linhas = c.linhas, quer = c.quer;
        if (linhas[0] == '+') linhas.replace(0, 1, "9 1 1 A INTERNO ana@x 100");
        if (quer[0] == '+') quer.replace(0, 1, "A ana@x 100 15 09:00:00 - I");
        r.compacto(d15, linhas);
        EXPECT_EQ(r.trace("A", inicio, fim), quer) << linhas;
    }
}

// A sentence is told only while it finds its room in the 1024 bytes; the flag is set in any case.
TEST(Relatorios, espacoDoTextoDoTrace) {
    const struct {
        std::string linha;
        std::size_t precisa;  // told when the text there leaves more room than this
        std::size_t escreve;
    } casos[] = {
        {" 2 11 A", 47 + 50, 22 + 47},
        {" 2 13 A", 41, 22 + 41},
        {" 2 8 A " + std::string(100, 'm'), 100 + 80, 22 + 51 + 100},
        {" 2 8 A", 0, 22 + 31},
    };
    for (const auto& c : casos)
        for (const std::size_t sobra : {c.precisa + 1, std::max<std::size_t>(c.precisa, 1)}) {
            const std::size_t ha = 1024 - sobra;
            Relato r;
            r.compacto(d15, "9 2 10 A " + std::string(ha - 1, 'z') + "|10" + c.linha);
            Msg m("0", 0);
            r.p.msg_trace("A", hora(inicio), hora(fim), &m);
            EXPECT_EQ(std::strlen(m.str_error),
                      sobra > c.precisa ? std::min<std::size_t>(ha + c.escreve, 1023) : ha)
                << c.linha.substr(0, 8);
            EXPECT_TRUE(m.error);
        }
    // The final error goes on until its words have 1024 letters, and is then cut.
    Relato r;
    const std::string ab = std::string(1000, 'a') + " " + std::string(10, 'b') + " ";
    r.compacto(
        d15, "10 2 10 A " + ab + std::string(14, 'c') + " d|11 2 10 B " + ab + "c d e f g h i j k");
    EXPECT_EQ(r.trace("A", inicio, fim), "0 - 0 - - F " + ab + std::string(11, 'c') + "\n");
    EXPECT_EQ(r.trace("B", inicio, fim), "0 - 0 - - F " + ab + "c d e f g h\n");
}

// --- One user's messages ----------------------------------------------------------------------

TEST(Relatorios, mensagensFiltros) {
    const std::string A = "A S 1023 15 09:00:00 Ana.Silva@aqui I \n",
                      B = "B S 1024 15 11:00:00 bia@aqui I \n",
                      C = "C S 1025 15 13:00:00 eva@fora  \n",
                      Bn = "B N 1024 15 12:00:00 bia@aqui I \n",
                      Cn = "C N 1025 15 14:00:00 eva@fora  \n", Dn = "D N 0 15 15:00:00 -  \n";
    const struct {
        const char *para, *de, *id;
        int min, max;
        std::string quer;
    } casos[] = {
        {nullptr, nullptr, nullptr, 0, 0, C + B + A},
        {nullptr, nullptr, nullptr, 1, 0, C + B},
        {nullptr, nullptr, nullptr, 0, 1, B + A},
        {nullptr, nullptr, nullptr, 1, 1, B},
        {nullptr, nullptr, nullptr, -1, 0, ""},
        {nullptr, nullptr, nullptr, 0, -1, C + B + A},
        {nullptr, nullptr, nullptr, 4194304, 0, ""},  // 4 GiB: beyond 32 bits of bytes
        {nullptr, "ana", nullptr, 0, 0, A},
        {nullptr, "x,EVA@,ana.silva", nullptr, 0, 0, C + A},
        {nullptr, "ana.silva@aquix", nullptr, 0, 0, ""},
        {nullptr, "x,,y", nullptr, 0, 0, C + B + A},  // an empty name begins everybody's
        {nullptr, "", nullptr, 0, 0, ""},
        {nullptr, "   ", nullptr, 0, 0, ""},
        {"ana", nullptr, nullptr, 0, 0, Dn + Cn + Bn},
        {"ana@", nullptr, nullptr, 0, 0, Dn + Bn},
        {"ana", nullptr, nullptr, 0, 1, Dn + Bn},     // of D no size is known
        {"ana", "bia", nullptr, 0, 0, Dn + Cn + Bn},  // sent and received: received
        {"rui", "ana", nullptr, 0, 0, "A N 1023 15 10:00:00 Ana.Silva@aqui I \n"},
        {nullptr, nullptr, "C", 0, 0, Cn},
        {nullptr, "ana", "C", 0, 0, Cn},  // one id is shown whoever sent it
        {nullptr, nullptr, "C", 0, 1, ""},
        {nullptr, nullptr, "c", 0, 0, ""},
        {"ana", nullptr, "B", 0, 0, Dn + Bn},  // the id narrows only what is known
    };
    for (const auto& c : casos) {
        Relato r;
        char locais[] = "aqui";
        r.p.add_domain(locais);
        r.compacto(
            d15,
            "9 1 1 A INTERNO Ana.Silva@aqui 1023|10 1 2 A rui@aqui|11 1 1 B INTERNO bia@aqui "
            "1024|12 2 2 B ANA@fora|13 1 1 C POP eva@fora 1025|14 1 2 C ana|15 1 2 D ana@aqui");
        EXPECT_EQ(r.mensagens(c.para, c.de, c.id, c.min, c.max, inicio, fim), c.quer)
            << (c.para ? c.para : "-") << " " << (c.de ? c.de : "-") << " " << (c.id ? c.id : "-");
    }
    // A sender of a local domain is also looked up without it; of another domain, not.
    Relato r;
    char locais[] = "a.b;c";
    r.p.add_domain(locais);
    r.compacto(d15, "9 1 1 A INTERNO ana@c 1|9 1 1 B INTERNO ana@d 1|9 1 1 C INTERNO ana@c@d 1");
    EXPECT_EQ(r.mensagens(nullptr, "ana", nullptr, 0, 0, inicio, fim).substr(0, 1), "C");
    EXPECT_EQ(r.mensagens(nullptr, "ana@c@", nullptr, 0, 0, inicio, fim).substr(0, 1), "C");
}

// "+" as in the trace.
TEST(Relatorios, mensagensEventos) {
    const std::string longo = "0123456789012345678901234", cortado = longo.substr(0, 23);
    const struct {
        std::string linhas, quer;
    } casos[] = {
        {"9 1 1 A INTERNO ana", "A S 0 15 09:00:00 ana I \n"},
        {"9 1 1 A INTERNO|9 2 2 A|9 2 4|9 2 15|9 2 9", ""},
        {"+|10 2 15 A|10 2 4 A", "+V \n"},
        {"+|10 2 5 A y", "+E Erro conectando y\n\n"},
        {"+|10 2 5 A|10 2 9 A|10 2 10 A|10 2 11 A|10 2 12 A|10 2 12 A mx", "+ \n"},
        {"+|10 2 6 A y|10 2 14 A y|10 2 18 A|10 2 7 A|10 2 4 A", "+ \n"},
        {"+|10 2 8 A|10 2 10 A 550", "+E Erro no sender!\n"},
        {"+|10 2 9 A r", "+E Destinat\xE1rio inv\xE1lido.\n"},
        {"+|10 2 10 A 550", "+E \n"},
        {"+|10 2 11 A x", "+E Erro na fase data!\n"},
        {"+|10 2 13 A", "+E A mensagem foi rejeitada por ser muito grande.\n"},
        {"+|10 2 17 A", "+E Remetente temporiariamente indispon\xEDvel.\n"},
        // Submitted again: a row more, which takes the events.
        {"+|10 1 1 A POP eva 7|10 2 8 A", "A S 7 15 10:00:00 eva E Erro no sender!\n+ \n"},
        // Ids are kept cut and looked up whole, so a longer one is never found again.
        {"9 1 1 " + longo + " INTERNO a 1|9 2 8 " + longo, cortado + " S 1 15 09:00:00 a I \n"},
    };
    const auto troca = [](std::string s, const char* por) {
        const std::size_t mais = s.find('+');
        return mais == std::string::npos ? s : s.replace(mais, 1, por);
    };
    for (const auto& c : casos) {
        Relato r;
        r.compacto(d15, troca(c.linhas, "9 1 1 A INTERNO ana 100"));
        EXPECT_EQ(r.mensagens(nullptr, nullptr, nullptr, 0, 0, inicio, fim),
                  troca(c.quer, "A S 100 15 09:00:00 ana I"))
            << c.linhas;
    }
    // What a received message takes over from the events before it: an end leaves it failed unless
    // the sender was refused. Each delivery of a cut id is a row.
    Relato r;
    r.compacto(d15,
               "9 1 1 A INTERNO ana 100|9 2 15 A|10 2 4 A|11 2 2 A rui|12 2 8 B|12 2 4 B|13 2 2 B "
               "rui|14 2 2 " +
                   longo + " rui|15 2 2 " + longo + " rui|16 2 12 C|17 2 2 C rui");
    EXPECT_EQ(r.mensagens("rui", nullptr, nullptr, 0, 0, inicio, fim),
              "C N 0 15 17:00:00 - E \n" + cortado + " N 0 15 15:00:00 -  \n" + cortado +
                  " N 0 15 14:00:00 -  \nB N 0 15 13:00:00 -  \nA N 100 15 11:00:00 ana IVE \n");
}

TEST(Relatorios, recusas) {
    Relato r;
    LogResult res;
    Msg m("0", 0);
    params nada{};
    InputFiles vazia{};
    auto& p = r.p;
    const struct {
        int respostas, quer;
        const char* traco;
    } casos[] = {
        {p.get_user_msgs(nullptr, nullptr, nullptr, 0, 0, 2, 1, &res.user_msgs), 0,
         "get_user_msgs : Params inv\xE1lidos."},
        {p.get_user_msgs(nullptr, nullptr, nullptr, 0, 0, 1, 2, nullptr), 0,
         "get_user_msgs : Params inv\xE1lidos."},
        {p.msg_trace(nullptr, 1, 2, &m), 0, "msg_trace : Params. inv\xE1lidos."},
        {p.msg_trace("A", 1, 2, nullptr), 0, "msg_trace : Params. inv\xE1lidos."},
        {p.msg_trace("A", 2, 1, &m), 0, "msg_trace : Params. inv\xE1lidos."},
        {p.get_msgs_per_hour(2, 1, &res.msgs_hour), 0, "get_msgs_per_hour : Params inv\xE1lidos."},
        {p.get_msgs_per_hour(1, 2, nullptr), 0, "get_msgs_per_hour : Params inv\xE1lidos."},
        {p.parse_compact_files(nullptr, 1, 2, MSGTRACE, &nada), 0,
         "parse_compact_file : Params. incorretos."},
        {p.parse_compact_files(&vazia, 1, 2, MSGTRACE, nullptr), 0,
         "parse_compact_file : Params. incorretos."},
        {p.parse_compact_files(&vazia, 1, 2, MSGTRACE, &nada), 1, nullptr},
        {p.parse_consolid_files(nullptr, 1, 2, &res.msgs_day, nullptr, nullptr, nullptr), 0,
         "parse_consolid_files : Params. inv\xE1lidos."},
        {p.parse_consolid_files(&vazia, 2, 1, &res.msgs_day, nullptr, nullptr, nullptr), 0,
         "parse_consolid_files : Params. inv\xE1lidos."},
    };
    std::string quer;
    for (const auto& c : casos) {
        EXPECT_EQ(c.respostas, c.quer);
        if (c.traco) quer += std::string("LogMailFileParser::") + c.traco + "\r\n";
    }
    EXPECT_EQ(r.traco(), quer);
}

}  // namespace
