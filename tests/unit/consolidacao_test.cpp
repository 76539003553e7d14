// Whole consolidations: days, runs, carried messages, clocks, inputs that fail.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <map>

#include "tests/unit/apoio/rele.h"

namespace {

namespace fs = std::filesystem;

// All files below a directory, by their relative names.
std::map<std::string, std::string> arvore_inteira(const Rele& r, const std::string& pasta) {
    std::map<std::string, std::string> tudo;
    for (const auto& e : fs::recursive_directory_iterator(r.arvore.path(pasta)))
        if (e.is_regular_file()) {
            const std::string rel = fs::relative(e.path(), r.arvore.path()).string();
            tudo[rel] = r.arvore.read(rel);
        }
    return tudo;
}

TEST(Consolidacao, umDiaPorInteiro) {
    Rele r;
    r.mensagem("2009-03-15 09:30:00", "A").mensagem("2009-03-16 08:00:00", "B");
    EXPECT_TRUE(r.consolida("2009-03-16 12:00:00"));
    const std::string t = T("2009-03-15 09:30:00");
    EXPECT_EQ(r.compacto("2009-03-15"), t + " 1 1 A INTERNO ana 100\n" + t + " 2 7 A\n" + t +
                                            " 2 2 A rui@fora.test\n" + t + " 2 4 A\n");
    std::string quer = "1237109400 1237111199 0 0 0 0 1 100 0 0\n";
    quer.replace(0, 21,
                 std::to_string(hora("2009-03-15 09:00:00")) + " " +
                     std::to_string(hora("2009-03-15 09:59:59")));
    for (int p = 0; p < 24; ++p) {
        quer += "[" + std::to_string(hora("2009-03-15 00:00:00") + p * 3600) + "]\n";
        if (p == 9) quer += "rui@fora.test 0 0 1 100 0 0 0 0\nana 1 100 0 0 0 0 0 0\n";
    }
    EXPECT_EQ(r.estatistica("2009-03-15"), quer);
    EXPECT_EQ(r.ultimo(), "1 Mon Mar 16 00:00:00 2009\n");
    EXPECT_FALSE(r.arvore.exists("DAT/rels_03-09/compact_mail_16.txt"));
    EXPECT_EQ(r.traco(),
              "getLastConsolid(@/last) ERRO\nConsolidando dia Sun Mar 15\n"
              "Abrindo entrada @/LOGS/MAIL_DISPATCHER.LOG\n"
              "Arquivo posicionado em Sun Mar 15 09:30:00 2009: 07 MAILQ SUBMIT Msg A de INTERNO "
              "remetente ana com 100 bytes\n\n");
    // The same day again: nothing to do. The next day: only what is new.
    r.consolida("2009-03-16 23:00:00");
    EXPECT_EQ(r.traco(), "getLastConsolid(@/last) OK\nrelatorio de hoje ja foi gerado.\n\n");
    const auto antes = arvore_inteira(r, "DAT");
    r.consolida("2009-03-17 00:00:01");
    for (const auto& [nome, texto] : antes) EXPECT_EQ(r.arvore.read(nome), texto) << nome;
    EXPECT_EQ(r.totais("2009-03-16"), "0 0 0 0 1 100 0 0");
}

TEST(Consolidacao, mensagemAtravessaAMeiaNoite) {
    Rele r;
    r.linha("2009-03-15 23:59:00", "MAILQ SUBMIT Msg A de INTERNO remetente ana com 100 bytes")
        .linha("2009-03-15 23:59:00", "MAILSMTP DELIVER Msg A")
        .linha("2009-03-16 00:01:00", "MAILSMTP OK Msg A para rui")
        .linha("2009-03-16 00:01:00", "MAILSMTP END Msg A")
        .mensagem("2009-03-17 10:00:00", "B");
    r.consolida("2009-03-17 12:00:00");
    EXPECT_NE(r.traco().find("Usu\xE1rio ana na lista.[ref = 1]\n"), std::string::npos);
    EXPECT_EQ(r.totais("2009-03-15"), "0 0 0 0 0 0 0 0");
    EXPECT_EQ(r.totais("2009-03-16"), "0 0 0 0 1 100 0 0");
    EXPECT_EQ(r.usuario("2009-03-16", "ana"), "0: 1 100 0 0 0 0 0 0;");
    // The count of references was zeroed at midnight, so the END took it below zero: ana is kept.
    EXPECT_NE(r.traco().find("Usu\xE1rio ana na lista.[ref = -1]\n"), std::string::npos);
}

// Between runs only the last-consolidation file carries messages, and its reader is not the mirror
// of its writer: the sender is lost, the last attempt becomes the end.
TEST(Consolidacao, mensagemAtravessaDuasExecucoes) {
    Rele r;
    r.linha("2009-03-15 23:59:00", "MAILQ SUBMIT Msg A de INTERNO remetente ana com 100 bytes")
        .linha("2009-03-15 23:59:10", "MAILSMTP DELIVER Msg A")
        .linha("2009-03-15 23:59:20",
               "MAILQ SUBMIT Msg PARADA de INTERNO remetente ana com 5 bytes")
        .linha("2009-03-15 23:59:30", "SPAMCATCHER TAGGED Msg S")
        .linha("2009-03-16 00:01:00", "MAILSMTP OK Msg A para rui")
        .linha("2009-03-16 00:01:00", "MAILSMTP END Msg A")
        .mensagem("2009-03-17 10:00:00", "B");
    r.consolida("2009-03-16 12:00:00");
    const std::string s = std::to_string(hora("2009-03-15 23:59:00"));
    EXPECT_EQ(r.ultimo(),
              "1 Mon Mar 16 00:00:00 2009\n"
              "\r\nS 0 N S N N 0 0 (null)"
              "\r\nPARADA 5 N N N S " +
                  std::to_string(hora("2009-03-15 23:59:20")) +
                  " 0 ana"
                  "\r\nA 100 N N N S " +
                  s + " " + std::to_string(hora("2009-03-15 23:59:10")) + " ana");
    r.consolida("2009-03-17 12:00:00");
    EXPECT_EQ(r.totais("2009-03-16"), "0 0 0 0 1 100 0 0");  // A, by its OK of the day
    EXPECT_EQ(r.usuario("2009-03-16", "ana"), "");
    // What had no attempt has no end either: it stays, and the order is that of the reader.
    EXPECT_EQ(r.ultimo(),
              "1 Tue Mar 17 00:00:00 2009\n"
              "\r\nPARADA 5 N N N S " +
                  std::to_string(hora("2009-03-15 23:59:20")) +
                  " 0 (null)"
                  "\r\nS 0 N S N N 0 0 (null)");
}

TEST(Consolidacao, pontoSemRegistrosDaUmaMensagemVazia) {
    Rele r;
    r.arvore.write("last", "1 Sun Mar 15 00:00:00 2009\n");
    Memoria traco;
    LogMailFileParser p;
    p.debugOut = traco.stream;
    EXPECT_EQ(p.getLastConsolid(r.arvore.path("last").c_str()), hora("2009-03-15 00:00:00"));
    ASSERT_NE(p.Lista_msg.first(), nullptr);
    EXPECT_STREQ(p.Lista_msg.first()->id, "");
    EXPECT_EQ(p.Lista_msg.first()->end_time, 1);
    EXPECT_EQ(p.Lista_msg.first(), p.Lista_msg.last());
    p.debugOut = nullptr;
    p.consolidate(nullptr);
    EXPECT_EQ(p.Lista_msg.first(), nullptr);
}

// Words that are longer than the reader's fields go on as those of the next record; a flag is set
// by an S alone.
TEST(Consolidacao, palavrasLongasNoPonto) {
    Rele r;
    r.arvore.write("last", "1 Sun Mar 15 00:00:00 2009\n\r\n" + std::string(60, 'a') +
                               " 5 X S X S 1 2 ana\r\nb 7 S X S X 1 2 " + std::string(600, 's'));
    LogMailFileParser p;
    EXPECT_EQ(p.getLastConsolid(r.arvore.path("last").c_str()), hora("2009-03-15 00:00:00"));
    std::string lidas;
    for (const Msg* m = p.Lista_msg.last(); m; m = m->prev)
        lidas += m->id + (" " + std::to_string(m->size)) + " " + (m->virus ? "V" : "") +
                 (m->spam ? "S" : "") + (m->att_blocked ? "B" : "") + (m->int_user ? "I;" : ";");
    const std::string s = std::string(23, 's') + " 7 VB;";
    EXPECT_EQ(lidas, std::string(23, 'a') + " 0 ;aaaaaaaaaaa 5 SI;b 7 VB;" + s + s);
    p.consolidate(nullptr);
}

TEST(Consolidacao, diasSemLinhasExistem) {
    Rele r;
    r.mensagem("2009-03-15 10:00:00", "A").mensagem("2009-03-17 10:00:00", "B");
    r.consolida("2009-03-18 12:00:00");
    EXPECT_EQ(r.compacto("2009-03-16"), "");
    EXPECT_EQ(r.totais("2009-03-16"), "0 0 0 0 0 0 0 0");
    EXPECT_NE(r.traco().find("N\xE3o houve atividade em Mon Mar 16\n"), std::string::npos);
    // The input ran out on the 17th: that day will be done again.
    EXPECT_EQ(r.ultimo(), "1 Tue Mar 17 00:00:00 2009\n");
    EXPECT_NE(r.traco().find("Fim da lista de arquivos.\n"), std::string::npos);
    r.mensagem("2009-03-17 20:00:00", "C").mensagem("2009-03-18 10:00:00", "D");
    r.consolida("2009-03-18 13:00:00");
    EXPECT_EQ(r.totais("2009-03-17"), "0 0 0 0 2 200 0 0");
}

TEST(Consolidacao, forcada) {
    Rele r;
    r.mensagem("2009-03-15 10:00:00", "A").mensagem("2009-03-16 08:00:00", "B");
    r.consolida("2009-03-16 09:00:00", true);  // a first run: the point is recorded
    EXPECT_EQ(r.totais("2009-03-16"), "0 0 0 0 1 100 0 0");
    EXPECT_EQ(r.ultimo(), "1 Mon Mar 16 00:00:00 2009\n");
    const std::string ponto = r.ultimo();
    r.mensagem("2009-03-16 10:00:00", "C").mensagem("2009-03-17 10:00:00", "D");
    r.consolida("2009-03-17 11:00:00", true);
    EXPECT_EQ(r.totais("2009-03-16"), "0 0 0 0 2 200 0 0");
    EXPECT_EQ(r.totais("2009-03-17"), "0 0 0 0 1 100 0 0");
    EXPECT_EQ(r.ultimo(), ponto);
}

TEST(Consolidacao, arquivosRotacionados) {
    Rele r;
    r.mensagem("2009-03-14 10:00:00", "VELHA").mensagem("2009-03-15 10:00:00", "A");
    r.rotaciona("mail_dispatcher.log.2");  // any letter case
    r.mensagem("2009-03-15 12:00:00", "B");
    r.rotaciona("MAIL_DISPATCHER.LOG.1");
    r.mensagem("2009-03-15 14:00:00", "C").mensagem("2009-03-16 00:00:01", "D");
    r.arvore.write("LOGS/MAIL_DISPATCHER.LOG.vazio", "");
    r.arvore.write("LOGS/OUTRO.LOG", r.arvore.read("LOGS/MAIL_DISPATCHER.LOG"));
    // A file that begins before the point is not read, whatever it holds later.
    r.arvore.write("last", "1 Sun Mar 15 00:00:00 2009\n");
    r.consolida("2009-03-16 12:00:00");
    EXPECT_EQ(r.totais("2009-03-15"), "0 0 0 0 2 200 0 0");
    // A first run reads all of them, the oldest first.
    fs::remove(r.arvore.path("last"));
    r.consolida("2009-03-16 12:00:00");
    EXPECT_EQ(r.totais("2009-03-14"), "0 0 0 0 1 100 0 0");
    EXPECT_EQ(r.totais("2009-03-15"), "0 0 0 0 3 300 0 0");
}

TEST(Consolidacao, milArquivos) {
    Rele r;
    for (int i = 0; i < 1005; ++i) {
        char h[32];
        std::snprintf(h, sizeof h, "2009-03-15 %02d:%02d:%02d", i / 3600, i / 60 % 60, i % 60);
        r.linha(h, "MAILQ OK Msg A para rui");
        r.rotaciona("MAIL_DISPATCHER.LOG." + std::to_string(i));
    }
    r.consolida("2009-03-16 12:00:00");
    EXPECT_EQ(r.usuario("2009-03-15", "rui"), "0: 0 0 999 0 0 0 0 0;");
}

// Nothing that stands in a log's place stops the run or makes it wait.
TEST(Consolidacao, entradasQueNaoSaoLogs) {
    Rele r;
    r.mensagem("2009-03-15 10:00:00", "A").mensagem("2009-03-16 10:00:00", "B");
    ASSERT_EQ(mkfifo(r.arvore.path("LOGS/MAIL_DISPATCHER.LOG.fifo").c_str(), 0600), 0);
    fs::create_directory(r.arvore.path("LOGS/MAIL_DISPATCHER.LOG.d"));
    fs::create_symlink("MAIL_DISPATCHER.LOG.x", r.arvore.path("LOGS/MAIL_DISPATCHER.LOG.x"));
    EXPECT_TRUE(r.consolida("2009-03-16 12:00:00"));
    EXPECT_EQ(r.totais("2009-03-15"), "0 0 0 0 1 100 0 0");
    fs::remove(r.arvore.path("LOGS/MAIL_DISPATCHER.LOG"));
    ASSERT_EQ(mkfifo(r.arvore.path("LOGS/MAIL_DISPATCHER.LOG").c_str(), 0600), 0);
    EXPECT_TRUE(r.consolida("2009-03-17 12:00:00"));
    EXPECT_NE(r.traco().find("Erro abrindo arquivo de entrada!\nFim da lista de arquivos.\n"),
              std::string::npos);
    Rele vazio;
    EXPECT_TRUE(vazio.consolida("2009-03-17 12:00:00"));
    EXPECT_EQ(vazio.traco(),
              "getLastConsolid(@/last) ERRO\nNenhum arquivo de log foi encontrado\n");
}

TEST(Consolidacao, faltaDeDescritoresParaSemRegistrar) {
    Rele r;
    r.mensagem("2009-03-15 10:00:00", "A").mensagem("2009-03-16 10:00:00", "B");
    r.arvore.write("last", "1 Sat Mar 14 00:00:00 2009\n");
    const std::string ponto = r.ultimo();
    rlimit antes;
    getrlimit(RLIMIT_NOFILE, &antes);
    const int livre = open("/dev/null", O_RDONLY);
    close(livre);
    // Room for the trace and the last-consolidation file, then also for the log directory.
    for (const int mais : {1, 2}) {
        LogMailFileParser p;
        p.setDataDir(r.arvore.path("DAT").c_str());
        const rlimit poucos{static_cast<rlim_t>(livre + mais), antes.rlim_max};
        setrlimit(RLIMIT_NOFILE, &poucos);
        const bool feito = r.consolida(p, "2009-03-16 12:00:00");
        setrlimit(RLIMIT_NOFILE, &antes);
        EXPECT_FALSE(feito) << mais;
        EXPECT_EQ(r.ultimo(), ponto) << mais;
        EXPECT_TRUE(arvore_inteira(r, "DAT").empty()) << mais;
    }
}

// A last-consolidation file that is there but cannot be read must not count as a first run, which
// would write over finished days.
TEST(Consolidacao, pontoIlegivelNadaConsolida) {
    Rele r;
    r.mensagem("2009-03-15 10:00:00", "A").mensagem("2009-03-16 10:00:00", "B");
    fs::create_directory(r.arvore.path("last"));
    EXPECT_FALSE(r.consolida("2009-03-16 12:00:00"));
    EXPECT_EQ(r.traco(), "getLastConsolid(@/last) ERRO\n");
    EXPECT_TRUE(arvore_inteira(r, "DAT").empty());
    fs::remove(r.arvore.path("last"));
    r.arvore.write("last", "torto");
    EXPECT_TRUE(r.consolida("2009-03-16 12:00:00"));
    EXPECT_EQ(r.totais("2009-03-15"), "0 0 0 0 1 100 0 0");
    EXPECT_EQ(r.ultimo(), "1 Mon Mar 16 00:00:00 2009\n");
}

// A disk that fills up: the point stays, and the next run writes what an undisturbed one writes.
TEST(Consolidacao, discoCheio) {
    Rele certo, r;
    for (Rele* q : {&certo, &r}) {
        for (int i = 0; i < 2000; ++i) q->mensagem("2009-03-15 10:00:00", "A" + std::to_string(i));
        q->mensagem("2009-03-16 10:00:00", "B");
    }
    certo.consolida("2009-03-16 12:00:00");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit antes;
    getrlimit(RLIMIT_FSIZE, &antes);
    const rlimit pouco{100000, antes.rlim_max};
    setrlimit(RLIMIT_FSIZE, &pouco);
    const bool feito = r.consolida("2009-03-16 12:00:00");
    setrlimit(RLIMIT_FSIZE, &antes);
    EXPECT_FALSE(feito);
    EXPECT_EQ(r.ultimo(), "");
    EXPECT_TRUE(r.consolida("2009-03-16 12:00:00"));
    EXPECT_EQ(arvore_inteira(r, "DAT"), arvore_inteira(certo, "DAT"));
    EXPECT_EQ(r.ultimo(), certo.ultimo());
}

// A day file that cannot be created: the day's state is followed all the same, and it is the point.
TEST(Consolidacao, arquivoDoDiaBloqueado) {
    for (const std::string bloqueado : {"compact_mail_15.txt", "mail_stat_15.txt"}) {
        Rele r;
        r.mensagem("2009-03-15 10:00:00", "A").mensagem("2009-03-16 10:00:00", "B");
        fs::create_directories(r.arvore.path("DAT/rels_03-09/" + bloqueado));
        r.consolida("2009-03-17 12:00:00");
        EXPECT_EQ(r.ultimo().substr(0, 27), "1 Sun Mar 15 00:00:00 2009\n");
        EXPECT_NE(r.traco().find("createFile: Erro ao criar arquivo @/DAT/rels_03-09/" + bloqueado +
                                 "\n."),
                  std::string::npos);
        if (bloqueado.starts_with("compact")) {
            EXPECT_EQ(r.totais("2009-03-15"), "0 0 0 0 1 100 0 0");
        }
        EXPECT_FALSE(r.arvore.exists("DAT/rels_03-09/mail_stat_16.txt"));
    }
}

// Periods have 3600 s each, also on days of 23 and 25 hours; days follow local midnights.
TEST(Consolidacao, mudancasDeHora) {
    const struct {
        const char *tz, *antes, *dia, *depois, *amanha;
        int horas;
    } casos[] = {
        {"America/Sao_Paulo", "2018-02-16", "2018-02-17", "2018-02-18", "2018-02-19 12:00:00", 25},
        {"Europe/Lisbon", "2018-03-24", "2018-03-25", "2018-03-26", "2018-03-27 12:00:00", 23},
        {"Europe/Lisbon", "2018-10-27", "2018-10-28", "2018-10-29", "2018-10-30 12:00:00", 25},
    };
    for (const auto& c : casos) {
        Rele r(c.tz);
        for (const std::string d : {c.antes, c.dia, c.depois})
            r.mensagem(d + " 00:30:00", "M" + d).mensagem(d + " 23:30:00", "F" + d);
        r.consolida(c.amanha);
        for (const std::string d : {c.antes, c.dia, c.depois})
            EXPECT_EQ(r.totais(d), "0 0 0 0 2 200 0 0") << c.tz << " " << d;
        const time_t inicio = hora(std::string(c.dia) + " 00:00:00");
        EXPECT_EQ(hora(std::string(c.depois) + " 00:00:00") - inicio, c.horas * 3600);
        EXPECT_NE(r.estatistica(c.dia).find("[" + std::to_string(inicio + 23 * 3600) + "]\n"),
                  std::string::npos);
        const time_t noite = hora(std::string(c.dia) + " 23:30:00");
        const int periodo = std::min<int>(23, static_cast<int>((noite - inicio) / 3600));
        EXPECT_EQ(r.usuario(c.dia, "ana"),
                  "0: 1 100 0 0 0 0 0 0;" + std::to_string(periodo) + ": 1 100 0 0 0 0 0 0;");
    }
    // The day without a midnight begins at one o'clock, or an hour earlier, as mktime says; its
    // lines are found either way.
    Rele r("America/Sao_Paulo");
    for (const std::string d : {"2018-11-03", "2018-11-04", "2018-11-05"})
        r.mensagem(d + " 12:00:00", "M" + d);
    r.consolida("2018-11-06 12:00:00");
    EXPECT_EQ(r.totais("2018-11-03"), "0 0 0 0 1 100 0 0");
}

TEST(Consolidacao, outroNumeroDePeriodos) {
    for (const unsigned n : {1u, 12u, 48u}) {
        Rele r;
        r.mensagem("2009-03-15 13:40:00", "A").mensagem("2009-03-16 10:00:00", "B");
        LogMailFileParser p;
        p.set_sfile_num_periods(n);
        EXPECT_EQ(p.last_period, n);
        EXPECT_FALSE(p.setLastPeriod(n));
        r.consolida(p, "2009-03-16 12:00:00");
        const std::string periodo = std::to_string((13 * 60 + 40) * n / 1440);
        EXPECT_EQ(r.usuario("2009-03-15", "ana"), periodo + ": 1 100 0 0 0 0 0 0;");
        EXPECT_EQ(r.usuario("2009-03-15", "rui@fora.test"), periodo + ": 0 0 1 100 0 0 0 0;");
    }
}

TEST(Consolidacao, diretorios) {
    Rele r;
    Memoria traco;
    LogMailFileParser p;
    p.debugOut = traco.stream;
    EXPECT_STREQ(p.getDataDir(), "DAT");
    EXPECT_STREQ(p.getLogDir(), "LOGS");
    const std::string longo(129, 'd');
    EXPECT_FALSE(p.setLogDir(longo.c_str()));
    EXPECT_FALSE(p.setLogDir(nullptr));
    EXPECT_TRUE(p.setLogDir(longo.substr(1).c_str()));
    EXPECT_FALSE(p.setDataDir(longo.c_str()));
    EXPECT_FALSE(p.setDataDir(r.arvore.path("nao/existe").c_str()));
    EXPECT_STREQ(p.getDataDir(), "DAT");
    EXPECT_TRUE(p.setDataDir(r.arvore.path("nova").c_str()));
    EXPECT_EQ(fs::status(r.arvore.path("nova")).permissions(), fs::perms{0755});
    EXPECT_EQ(traco.texto(), "setLogDir(" + longo + ") ERRO\nsetLogDir((null)) ERRO\nsetLogDir(" +
                                 longo.substr(1) + ") OK\nsetDataDir(" + longo +
                                 ") ERRO\nsetDataDir(" + r.arvore.path("nova") + ") OK\n");
    EXPECT_FALSE(p.add_domain(nullptr));
    std::string lista = "alfa;beta";
    EXPECT_TRUE(p.add_domain(lista.data()));
    EXPECT_STREQ(p.domains.first()->name, "beta");
    p.debugOut = nullptr;
}

// After the once-a-day return the trace goes on into nothing, and a later run closes nothing twice.
TEST(Consolidacao, tracoDepoisDeFechado) {
    Rele r;
    r.mensagem("2009-03-15 10:00:00", "A").mensagem("2009-03-16 10:00:00", "B");
    LogMailFileParser p;
    r.consolida(p, "2009-03-16 12:00:00");
    EXPECT_EQ(p.debugOut, nullptr);
    r.consolida(p, "2009-03-16 12:00:00");
    ASSERT_NE(p.debugOut, nullptr);
    EXPECT_GT(std::fprintf(p.debugOut, "some\n"), 0);
    std::FILE* mudo = p.debugOut;
    p.consolidate(r.arvore.path("last").c_str());
    EXPECT_EQ(p.debugOut, mudo);
    p.setForceMode();
    p.consolidate(r.arvore.path("last").c_str());
    EXPECT_EQ(p.debugOut, nullptr);
}

}  // namespace
