// One log line at a time: what each event writes into the compact file and counts.
#include <gtest/gtest.h>

#include <cstring>
#include <utility>

#include "misc/escrita.h"
#include "tests/unit/apoio/rele.h"

namespace {

const std::string dia = "2009-03-15", amanha = "2009-03-16 12:00:00";

// Every row of the dispatch table, and what does not fit it, with the compact line that comes out.
TEST(Eventos, linhasCompactas) {
    // "#" stands for the time; "" for no compact line.
    const struct {
        const char* palavras;
        const char* compacta;
    } casos[] = {
        {"MAILQ SUBMIT Msg A de INTERNO remetente ana@x com 7 bytes", "# 1 1 A INTERNO ana@x 7"},
        {"MAILQ SUBMIT Msg A de POP remetente com 8 bytes", "# 1 1 A POP  8"},
        {"MAILQ SUBMIT Msg A de POP remetente ana com", ""},
        {"MAILQ DELIVER Msg A", "# 2 7 A"},
        {"MAILQ OK Msg A para rui", "# 1 2 A rui"},
        {"MAILQ OK Msg A para", ""},
        {"MAILQ END Msg A", "# 1 4 A"},
        {"MAILQ SPAM Msg A B", "# 1 SPAM Msg A B"},
        {"MAILSMTP OK Msg A para rui@y", "# 2 2 A rui@y"},
        {"MAILSMTP END Msg A", "# 2 4 A"},
        {"MAILSMTP END Msg", ""},
        {"MAILSMTP ERROR_CONNECT Msg A em a y.test", "# 2 5 A y.test"},
        {"MAILSMTP ERROR_CONNECTION Msg A em a y.test", "# 2 5 A y.test"},
        {"MAILSMTP DELIVER Msg A tentativa 1", "# 2 7 A"},
        {"MAILSMTP ERROR_SENDER Msg A a b c d relay", "# 2 8 A relay"},
        {"MAILSMTP ERROR_DEST Msg A para rui@y", "# 2 9 A rui@y"},
        {"MAILSMTP ERROR_DOMAIN Msg A Dominio y.test", "# 2 14 A y.test"},
        {"MAILSMTP ERROR_DOMAIN Msg A dominio y.test", ""},
        {"MAILSMTP ERROR_DOMAIN Msg A", ""},
        {"MAILSMTP ERROR_SIZE Msg A", "# 2 13 A"},
        {"MAILSMTP ERROR_HELO Msg A com mx.y", "# 2 12 A mx.y"},
        {"MAILSMTP ERROR_DATA Msg A", "# 2 11 A"},
        {"MAILSMTP ERROR_FINAL Msg 0123456789ABCDEF 550 nao existe",
         "# 2 10 0123456789ABCDEF 550 nao existe"},
        {"MAILSMTP ERROR_FINAL Msg A", "# 2 10 A "},
        {"MAILSMTP RETRY_DEST Msg A para x", "#"},
        {"POPSRV READ usr ana 3", "# 3 3 ana"},
        {"POPSRV READ usr", "# 3 3 (null)"},
        {"POPSRV LOGIN ana", "# 3  LOGIN ana"},
        {"ANTIVIRUS VIRUS Msg A", "# 2 15 A"},
        {"ANTIVIRUS OK Msg A", ""},
        {"SPAMCATCHER COPY Msg A", "# 2 18 A"},
        {"SPAMCATCHER TAGGED Msg A", "# 2 18 A"},
        {"SPAMCATCHER QUARANTINE Msg A", "# 2 18 A"},
        {"SPAMCATCHER DISCARD Msg A", "# 2 18 A"},
        {"SPAMCATCHER SPAM Msg A", ""},
        {"CRON inicio", "# 0 nicio"},
        {"", "# 0 "},
    };
    Rele r;
    std::string quer;
    for (const auto& c : casos) {
        r.linha(dia + " 10:20:30", c.palavras);
        std::string linha = c.compacta;
        if (linha.empty()) continue;
        if (std::string(c.palavras).find("RETRY_DEST") != std::string::npos)
            linha += " 2 " + std::string(c.palavras).substr(8);
        quer += linha.replace(0, 1, T(dia + " 10:20:30")) + "\n";
    }
    r.consolida(amanha);
    EXPECT_EQ(r.compacto(dia), quer);
}

// Lines whose end or length is not what it should be.
TEST(Eventos, linhasMalFeitas) {
    const std::string h = "Sun Mar 15 10:20:30 2009", t = T(dia + " 10:20:30");
    const std::string longo(300, 'x'), enorme(3000, 'y');
    Rele r;
    r.bruto(h + ": 07 MAILQ END Msg A\r\n");  // CR ends the id
    r.bruto(h + ": 07 MAILQ END Msg \r\n");   // CR behind a blank is a word
    r.bruto(h + ": 07 CRON aviso\r\n");       // a copied text keeps its own line end
    r.bruto(h + ": 07 CRON ab" + std::string(1, '\0') +
            "b\n");                                           // NUL ends the line, without its LF
    r.bruto(h + "\n");                                        // nothing at column 35
    r.bruto(h + ": 07 MAILQ OK Msg B para " + longo + "\n");  // words end at 299 bytes
    const std::string nul(1, '\0');
    r.bruto(h + ": 07 CRON x" + nul + "y\n");                  // NUL at column 35
    r.bruto(h + ": 07 MAILQ OK Msg D para ru" + nul + "i\n");  // NUL ends the word too
    r.bruto(h + ": 07 MAILQ OK Msg D para r\tu\x01i\n");       // other controls belong to it
    r.bruto(h + ": 07 MAILQ OK Msg D para \n");                // a blank at the end begins none
    r.bruto(h + ": 07 MAILSMTP XUTRO " + enorme +
            "\n");  // over 2046 bytes: goes on as another line
    r.mensagem(dia + " 11:00:00", "C");
    r.consolida(amanha);
    EXPECT_EQ(r.compacto(dia),
              t + " 1 4 A\n" + t + " 1 4 \r\n" + t + " 0 viso\r\n" + t + " 0 b" +  //
                  t + " 0 \n" + t + " 1 2 B " + longo.substr(0, 299 - 49) + "\n" + t + " 0 \n" + t +
                  " 1 2 D ru\n" + t + " 1 2 D r\tu\x01i\n" + t + " 2 " +
                  ("MAILSMTP XUTRO " + enorme).substr(8, 2046 - 37));
    EXPECT_NE(r.traco().find("Falha no PARSER, linha = \"" + h + ": 07 CRON aviso\r\n\""),
              std::string::npos);
}

// What the day counts, by the first line of its statistics file: spam, virus, error, att_blocked,
// msgs_int, bytes_int, msgs_ext, bytes_ext.
TEST(Eventos, contagemDoDia) {
    const std::string sub = "MAILQ SUBMIT Msg A de INTERNO remetente ana com 100 bytes";
    const std::string fora = "MAILQ SUBMIT Msg A de POP remetente eva@y com 100 bytes";
    const std::string tenta = "MAILSMTP DELIVER Msg A", ok = "MAILSMTP OK Msg A para rui@y.test";
    const std::string fim = "MAILSMTP END Msg A", spam = "SPAMCATCHER TAGGED Msg A";
    const std::string conecta = "MAILSMTP ERROR_CONNECT Msg A em a y.test";
    const std::string dest = "MAILSMTP ERROR_DEST Msg A para rui@y.test";
    const struct {
        const char* nome;
        std::vector<std::string> linhas;
        const char* totais;
        const char* ana;
    } casos[] = {
        {"entregue", {sub, tenta, ok, fim}, "0 0 0 0 1 100 0 0", "10: 1 100 0 0 0 0 0 0;"},
        {"de fora", {fora, tenta, ok, fim}, "0 0 0 0 0 0 1 100", ""},
        {"sem tentativa", {sub, fim}, "0 0 0 0 0 0 0 0", "10: 1 100 0 0 0 0 0 0;"},
        {"spam conta duas vezes",
         {sub, tenta, spam, ok, fim},
         "1 0 0 0 1 100 0 0",
         "10: 2 200 0 0 0 1 0 0;"},
        {"spam nao termina", {sub, tenta, spam}, "0 0 0 0 0 0 0 0", "10: 1 100 0 0 0 1 0 0;"},
        {"virus",
         {sub, tenta, "ANTIVIRUS VIRUS Msg A"},
         "0 1 0 0 1 100 0 0",
         "10: 1 100 0 0 1 0 0 0;"},
        {"virus de ninguem", {"ANTIVIRUS VIRUS Msg A"}, "0 0 0 0 0 0 0 0", ""},
        {"erro resolvido",
         {sub, tenta, conecta, conecta, ok, fim},
         "0 0 0 0 1 100 0 0",
         "10: 1 100 0 0 0 0 2 0;"},
        {"erro de outro dominio fica",
         {sub, tenta, conecta, "MAILSMTP OK Msg A para b@z", fim},
         "0 0 1 0 1 100 0 0",
         "10: 1 100 0 0 0 0 1 0;"},
        {"destinatario recusado fica",
         {sub, tenta, dest, ok, fim},
         "0 0 1 0 1 100 0 0",
         "10: 1 100 0 0 0 0 1 0;"},
        {"recusada", {sub, tenta, dest, fim}, "0 0 1 0 0 0 0 0", "10: 1 100 0 0 0 0 1 0;"},
        {"erro pendente", {sub, tenta, conecta}, "0 0 1 0 0 0 0 0", "10: 0 0 0 0 0 0 1 0;"},
        {"erro pendente, enviada",
         {sub, tenta, ok, conecta},
         "0 0 1 0 1 100 0 0",
         "10: 0 0 0 0 0 0 1 0;"},
        {"erro final",
         {sub, "MAILSMTP ERROR_FINAL Msg A"},
         "0 0 1 0 0 0 0 0",
         "10: 0 0 0 0 0 0 1 0;"},
        {"grande demais",
         {sub, "MAILSMTP ERROR_SIZE Msg A"},
         "0 0 0 0 0 0 0 0",
         "10: 0 0 0 0 0 0 1 0;"},
        {"dominio nao conta ao remetente",
         {sub, tenta, "MAILSMTP ERROR_DOMAIN Msg A Dominio y.test"},
         "0 0 1 0 0 0 0 0",
         ""},
        {"erro de ninguem", {conecta, dest}, "0 0 0 0 0 0 0 0", ""},
        {"dados: um por entrega",
         {sub, tenta, "MAILSMTP ERROR_DATA Msg A", "MAILSMTP ERROR_DATA Msg A", ok, fim},
         "0 0 0 0 1 100 0 0",
         "10: 1 100 0 0 0 0 2 0;"},
        {"dados: sem arroba, um so",
         {sub, tenta, "MAILSMTP ERROR_DATA Msg A", "MAILSMTP ERROR_DATA Msg A",
          "MAILSMTP OK Msg A para rui", fim},
         "0 0 1 0 1 100 0 0",
         "10: 1 100 0 0 0 0 2 0;"},
        {"31 bits",
         {"MAILQ SUBMIT Msg A de INTERNO remetente ana com 4294967295 bytes", tenta, fim},
         "0 0 0 0 1 -1 0 0",
         "10: 1 -1 0 0 0 0 0 0;"},
    };
    for (const auto& c : casos) {
        Rele r;
        for (const auto& l : c.linhas) r.linha(dia + " 10:00:00", l);
        r.linha(dia + " 10:59:59", "POPSRV READ usr m x");
        r.consolida(amanha);
        EXPECT_EQ(r.totais(dia), c.totais) << c.nome;
        EXPECT_EQ(r.usuario(dia, "ana"), c.ana) << c.nome;
    }
}

TEST(Eventos, destinatariosContamOQueRecebem) {
    Rele r;
    r.linha(dia + " 00:59:59", "MAILQ SUBMIT Msg A de INTERNO remetente ana com 100 bytes")
        .linha(dia + " 00:59:59", "MAILQ OK Msg A para rui")
        .linha(dia + " 01:00:00", "MAILSMTP OK Msg A para rui")
        .linha(dia + " 23:59:59", "MAILQ OK Msg DESCONHECIDA para rui");
    r.consolida(amanha);
    EXPECT_EQ(r.usuario(dia, "rui"),
              "0: 0 0 1 100 0 0 0 0;1: 0 0 1 100 0 0 0 0;23: 0 0 1 0 0 0 0 0;");
}

// A handler refuses a missing text: nothing is written, nothing changes, the trace names it.
TEST(Eventos, recusas) {
    using P = LogMailFileParser;
    const struct {
        int (P::*handler)(const char*, const char*, const char*);
        const char* nome;
    } tres[] = {
        {&P::handle_MAILQ_OK, "handle_MAILQ:OK"},
        {&P::handle_MAILSMTP_OK, "handle_MAILSMTP:OK"},
        {&P::handle_MAILSMTP_ERROR_CONNECT, "handle_MAILSMTP:CONNECT"},
        {&P::handle_MAILSMTP_ERROR_SENDER, "handle_MAILSMTP:ERROR_SENDER"},
        {&P::handle_MAILSMTP_ERROR_DEST, "handle_MAILSMTP:ERROR_DEST"},
        {&P::handle_MAILSMTP_ERROR_FINAL, "handle_MAILSMTP:ERROR_FINAL"},
        {&P::handle_MAILSMTP_ERROR_HELO, "handle_MAILSMTP:ERROR_HELO"},
        {&P::handle_MAILSMTP_ERROR_DOMAIN, "handle_MAILSMTP:ERROR_DOMAIN"},
        {&P::handle_MAILSMTP_RETRY_DEST, "handle_MAILSMTP_RETRY_DEST"},
    };
    const struct {
        int (P::*handler)(const char*, const char*);
        const char* nome;
    } dois[] = {
        {&P::handle_MAILQ_END, "handle_MAILQ:END"},
        {&P::handle_MAILSMTP_DELIVER, "handle_MAILSMTP:DELIVER"},
        {&P::handle_MAILSMTP_END, "handle_MAILSMTP:END"},
        {&P::handle_MAILSMTP_ERROR_DATA, "handle_MAILSMTP:ERROR_DATA"},
        {&P::handle_MAILSMTP_ERROR_SIZE, "handle_MAILSMTP:ERROR_SIZE"},
        {&P::handle_SPAM, "handle_SPAM"},
        {&P::handle_ANTIVIRUS_VIRUS, "handle_ANTIVIRUS_VIRUS"},
    };
    Memoria traco, compacto;
    P p;
    p.debugOut = traco.stream;
    p.compact_logfile = compacto.stream;
    std::string quer;
    const auto espera = [&](const char* nome) {
        quer += std::string("LogMailFileParser::") + nome + " : Params. inv\xE1lidos.\r\n";
    };
    for (const auto& h : tres) {
        EXPECT_EQ((p.*h.handler)("1", "A", nullptr), 0);
        espera(h.nome);
    }
    for (const auto& h : dois) {
        EXPECT_EQ((p.*h.handler)(nullptr, "A"), 0);
        espera(h.nome);
    }
    EXPECT_EQ(p.handle_MAILQ_SUBMIT("1", "A", "INTERNO", nullptr, "5"), 0);
    espera("handle_MAILQ:SUBMIT");
    EXPECT_EQ(traco.texto(), quer);
    EXPECT_EQ(compacto.texto(), "");
    EXPECT_EQ(p.Lista_msg.first(), nullptr);
    EXPECT_EQ(p.Lista_usu.first(), nullptr);
    p.compact_logfile = nullptr;
}

// So do the handlers of the reports, of lines with too few fields or without an hour's row.
TEST(Eventos, recusasDosRelatorios) {
    Memoria traco;
    LogMailFileParser p;
    p.debugOut = traco.stream;
    MsgsData hora{};
    Msg m("A", 7);
    char id[] = "A";
    char* campos[8] = {id, id, id, id, id, id, id, id};
    const struct {
        int resposta;
        const char* linha;
    } casos[] = {
        {p.msgs_per_hour_handle_SUBMIT(1, nullptr, campos, 7),
         "msgs_per_hour_handle_SUBMIT : Params inv\xE1lidos."},
        {p.msgs_per_hour_handle_SUBMIT(1, &hora, campos, 6), ""},
        {p.msgs_per_hour_handle_DELIVER(0, &hora, id),
         "msgs_per_hour_handle_DELIVER : Params inv\xE1lidos."},
        {p.msgs_per_hour_handle_DELIVER(1, &hora, nullptr),
         "msgs_per_hour_handle_DELIVER : Params inv\xE1lidos."},
        {p.msgs_per_hour_handle_END(nullptr, id, campos, 4),
         "msgs_per_hour_handle_END : Params inv\xE1lidos."},
        {p.msgs_per_hour_handle_ERROR(1, nullptr, campos, 4),
         "msgs_per_hour_handle_ERROR : Params inv\xE1lidos."},
        {p.msg_trace_handle_OK(id, id, 1, &m, campos, 4),
         "msg_trace_handle_OK: N\xFAmeros de params. incorreto."},
        {p.msg_trace_handle_ERROR_DEST(id, id, 1, &m, campos, 4),
         "msg_trace_handle_ERROR_DEST: N\xFAmeros de params. incorreto."},
    };
    std::string quer;
    for (const auto& c : casos) {
        EXPECT_EQ(c.resposta, 0) << c.linha;
        if (*c.linha) quer += std::string("LogMailFileParser::") + c.linha + "\r\n";
    }
    EXPECT_EQ(traco.texto(), quer);
    EXPECT_EQ(m.recipients.first(), nullptr);
    EXPECT_EQ(hora.error + hora.msgs_int + hora.msgs_ext, 0u);
    EXPECT_EQ(p.msgs_per_hour_handle_DELIVER(1, &hora, id), 1);
    EXPECT_EQ(p.msgs_per_hour_handle_OK(1, id, nullptr, nullptr, 0), 1);
}

// Between two events the compact file is a stream like any other: whoever writes to it, closes it
// or puts another in its place finds every line where it belongs. A line may be of any length.
TEST(Eventos, compactoEUmStream) {
    const std::string longo(MemoriaDeStream::bytes + 5, 'r');
    Memoria compacto, outro;
    LogMailFileParser p;
    p.compact_logfile = compacto.stream;
    p.handle_MAILQ_END("1", "A");
    EXPECT_EQ(compacto.texto(), "1 1 4 A\n");
    std::fputs("marca\n", p.compact_logfile);
    p.handle_MAILQ_OK("2", "A", longo.c_str());
    p.compact_logfile = outro.stream;
    p.handle_MAILQ_END("3", "A");
    EXPECT_EQ(compacto.texto(), "1 1 4 A\nmarca\n2 1 2 A " + longo + "\n");
    std::fclose(std::exchange(outro.stream, nullptr));
    EXPECT_STREQ(outro.buffer(), "3 1 4 A\n");
    p.compact_logfile = nullptr;
    EXPECT_EQ(p.handle_MAILQ_END("4", "A"), 1);
    p.consolidate(nullptr);
}

// The day's own stream, taken away in the middle of the day by a parser that inherits, stays whole
// and in order, also when it outlives the parser.
TEST(Eventos, compactoLevadoEmbora) {
    struct Leva : LogMailFileParser {
        int eventos = 0;
        std::FILE* levado = nullptr;
        int parser() override {
            if (++eventos == 3) levado = std::exchange(compact_logfile, nullptr);
            return LogMailFileParser::parser();
        }
    };
    Rele r;
    r.mensagem(dia + " 10:00:00", "A").mensagem(dia + " 11:00:00", "B");
    std::FILE* levado;
    {
        Leva p;
        r.consolida(p, amanha);
        levado = p.levado;
    }
    ASSERT_NE(levado, nullptr);
    Rele outro;  // whose files are written meanwhile
    outro.mensagem(dia + " 12:00:00", "C").consolida(amanha);
    EXPECT_TRUE(outro.compacto(dia).ends_with(" 2 4 C\n"));
    std::fputs("depois\n", levado);
    std::fclose(levado);
    const std::string t = T(dia + " 10:00:00");
    EXPECT_EQ(r.compacto(dia), t + " 1 1 A INTERNO ana 100\n" + t + " 2 7 A\ndepois\n");
}

// parser() handles the line that is there when it is called: one that was changed, and one that was
// never read, like those of the log.
TEST(Eventos, linhaDeQuemHerda) {
    struct Troca : LogMailFileParser {
        int parser() override {
            char* const id = std::strstr(osBuf.lbuf, "Msg A");
            if (!id) return LogMailFileParser::parser();
            id[4] = 'Z';
            LogMailFileParser::parser();
            id[4] = 'Y';
            return LogMailFileParser::parser();
        }
    };
    Rele r;
    r.mensagem(dia + " 10:00:00", "A").mensagem(dia + " 11:00:00", "B");
    Troca p;
    r.consolida(p, amanha);
    const std::string lido = r.compacto(dia);
    EXPECT_EQ(lido.find(" A"), std::string::npos) << lido;
    for (const char* linha : {"1 1 Z INTERNO", "2 4 Z\n", "1 1 Y INTERNO", "2 4 Y\n", "2 4 B\n"})
        EXPECT_NE(lido.find(linha), std::string::npos) << linha << lido;
    EXPECT_EQ(r.totais(dia), "0 0 0 0 3 300 0 0");
}

// A line without a readable stamp is followed but belongs to no hour.
TEST(Eventos, horaIlegivel) {
    Rele r;
    r.linha(dia + " 05:00:00", "MAILQ SUBMIT Msg A de INTERNO remetente ana com 100 bytes")
        .linha(dia + " 05:00:00", "MAILSMTP DELIVER Msg A")
        .bruto("Sun Mar 15 99:00:00 2009: 07 MAILSMTP OK Msg A para rui\n")
        .bruto("Sun Mar 15 99:00:00 2009: 07 MAILSMTP END Msg A\n")
        .bruto("Sun Mar 15 99:00:00 2009: 07 MAILSMTP OK Msg B para rui\n");
    r.consolida(amanha);
    EXPECT_EQ(r.compacto(dia).substr(r.compacto(dia).find("0 2 2")),
              "0 2 2 A rui\n0 2 4 A\n0 2 2 B rui\n");
    // Nobody counted: the header spans the whole day; A stays in flight, without its sender.
    EXPECT_EQ(r.estatistica(dia).substr(0, 22), std::to_string(hora(dia + " 00:00:00")) + " " +
                                                    std::to_string(hora(dia + " 23:59:59")) + " ");
    EXPECT_EQ(r.ultimo(),
              "1 Sun Mar 15 00:00:00 2009\n"
              "\r\nB 0 N N N N 0 0 (null)"
              "\r\nA 100 N N N S " +
                  std::to_string(hora(dia + " 05:00:00")) + " " +
                  std::to_string(hora(dia + " 05:00:00")) + " ana");
}

}  // namespace
