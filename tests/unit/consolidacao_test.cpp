// Whole consolidations: days, runs, carried messages, clocks, inputs that fail.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>

#include "tests/unit/apoio/limite.h"
#include "tests/unit/apoio/rele.h"

namespace {

namespace fs = std::filesystem;

// What a day counts that holds one message of `mensagem`, or none.
const std::string uma = "0 0 0 0 1 100 0 0", nenhuma = "0 0 0 0 0 0 0 0";

// All day files, by name.
std::map<std::string, std::string> dias(const Rele& r) {
    std::map<std::string, std::string> tudo;
    for (const auto& e : fs::recursive_directory_iterator(r.arvore.path("DAT"))) {
        const std::string rel = fs::relative(e.path(), r.arvore.path());
        if (e.is_regular_file()) tudo[rel] = r.arvore.read(rel);
    }
    return tudo;
}

bool contem(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

TEST(Consolidacao, umDiaPorInteiro) {
    Rele r;
    r.mensagens({"15 09:30 A", "16 08 B"});
    EXPECT_TRUE(r.consolida("16 12"));
    const std::string t = T("15 09:30");
    EXPECT_EQ(r.compacto("15"), t + " 1 1 A INTERNO ana 100\n" + t + " 2 7 A\n" + t +
                                    " 2 2 A rui@fora.test\n" + t + " 2 4 A\n");
    std::string quer = std::to_string(hora("15 09")) + " " + std::to_string(hora("15 09:59:59")) +
                       " " + uma + "\n";
    for (int p = 0; p < 24; ++p) {
        quer += "[" + std::to_string(hora("15") + p * 3600) + "]\n";
        if (p == 9) quer += "rui@fora.test 0 0 1 100 0 0 0 0\nana 1 100 0 0 0 0 0 0\n";
    }
    EXPECT_EQ(r.estatistica("15"), quer);
    EXPECT_EQ(r.ultimo(), "1 Mon Mar 16 00:00:00 2009\n");
    EXPECT_EQ(dias(r).size(), 2u);
    EXPECT_EQ(r.traco(),
              "getLastConsolid(@/last) ERRO\nConsolidando dia Sun Mar 15\n"
              "Abrindo entrada @/LOGS/MAIL_DISPATCHER.LOG\n"
              "Arquivo posicionado em Sun Mar 15 09:30:00 2009: 07 MAILQ SUBMIT Msg A de INTERNO "
              "remetente ana com 100 bytes\n\n");
    // The same day again, up to its last second's end: nothing to do. The next day: only what is
    // new.
    for (const char* cedo : {"16 23", "17"}) {
        r.consolida(cedo);
        EXPECT_EQ(r.traco(), "getLastConsolid(@/last) OK\nrelatorio de hoje ja foi gerado.\n\n");
    }
    const auto antes = dias(r);
    r.consolida("17 00:00:01");
    for (const auto& [nome, texto] : antes) EXPECT_EQ(r.arvore.read(nome), texto) << nome;
    EXPECT_EQ(r.totais("16"), uma);
}

// Within one run, and between two. Then only the last-consolidation file carries messages, and its
// reader is not the mirror of its writer: the sender is lost, the last attempt becomes the end.
TEST(Consolidacao, mensagemAtravessaAMeiaNoite) {
    for (const bool duas_vezes : {false, true}) {
        Rele r;
        r.linha("15 23:59", "MAILQ SUBMIT Msg A de INTERNO remetente ana com 100 bytes")
            .linha("15 23:59:10", "MAILSMTP DELIVER Msg A")
            .linha("15 23:59:20", "MAILQ SUBMIT Msg PARADA de INTERNO remetente ana com 5 bytes")
            .linha("15 23:59:30", "SPAMCATCHER TAGGED Msg S")
            .linha("16 00:01", "MAILSMTP OK Msg A para rui")
            .linha("16 00:01", "MAILSMTP END Msg A")
            .mensagem("17 10", "B");
        const auto t = [](const char* quando) { return std::to_string(hora(quando)); };
        const std::string parada = "\r\nPARADA 5 N N N S " + t("15 23:59:20") + " 0 ";
        const std::string s = "\r\nS 0 N S N N 0 0 (null)";
        if (duas_vezes) {
            r.consolida("16 12");
            EXPECT_EQ(r.ultimo(), "1 Mon Mar 16 00:00:00 2009\n" + s + parada +
                                      "ana\r\nA 100 N N N S " + t("15 23:59") + " " +
                                      t("15 23:59:10") + " ana");
        }
        r.consolida("17 12");
        EXPECT_EQ(r.totais("15"), nenhuma);
        EXPECT_EQ(r.totais("16"), uma);
        EXPECT_EQ(r.usuario("16", "ana"), duas_vezes ? "" : "0: 1 100 0 0 0 0 0 0;");
        // What had no attempt has no end either: it stays, and the order is that of the reader.
        EXPECT_EQ(r.ultimo(), "1 Tue Mar 17 00:00:00 2009\n" +
                                  (duas_vezes ? parada + "(null)" + s : s + parada + "ana"));
        // The count of references was zeroed at midnight, so the END took it below zero.
        EXPECT_EQ(contem(r.traco(), "Usu\xE1rio ana na lista.[ref = -1]\n"), !duas_vezes);
    }
}

// Words that are longer than the reader's fields go on as those of the next record; a flag is set
// by an S alone. Without records one empty message is read.
TEST(Consolidacao, mensagensDoPonto) {
    const std::string s = std::string(23, 's') + " 7 VB;";
    const struct {
        std::string registros, lidas;
    } casos[] = {
        {"", " 0 ;"},
        {"\r\n" + std::string(60, 'a') + " 5 X S X S 1 2 ana\r\nb 7 S X S X 1 2 " +
             std::string(600, 's'),
         std::string(23, 'a') + " 0 ;aaaaaaaaaaa 5 SI;b 7 VB;" + s + s},
    };
    for (const auto& c : casos) {
        Rele r;
        r.arvore.write("last", "1 Sun Mar 15 00:00:00 2009\n" + c.registros);
        LogMailFileParser p;
        EXPECT_EQ(p.getLastConsolid(r.arvore.path("last").c_str()), hora("15"));
        std::string lidas;
        for (const Msg* m = p.Lista_msg.last(); m; m = m->prev)
            lidas += m->id + (" " + std::to_string(m->size)) + " " + (m->virus ? "V" : "") +
                     (m->spam ? "S" : "") + (m->att_blocked ? "B" : "") +
                     (m->int_user ? "I;" : ";");
        EXPECT_EQ(lidas, c.lidas);
        EXPECT_NE(p.Lista_msg.first()->end_time, 0);
        p.consolidate(nullptr);
        EXPECT_EQ(p.Lista_msg.first(), nullptr);
    }
}

TEST(Consolidacao, diasSemLinhasExistem) {
    Rele r;
    r.mensagens({"15 10 A", "17 10 B"}).consolida("18 12");
    EXPECT_EQ(r.compacto("16"), "");
    EXPECT_EQ(r.totais("16"), nenhuma);
    EXPECT_TRUE(contem(r.traco(), "N\xE3o houve atividade em Mon Mar 16\n"));
    // The input ran out on the 17th: that day will be done again.
    EXPECT_EQ(r.ultimo(), "1 Tue Mar 17 00:00:00 2009\n");
    EXPECT_TRUE(contem(r.traco(), "Fim da lista de arquivos.\n"));
    r.mensagens({"17 20 C", "18 10 D"}).consolida("18 13");
    EXPECT_EQ(r.totais("17"), "0 0 0 0 2 200 0 0");
}

// The first forced run records the point, later ones leave it.
TEST(Consolidacao, forcada) {
    Rele r;
    r.mensagens({"15 10 A", "16 08 B"}).consolida("16 09", true);
    EXPECT_EQ(r.totais("16"), uma);
    const std::string ponto = r.ultimo();
    EXPECT_EQ(ponto, "1 Mon Mar 16 00:00:00 2009\n");
    r.mensagens({"16 10 C", "17 10 D"}).consolida("17 11", true);
    EXPECT_EQ(r.totais("16"), "0 0 0 0 2 200 0 0");
    EXPECT_EQ(r.totais("17"), uma);
    EXPECT_EQ(r.ultimo(), ponto);
}

TEST(Consolidacao, arquivosRotacionados) {
    Rele r;
    r.mensagens({"14 10 VELHA", "15 10 A"}).rotaciona("mail_dispatcher.log.2");  // any letter case
    r.mensagens({"15 12 B"}).rotaciona("MAIL_DISPATCHER.LOG.1");
    r.mensagens({"15 14 C", "16 00:00:01 D"});
    r.arvore.write("LOGS/MAIL_DISPATCHER.LOG.vazio", "");
    r.arvore.write("LOGS/OUTRO.LOG", r.arvore.read("LOGS/MAIL_DISPATCHER.LOG"));
    // A file that begins before the point is not read, whatever it holds later.
    r.arvore.write("last", "1 Sun Mar 15 00:00:00 2009\n");
    r.consolida("16 12");
    EXPECT_EQ(r.totais("15"), "0 0 0 0 2 200 0 0");
    // A first run reads all of them, the oldest first.
    fs::remove(r.arvore.path("last"));
    r.consolida("16 12");
    EXPECT_EQ(r.totais("14"), uma);
    EXPECT_EQ(r.totais("15"), "0 0 0 0 3 300 0 0");
}

// Of so many files only the first 999 are read.
TEST(Consolidacao, milArquivos) {
    Rele r;
    for (int i = 0; i < 1005; ++i) {
        char h[32];
        std::snprintf(h, sizeof h, "15 00:%02d:%02d", i / 60, i % 60);
        r.linha(h, "MAILQ OK Msg A para rui");
        r.rotaciona("MAIL_DISPATCHER.LOG." + std::to_string(i));
    }
    r.consolida("16 12");
    EXPECT_EQ(r.usuario("15", "rui"), "0: 0 0 999 0 0 0 0 0;");
}

// Nothing that stands in a log's place stops the run or makes it wait.
TEST(Consolidacao, entradasQueNaoSaoLogs) {
    Rele r;
    r.mensagens({"15 10 A", "16 10 B"});
    const std::string log = r.arvore.path("LOGS/MAIL_DISPATCHER.LOG");
    ASSERT_EQ(mkfifo((log + ".fifo").c_str(), 0600), 0);
    fs::create_directory(log + ".d");
    fs::create_symlink("MAIL_DISPATCHER.LOG.x", log + ".x");
    EXPECT_TRUE(r.consolida("16 12"));
    EXPECT_EQ(r.totais("15"), uma);
    fs::remove(log);
    ASSERT_EQ(mkfifo(log.c_str(), 0600), 0);
    EXPECT_TRUE(r.consolida("17 12"));
    EXPECT_TRUE(contem(r.traco(), "Erro abrindo arquivo de entrada!\nFim da lista de arquivos.\n"));
    Rele vazio;
    EXPECT_TRUE(vazio.consolida("17 12"));
    EXPECT_EQ(vazio.traco(),
              "getLastConsolid(@/last) ERRO\nNenhum arquivo de log foi encontrado\n");
}

TEST(Consolidacao, faltaDeDescritoresParaSemRegistrar) {
    Rele r;
    r.mensagens({"15 10 A", "16 10 B"});
    const std::string ponto = "1 Sat Mar 14 00:00:00 2009\n";
    r.arvore.write("last", ponto);
    const int livre = open("/dev/null", O_RDONLY);
    close(livre);
    // Room for the trace and the last-consolidation file, then also for the log directory.
    for (const int mais : {1, 2}) {
        LogMailFileParser p;
        p.setDataDir(r.arvore.path("DAT").c_str());
        {
            const Limite poucos(RLIMIT_NOFILE, static_cast<rlim_t>(livre + mais));
            EXPECT_FALSE(r.consolida(p, "16 12")) << mais;
        }
        EXPECT_EQ(r.ultimo(), ponto) << mais;
        EXPECT_TRUE(dias(r).empty()) << mais;
    }
}

// A last-consolidation file that is there but cannot be read must not count as a first run, which
// would write over finished days. One that says nothing does.
TEST(Consolidacao, pontoIlegivelNadaConsolida) {
    Rele r;
    r.mensagens({"15 10 A", "16 10 B"});
    fs::create_directory(r.arvore.path("last"));
    EXPECT_FALSE(r.consolida("16 12"));
    EXPECT_EQ(r.traco(), "getLastConsolid(@/last) ERRO\n");
    EXPECT_TRUE(dias(r).empty());
    fs::remove(r.arvore.path("last"));
    r.arvore.write("last", "torto");
    EXPECT_TRUE(r.consolida("16 12"));
    EXPECT_EQ(r.totais("15"), uma);
    EXPECT_EQ(r.ultimo(), "1 Mon Mar 16 00:00:00 2009\n");
}

// A disk that fills up: the point stays, and the next run writes what an undisturbed one writes.
TEST(Consolidacao, discoCheio) {
    Rele certo, r;
    for (Rele* q : {&certo, &r}) {
        for (int i = 0; i < 2000; ++i) q->mensagem("15 10", "A" + std::to_string(i));
        q->mensagem("16 10", "B");
    }
    certo.consolida("16 12");
    {
        const Limite pouco(RLIMIT_FSIZE, 100000);
        EXPECT_FALSE(r.consolida("16 12"));
    }
    EXPECT_EQ(r.ultimo(), "");
    EXPECT_TRUE(r.consolida("16 12"));
    EXPECT_EQ(dias(r), dias(certo));
    EXPECT_EQ(r.ultimo(), certo.ultimo());
}

// A day file that cannot be created: the day's state is followed all the same, and it is the point.
TEST(Consolidacao, arquivoDoDiaBloqueado) {
    for (const char* prefixo : {diario::compacto, diario::estatistica}) {
        Rele r;
        const std::string bloqueado = arquivo_do_dia("15", prefixo);
        r.mensagens({"15 10 A", "16 10 B"});
        fs::create_directories(r.arvore.path(bloqueado));
        r.consolida("17 12");
        EXPECT_EQ(r.ultimo().substr(0, 27), "1 Sun Mar 15 00:00:00 2009\n");
        EXPECT_TRUE(contem(r.traco(), "createFile: Erro ao criar arquivo @/" + bloqueado + "\n."));
        if (prefixo == diario::compacto) {
            EXPECT_EQ(r.totais("15"), uma);
        }
        EXPECT_EQ(r.estatistica("16"), "");
    }
}

// Periods have 3600 s each, also on days of 23 and 25 hours; days follow local midnights.
TEST(Consolidacao, mudancasDeHora) {
    const struct {
        const char *zona, *antes, *dia, *depois, *amanha;
        int horas;
    } casos[] = {
        {"America/Sao_Paulo", "2018-02-16", "2018-02-17", "2018-02-18", "2018-02-19 12", 25},
        {"Europe/Lisbon", "2018-03-24", "2018-03-25", "2018-03-26", "2018-03-27 12", 23},
    };
    const std::string vazio = ": 1 100 0 0 0 0 0 0;";
    for (const auto& c : casos) {
        Rele r(c.zona);
        for (const std::string d : {c.antes, c.dia, c.depois})
            r.mensagem(d + " 00:30", "M" + d).mensagem(d + " 23:30", "F" + d);
        r.consolida(c.amanha);
        for (const char* d : {c.antes, c.dia, c.depois})
            EXPECT_EQ(r.totais(d), "0 0 0 0 2 200 0 0") << c.zona << " " << d;
        EXPECT_EQ(hora(c.depois) - hora(c.dia), c.horas * 3600);
        EXPECT_TRUE(
            contem(r.estatistica(c.dia), "[" + std::to_string(hora(c.dia) + 23 * 3600) + "]\n"));
        // The last period of 24 takes what is left of the day.
        const std::string ultimo = std::to_string(std::min(c.horas - 1, 23));
        EXPECT_EQ(r.usuario(c.dia, "ana"), "0" + vazio + ultimo + vazio);
    }
    // The day without a midnight begins at one o'clock, or an hour earlier, as mktime says; its
    // lines are found either way.
    Rele r("America/Sao_Paulo");
    r.mensagens({"2018-11-03 12 M3", "2018-11-04 12 M4", "2018-11-05 12 M5"});
    r.consolida("2018-11-06 12");
    EXPECT_EQ(r.totais("2018-11-03"), uma);
}

TEST(Consolidacao, outroNumeroDePeriodos) {
    for (const unsigned n : {1u, 12u, 24u, 48u}) {
        Rele r;
        r.mensagens({"15 13:40 A", "16 10 B"});
        LogMailFileParser p;
        p.set_sfile_num_periods(n == 24 ? 0 : n);  // 0: as usual
        EXPECT_EQ(p.last_period, n);
        EXPECT_FALSE(p.setLastPeriod(n));
        r.consolida(p, "16 12");
        const std::string periodo = std::to_string((13 * 60 + 40) * n / 1440);
        EXPECT_EQ(r.usuario("15", "ana"), periodo + ": 1 100 0 0 0 0 0 0;");
        EXPECT_EQ(r.usuario("15", "rui@fora.test"), periodo + ": 0 0 1 100 0 0 0 0;");
    }
}

TEST(Consolidacao, diretoriosEDominios) {
    Rele r;
    Memoria traco;
    LogMailFileParser p;
    p.debugOut = traco.stream;
    EXPECT_STREQ(p.getDataDir(), "DAT");
    EXPECT_STREQ(p.getLogDir(), "LOGS");
    const std::string longo(129, 'd'), cabe(128, 'd'), nova = r.arvore.path("nova");
    EXPECT_FALSE(p.setLogDir(longo.c_str()));
    EXPECT_FALSE(p.setLogDir(nullptr));
    EXPECT_TRUE(p.setLogDir(cabe.c_str()));
    EXPECT_FALSE(p.setDataDir(longo.c_str()));
    EXPECT_FALSE(p.setDataDir(r.arvore.path("nao/existe").c_str()));
    EXPECT_STREQ(p.getDataDir(), "DAT");
    EXPECT_TRUE(p.setDataDir(nova.c_str()));
    EXPECT_EQ(fs::status(nova).permissions(), fs::perms{0755});
    EXPECT_EQ(traco.texto(), "setLogDir(" + longo + ") ERRO\nsetLogDir((null)) ERRO\nsetLogDir(" +
                                 cabe + ") OK\nsetDataDir(" + longo + ") ERRO\nsetDataDir(" + nova +
                                 ") OK\n");
    EXPECT_FALSE(p.add_domain(nullptr));
    char lista[] = "alfa;beta";
    EXPECT_TRUE(p.add_domain(lista));
    EXPECT_STREQ(p.domains.first()->name, "beta");
    p.debugOut = nullptr;
}

// After the once-a-day return the trace goes on into nothing, and a later run closes nothing twice.
TEST(Consolidacao, tracoDepoisDeFechado) {
    Rele r;
    r.mensagens({"15 10 A", "16 10 B"});
    LogMailFileParser p;
    r.consolida(p, "16 12");
    EXPECT_EQ(p.debugOut, nullptr);
    r.consolida(p, "16 12");
    std::FILE* mudo = p.debugOut;
    ASSERT_NE(mudo, nullptr);
    EXPECT_GT(std::fprintf(mudo, "some\n"), 0);
    p.consolidate(r.arvore.path("last").c_str());
    EXPECT_EQ(p.debugOut, mudo);
    p.setForceMode();
    p.consolidate(r.arvore.path("last").c_str());
    EXPECT_EQ(p.debugOut, nullptr);
}

}  // namespace
