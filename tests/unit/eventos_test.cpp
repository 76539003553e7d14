// One log line at a time: what each event writes into the compact file and counts.
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <utility>

#include "misc/escrita.h"
#include "tests/unit/apoio/relato.h"

namespace {

using namespace std::string_literals;

const std::string agora = "15 10:20:30", amanha = "16 12";

// Every row of the dispatch table, and what does not fit it, with the compact line behind its time;
// "-" for none.
TEST(Eventos, linhasCompactas) {
    const auto tabela = casos(R"(
MAILQ SUBMIT Msg A de INTERNO remetente ana@x com 7 bytes =>  1 1 A INTERNO ana@x 7
MAILQ SUBMIT Msg A de POP remetente com 8 bytes =>  1 1 A POP  8
MAILQ SUBMIT Msg A de POP remetente ana com => -
MAILQ DELIVER Msg A =>  2 7 A
MAILQ OK Msg A para rui =>  1 2 A rui
MAILQ OK Msg A para => -
MAILQ END Msg A =>  1 4 A
MAILQ SPAM Msg A B =>  1 SPAM Msg A B
MAILSMTP OK Msg A para rui@y =>  2 2 A rui@y
MAILSMTP END Msg A =>  2 4 A
MAILSMTP END Msg => -
MAILSMTP ERROR_CONNECT Msg A em a y.test =>  2 5 A y.test
MAILSMTP ERROR_CONNECTION Msg A em a y.test =>  2 5 A y.test
MAILSMTP DELIVER Msg A tentativa 1 =>  2 7 A
MAILSMTP ERROR_SENDER Msg A a b c d relay =>  2 8 A relay
MAILSMTP ERROR_DEST Msg A para rui@y =>  2 9 A rui@y
MAILSMTP ERROR_DOMAIN Msg A Dominio y.test =>  2 14 A y.test
MAILSMTP ERROR_DOMAIN Msg A dominio y.test => -
MAILSMTP ERROR_DOMAIN Msg A => -
MAILSMTP ERROR_SIZE Msg A =>  2 13 A
MAILSMTP ERROR_HELO Msg A com mx.y =>  2 12 A mx.y
MAILSMTP ERROR_DATA Msg A =>  2 11 A
MAILSMTP ERROR_FINAL Msg 0123456789ABCDEF 550 nao existe =>  2 10 0123456789ABCDEF 550 nao existe
MAILSMTP ERROR_FINAL Msg A =>  2 10 A=20
MAILSMTP RETRY_DEST Msg A para x =>  2  RETRY_DEST Msg A para x
POPSRV READ usr ana 3 =>  3 3 ana
POPSRV READ usr =>  3 3 (null)
POPSRV LOGIN ana =>  3  LOGIN ana
ANTIVIRUS VIRUS Msg A =>  2 15 A
ANTIVIRUS OK Msg A => -
SPAMCATCHER COPY Msg A =>  2 18 A
SPAMCATCHER TAGGED Msg A =>  2 18 A
SPAMCATCHER QUARANTINE Msg A =>  2 18 A
SPAMCATCHER DISCARD Msg A =>  2 18 A
SPAMCATCHER SPAM Msg A => -
CRON inicio =>  0 nicio
 =>  0=20
)");
    Rele r;
    std::string quer;
    for (const auto& [palavras, compacta] : tabela) {
        r.linha(agora, palavras);
        if (compacta != "-") quer += T(agora) + compacta + "\n";
    }
    r.consolida(amanha);
    EXPECT_EQ(r.compacto("15"), quer);
}

// Lines whose end or length is not what it should be, behind their stamp.
TEST(Eventos, linhasMalFeitas) {
    const std::string h = "Sun Mar 15 10:20:30 2009", t = T(agora), nul(1, '\0');
    const std::string longo(300, 'x'), enorme(3000, 'y');
    Rele r;
    for (const std::string& linha : {
             ": 07 MAILQ END Msg A\r\n"s,                  // CR ends the id
             ": 07 MAILQ END Msg \r\n"s,                   // CR behind a blank is a word
             ": 07 CRON aviso\r\n"s,                       // a copied text keeps its own line end
             ": 07 CRON ab" + nul + "b\n",                 // NUL ends the line, without its LF
             "\n"s,                                        // nothing at column 35
             ": 07 MAILQ OK Msg B para " + longo + "\n",   // words end at 299 bytes
             ": 07 CRON x" + nul + "y\n",                  // NUL at column 35
             ": 07 MAILQ OK Msg D para ru" + nul + "i\n",  // NUL ends the word too
             ": 07 MAILQ OK Msg D para r\tu\x01i\n"s,      // other controls belong to it
             ": 07 MAILQ OK Msg D para \n"s,               // a blank at the end begins none
             ": 07 MAILSMTP XUTRO " + enorme + "\n"        // over 2046 bytes: another line
         })
        r.bruto(h + linha);
    r.mensagem("15 11", "C").consolida(amanha);
    EXPECT_EQ(r.compacto("15"), t + " 1 4 A\n" + t + " 1 4 \r\n" + t + " 0 viso\r\n" + t + " 0 b" +
                                    t + " 0 \n" + t + " 1 2 B " + longo.substr(0, 299 - 49) + "\n" +
                                    t + " 0 \n" + t + " 1 2 D ru\n" + t + " 1 2 D r\tu\x01i\n" + t +
                                    " 2 " + ("MAILSMTP XUTRO " + enorme).substr(8, 2046 - 37));
    EXPECT_NE(r.traco().find("Falha no PARSER, linha = \"" + h + ": 07 CRON aviso\r\n\""),
              std::string::npos);
}

// What the day counts, by the first line of its statistics file (spam, virus, error, att_blocked,
// msgs_int, bytes_int, msgs_ext, bytes_ext), and ana's counters in the tenth hour. "+" submits A
// for her, "!" begins its delivery, "ok" and "." are its OK and its END.
TEST(Eventos, contagemDoDia) {
    const std::pair<const char*, const char*> palavras[] = {
        {"+", "MAILQ SUBMIT Msg A de INTERNO remetente ana com 100 bytes"},
        {"fora", "MAILQ SUBMIT Msg A de POP remetente eva@y com 100 bytes"},
        {"31bits", "MAILQ SUBMIT Msg A de INTERNO remetente ana com 4294967295 bytes"},
        {"!", "MAILSMTP DELIVER Msg A"},
        {"ok", "MAILSMTP OK Msg A para rui@y.test"},
        {"ok:z", "MAILSMTP OK Msg A para b@z"},
        {"ok:rui", "MAILSMTP OK Msg A para rui"},
        {".", "MAILSMTP END Msg A"},
        {"spam", "SPAMCATCHER TAGGED Msg A"},
        {"virus", "ANTIVIRUS VIRUS Msg A"},
        {"conecta", "MAILSMTP ERROR_CONNECT Msg A em a y.test"},
        {"dest", "MAILSMTP ERROR_DEST Msg A para rui@y.test"},
        {"dados", "MAILSMTP ERROR_DATA Msg A"},
        {"final", "MAILSMTP ERROR_FINAL Msg A"},
        {"grande", "MAILSMTP ERROR_SIZE Msg A"},
        {"dominio", "MAILSMTP ERROR_DOMAIN Msg A Dominio y.test"},
    };
    const auto tabela = casos(R"(
+ ! ok . => 0 0 0 0 1 100 0 0/1 100 0 0 0 0 0 0
fora ! ok . => 0 0 0 0 0 0 1 100/
# Without an attempt the day does not count it.
+ . => 0 0 0 0 0 0 0 0/1 100 0 0 0 0 0 0
# Spam counts twice, and does not end a message; a virus does.
+ ! spam ok . => 1 0 0 0 1 100 0 0/2 200 0 0 0 1 0 0
+ ! spam => 0 0 0 0 0 0 0 0/1 100 0 0 0 1 0 0
+ ! virus => 0 1 0 0 1 100 0 0/1 100 0 0 1 0 0 0
virus => 0 0 0 0 0 0 0 0/
# An error that was mended; one of another domain stays, and so does a refused recipient.
+ ! conecta conecta ok . => 0 0 0 0 1 100 0 0/1 100 0 0 0 0 2 0
+ ! conecta ok:z . => 0 0 1 0 1 100 0 0/1 100 0 0 0 0 1 0
+ ! dest ok . => 0 0 1 0 1 100 0 0/1 100 0 0 0 0 1 0
+ ! dest . => 0 0 1 0 0 0 0 0/1 100 0 0 0 0 1 0
# Errors of messages that did not end.
+ ! conecta => 0 0 1 0 0 0 0 0/0 0 0 0 0 0 1 0
+ ! ok conecta => 0 0 1 0 1 100 0 0/0 0 0 0 0 0 1 0
+ final => 0 0 1 0 0 0 0 0/0 0 0 0 0 0 1 0
+ grande => 0 0 0 0 0 0 0 0/0 0 0 0 0 0 1 0
+ ! dominio => 0 0 1 0 0 0 0 0/
conecta dest => 0 0 0 0 0 0 0 0/
# Each delivery mends one of these, one to a name without a domain no more.
+ ! dados dados ok . => 0 0 0 0 1 100 0 0/1 100 0 0 0 0 2 0
+ ! dados dados ok:rui . => 0 0 1 0 1 100 0 0/1 100 0 0 0 0 2 0
31bits ! . => 0 0 0 0 1 -1 0 0/1 -1 0 0 0 0 0 0
)");
    for (const auto& [caso, quer] : tabela) {
        Rele r;
        std::istringstream passos(caso);
        for (std::string passo; passos >> passo;)
            for (const auto& [nome, linha] : palavras)
                if (passo == nome) r.linha("15 10", linha);
        r.linha("15 10:59:59", "POPSRV READ usr m x").consolida(amanha);
        std::string ana = r.usuario("15", "ana");
        if (!ana.empty()) ana = ana.substr(4, ana.size() - 5);
        EXPECT_EQ(r.totais("15") + "/" + ana, quer) << caso;
    }
}

TEST(Eventos, destinatariosContamOQueRecebem) {
    Rele r;
    r.linha("15 00:59:59", "MAILQ SUBMIT Msg A de INTERNO remetente ana com 100 bytes")
        .linha("15 00:59:59", "MAILQ OK Msg A para rui")
        .linha("15 01", "MAILSMTP OK Msg A para rui")
        .linha("15 23:59:59", "MAILQ OK Msg DESCONHECIDA para rui");
    r.consolida(amanha);
    EXPECT_EQ(r.usuario("15", "rui"),
              "0: 0 0 1 100 0 0 0 0;1: 0 0 1 100 0 0 0 0;23: 0 0 1 0 0 0 0 0;");
}

// A handler refuses a missing text: nothing is written, nothing changes, the trace names it.
TEST(Eventos, recusas) {
    using P = LogMailFileParser;
    const std::pair<int (P::*)(const char*, const char*, const char*), const char*> tres[] = {
        {&P::handle_MAILQ_OK, "MAILQ:OK"},
        {&P::handle_MAILSMTP_OK, "MAILSMTP:OK"},
        {&P::handle_MAILSMTP_ERROR_CONNECT, "MAILSMTP:CONNECT"},
        {&P::handle_MAILSMTP_ERROR_SENDER, "MAILSMTP:ERROR_SENDER"},
        {&P::handle_MAILSMTP_ERROR_DEST, "MAILSMTP:ERROR_DEST"},
        {&P::handle_MAILSMTP_ERROR_FINAL, "MAILSMTP:ERROR_FINAL"},
        {&P::handle_MAILSMTP_ERROR_HELO, "MAILSMTP:ERROR_HELO"},
        {&P::handle_MAILSMTP_ERROR_DOMAIN, "MAILSMTP:ERROR_DOMAIN"},
        {&P::handle_MAILSMTP_RETRY_DEST, "MAILSMTP_RETRY_DEST"},
    };
    const std::pair<int (P::*)(const char*, const char*), const char*> dois[] = {
        {&P::handle_MAILQ_END, "MAILQ:END"},
        {&P::handle_MAILSMTP_DELIVER, "MAILSMTP:DELIVER"},
        {&P::handle_MAILSMTP_END, "MAILSMTP:END"},
        {&P::handle_MAILSMTP_ERROR_DATA, "MAILSMTP:ERROR_DATA"},
        {&P::handle_MAILSMTP_ERROR_SIZE, "MAILSMTP:ERROR_SIZE"},
        {&P::handle_SPAM, "SPAM"},
        {&P::handle_ANTIVIRUS_VIRUS, "ANTIVIRUS_VIRUS"},
    };
    Memoria traco, compacto;
    P p;
    p.debugOut = traco.stream;
    p.compact_logfile = compacto.stream;
    std::string quer;
    const auto recusou = [&](int resposta, const char* nome) {
        EXPECT_EQ(resposta, 0) << nome;
        quer += std::string("LogMailFileParser::handle_") + nome + " : Params. inv\xE1lidos.\r\n";
    };
    for (const auto& [handler, nome] : tres) recusou((p.*handler)("1", "A", nullptr), nome);
    for (const auto& [handler, nome] : dois) recusou((p.*handler)(nullptr, "A"), nome);
    recusou(p.handle_MAILQ_SUBMIT("1", "A", "INTERNO", nullptr, "5"), "MAILQ:SUBMIT");
    EXPECT_EQ(traco.texto(), quer);
    EXPECT_EQ(compacto.texto(), "");
    EXPECT_FALSE(p.Lista_msg.first() || p.Lista_usu.first());
    p.compact_logfile = nullptr;
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
// and in order, also when it outlives the parser. parser() handles the line that is there when it
// is called: one that was changed, and one that was never read, like those of the log.
TEST(Eventos, quemHerda) {
    struct Herda : LogMailFileParser {
        std::FILE* levado = nullptr;
        int eventos = 0, em = 3;
        int parser() override {
            if (++eventos == em) levado = std::exchange(compact_logfile, nullptr);
            char* const id = std::strstr(osBuf.lbuf, "Msg A");
            if (!id) return LogMailFileParser::parser();
            id[4] = 'Z';
            LogMailFileParser::parser();
            id[4] = 'Y';
            return LogMailFileParser::parser();
        }
    };
    Rele r, outro;
    r.mensagens({"15 10 A", "15 11 B"});
    std::FILE* levado;
    {
        Herda p;
        r.consolida(p, amanha);
        levado = p.levado;
    }
    ASSERT_NE(levado, nullptr);
    outro.mensagem("15 12", "C").consolida(amanha);  // whose files are written meanwhile
    EXPECT_TRUE(outro.compacto("15").ends_with(" 2 4 C\n"));
    std::fputs("depois\n", levado);
    std::fclose(levado);
    std::string quer;
    for (const char* l :
         {" 1 1 Z INTERNO ana 100\n", " 1 1 Y INTERNO ana 100\n", " 2 7 Z\n", " 2 7 Y\n"})
        quer += T("15 10") + l;
    EXPECT_EQ(r.compacto("15"), quer + "depois\n");
    EXPECT_EQ(r.totais("15"), "0 0 0 0 3 300 0 0");
}

// A line without a readable stamp is followed but belongs to no hour.
TEST(Eventos, horaIlegivel) {
    Rele r;
    r.linha("15 05", "MAILQ SUBMIT Msg A de INTERNO remetente ana com 100 bytes")
        .linha("15 05", "MAILSMTP DELIVER Msg A");
    for (const char* palavras : {"OK Msg A para rui", "END Msg A", "OK Msg B para rui"})
        r.bruto(std::string("Sun Mar 15 99:00:00 2009: 07 MAILSMTP ") + palavras + "\n");
    r.consolida(amanha);
    EXPECT_TRUE(r.compacto("15").ends_with("\n0 2 2 A rui\n0 2 4 A\n0 2 2 B rui\n"));
    // Nobody counted: the header spans the whole day; A stays in flight, without its sender.
    const auto t = [](const char* quando) { return std::to_string(hora(quando)); };
    EXPECT_TRUE(r.estatistica("15").starts_with(t("15") + " " + t("15 23:59:59") + " "));
    EXPECT_EQ(r.ultimo(),
              "1 Sun Mar 15 00:00:00 2009\n\r\nB 0 N N N N 0 0 (null)\r\nA 100 N N N S " +
                  t("15 05") + " " + t("15 05") + " ana");
}

}  // namespace
