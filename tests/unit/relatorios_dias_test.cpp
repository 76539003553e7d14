// The reports over statistics files: days, days of users, hours of a user.
#include <gtest/gtest.h>

#include "tests/unit/apoio/relato.h"

namespace {

using namespace std::string_literals;

TEST(Relatorios, totaisPorDia) {
    Relato r;
    r.estatistica("15", "11 12 1 2 3 4 5 6 7 8\n[11]\nana 9 9 9 9 9 9 9 9\n")
        .estatistica("17", "11 12 1 2 3 4 5 -6 7 8")
        .estatistica("18", "11 12 1 2 3 4 5 6 7\n8\n")  // the tenth number is on another line
        .estatistica("19", "")
        .estatistica("20", "11 12 x 2 3 4 5 6 7 8\n")
        .estatistica("21", "4294967297 0 0 0 0 0 0 0 0 1")
        .estatistica("22", "11 12 1 2 3 4 5 6 7\0 8\n"s)  // a NUL ends the line
        .estatistica("23", "\n11 12 1 2 3 4 5 6 7 8\n");
    EXPECT_EQ(r.dias("15", "23"),
              "15 00:00:00: 5 7 6 8 2 1 3 4/17 00:00:00: 5 7 4294967290 8 2 1 3 4/"
              "21 00:00:00: 0 0 0 1 0 0 0 0/");
    EXPECT_EQ(r.traco(),
              "LogMailFileParser::parse_consolid_files : Erro ao abrir "
              "@/DAT/rels_03-09/mail_stat_16.txt\r\n");
    // A row's time is the start plus whole days.
    EXPECT_EQ(r.dias("15 17:30", "17 17:29:59"), "15 17:30:00: 5 7 6 8 2 1 3 4/");
    EXPECT_EQ(r.dias("15", "15"), "");
    EXPECT_EQ(r.dias("15 12", "15 12:00:01"), "15 12:00:00: 5 7 6 8 2 1 3 4/");
}

// East of UTC the day file that is read at a local midnight is that of the day before.
TEST(Relatorios, arquivosPorUtc) {
    for (const auto& [zona, dia] : {std::pair{"LOC-3", "1"}, {"LOC3", "2"}, {"UTC0", "2"}}) {
        Relato r(zona);
        r.estatistica("2009-02-28", "0 0 0 0 0 0 1 0 0 0\n")
            .estatistica("01", "0 0 0 0 0 0 2 0 0 0\n");
        EXPECT_EQ(r.dias("01", "01 23:59:59"), "01 00:00:00: "s + dia + " 0 0 0 0 0 0 0/");
    }
}

// A month without a folder is not looked into again; the same month of another year is.
TEST(Relatorios, mesesQueFaltam) {
    Relato r;
    for (const char* m : {"09-04", "09-05", "09-06", "09-07", "09-08", "09-09", "09-10", "09-11",
                          "09-12", "10-01", "10-02"})
        r.estatistica("20"s + m + "-20", "");
    r.estatistica("2010-03-20", "0 0 0 0 0 0 7 0 0 0\n");
    EXPECT_EQ(r.dias("2009-03-20", "2010-03-20 12"), "20 00:00:00: 7 0 0 0 0 0 0 0/");
}

// Both forms of a local name are summed; spam 4 and error 5 of the file change places. The first of
// two equal requests takes the lines. A blank line is nobody's, not even his who has no name.
TEST(Relatorios, diasDeUsuarios) {
    char locais[] = "aqui;la";
    Relato r;
    r.p.add_domain(locais);
    r.estatistica("15", R"(1 2 0 0 0 0 0 0 0 0
[1]
ana 1 10 2 20 3 4 5 6
ana@aqui 1 1 1 1 1 1 1 1
ana@fora 7 7 7 7 7 7 7 7
Ana 7 7 7 7 7 7 7 7
ana@aqui@la 7 7 7 7 7 7 7 7
[2]


  ana	1 0 0 0 0 0 0 -1
rui@la 1 2 3
bia@la 1 1 1 1 1 1 1 1
)")
        .estatistica("17", "1 2 0 0 0 0 0 0 0 0\n[1]\nana 1 x 5 5 5 5 5 5\nana 0 0 0 0 0 0 0 0\n");
    const std::string rui = "rui:/15 00:00:00: 3 1 0 2 0 0 0 0/";
    EXPECT_EQ(r.dias_de({"ana", "rui", "ana", "bia@la", "eva", "", "ana@fora"}, "15", "17 12"),
              "ana:/15 00:00:00: 3 3 21 11 4 6 5 6/17 00:00:00: 0 1 0 0 0 0 0 0/" + rui +
                  "ana:/bia@la:/15 00:00:00: 1 1 1 1 1 1 1 1/eva:/:/"
                  "ana@fora:/15 00:00:00: 7 7 7 7 7 7 7 7/");
    // Rows are added to those of an earlier report.
    LogResult duas;
    pede(duas, "rui");
    for (int i = 0; i < 2; ++i)
        r.p.get_msgs_per_day(hora("15"), hora(r.fim), nullptr, &duas.msgs_user_day);
    EXPECT_EQ(texto(duas.msgs_user_day), rui + rui.substr(5));
}

// Nothing counts before the first bracket, and only the first line of a period; a period too many
// is read by nobody.
TEST(Relatorios, horasDeUsuario) {
    char locais[] = "aqui";
    Relato r;
    r.p.add_domain(locais);
    r.estatistica("15", R"(1 2 0 0 0 0 0 0 0 0
ana 9 9 9 9 9 9 9 9
[60]

rui 1 1 1 1 1 1 1 1
ana@aqui 1 10 2 20 3 4 5 6
ana 9 9 9 9 9 9 9 9
[120]
ana@fora 9 9 9 9 9 9 9 9
[180]
ana 0 0 1 -1
)");
    std::string muitos = "1 2 0 0 0 0 0 0 0 0\n";
    for (int i = 1; i <= 26; ++i)
        muitos += "[" + std::to_string(i) + "]\n" + (i >= 24 ? "ana 1 0 0 0 0 0 0 0\n" : "");
    r.estatistica("17", muitos);
    const std::string ana = "0h 01 00:01:00: 2 1 20 10 3 5 4 6/1h 01 00:02:00: ";
    EXPECT_EQ(r.horas_de("ana"),
              ana + "0 0 0 0 0 0 0 0/2h 01 00:03:00: 1 0 4294967295 0 0 0 0 0/24");
    EXPECT_TRUE(r.horas_de("ana@aqui").starts_with("0h 01 00:01:00: 2 1 20"));
    EXPECT_NE(r.horas_de("ana@fora").find("/1h 01 00:02:00: 9 9"), std::string::npos);
    EXPECT_TRUE(r.horas_de("").starts_with("0h 01 00:01:00: 0 0 0 0 0 0 0 0/"));
    EXPECT_TRUE(
        r.horas_de("ana", "15", "17")
            .ends_with("/46h 01 00:00:23: 0 0 0 0 0 0 0 0/47h 01 00:00:24: 0 1 0 0 0 0 0 0/48"));
}

}  // namespace
