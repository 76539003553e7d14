// The result set: cursors, what a reset and a fetch clear, what they leave.
#include <gtest/gtest.h>

#include "tests/unit/apoio/relato.h"

namespace {

void poe(DList<MsgsData>& lista, std::uint32_t n) {
    lista.putLast(new MsgsData{nullptr, nullptr, static_cast<time_t>(1000 + n), n, 2 * n, 3 * n,
                               4 * n, n, n, n, n});
}

void poe(LogResult& r, const char* id, char enviada, const char* de) {
    UserMsgs* u = new UserMsgs{};
    std::strcpy(u->msg_id, id);
    u->enviada = enviada;
    u->sendername = copia_texto(de);
    u->size = 0x80000001u;
    u->start_time = 5;
    u->end_time = 6;
    u->spam = u->int_user = true;
    r.user_msgs.putFirst(u);
}

// The answers of the next fetches, each with what `valor` says of the set.
template <class F>
std::string anda(LogResult& r, int (LogResult::*move)(), int vezes, F valor) {
    std::string s;
    while (vezes--) {
        const int linha = (r.*move)();
        s += (linha ? "1:" : "0:") + valor(r) + " ";
    }
    return s;
}

std::string carimbo(const LogResult& r) {
    return std::to_string(r.timestamp);
}
std::string id(const LogResult& r) {
    return r.msg_id.c_str();
}

// After the last row a 0, then from the beginning again.
TEST(LogResult, cursores) {
    LogResult r;
    EXPECT_EQ(r.fetch() + r.fetch_recipient() + r.fetch_msgs_per_day(), 0);
    for (const std::uint32_t n : {1, 2, 3}) {
        poe(r.msgs_day, n);
        poe(r.msgs_hour, 10 * n);
    }
    poe(r, "A", 'S', "ana");
    poe(r, "B", 's', nullptr);
    for (const char* nome : {"ana", "rui"}) {
        Usuario* u = new Usuario(nome, 24);
        u->incSent(3, 2);
        u->addSentBytes(23, 150);
        u->incRecv(0, 1);
        u->addRecvBytes(5, 7);
        r.Lista_usu.putLast(u);
    }
    const auto usuario = [](const LogResult& l) {
        return l.usuario.c_str() + std::to_string(l.sent) + "," + std::to_string(l.sent_bytes) +
               "," + std::to_string(l.recv) + "," + std::to_string(l.recv_bytes);
    };
    const auto f = &LogResult::fetch;
    EXPECT_EQ(anda(r, f, 1, carimbo), "0:0 ");  // no report yet
    r.last_report = MSGS_PER_DAY;
    EXPECT_EQ(anda(r, f, 6, carimbo), "1:1001 1:1002 1:1003 0:0 1:1001 1:1002 ");
    r.last_report = MSGS_PER_HOUR;  // cursors do not mind each other
    EXPECT_EQ(anda(r, f, 5, carimbo), "1:1010 1:1020 1:1030 0:0 1:1010 ");
    r.last_report = MSGS_PER_DAY;
    EXPECT_EQ(anda(r, f, 2, carimbo), "1:1003 0:0 ");
    r.last_report = USERMSGS;  // from the last to the first
    EXPECT_EQ(anda(r, f, 4, id), "1:A 1:B 0:B 1:A ");
    r.last_report = MSGS_PER_USER;
    EXPECT_EQ(anda(r, f, 4, usuario), "1:ana2,150,1,7 1:rui2,150,1,7 0:0,0,0,0 1:ana2,150,1,7 ");
    r.last_report = MSG_STAT;
    EXPECT_EQ(anda(r, f, 1, carimbo), "0:0 ");
}

TEST(LogResult, valores) {
    LogResult r;
    poe(r.msgs_day, 0x80000000u);
    r.last_report = MSGS_PER_DAY;
    EXPECT_EQ(r.fetch(), 1);
    EXPECT_EQ(r.msgs_int, static_cast<long>(0x80000000u));
    EXPECT_EQ(r.fetch(), 0);
    // The end of a walk clears the counters, not the bytes.
    EXPECT_EQ(r.msgs_int + r.msgs_ext + r.spam + r.virus + r.error + r.att_blocked + r.timestamp,
              0);
    EXPECT_EQ(r.bytes_int, static_cast<long>(0x80000000u));
    poe(r, "B", 's', nullptr);
    poe(r, "A", 'S', "ana");
    r.last_report = USERMSGS;
    EXPECT_EQ(r.fetch(), 1);
    EXPECT_EQ(r.enviada, 0);
    EXPECT_STREQ(r.msg_sendername.c_str(), "");
    EXPECT_EQ(r.fetch(), 1);
    EXPECT_EQ(r.enviada + r.interna + r.spam, 3);
    EXPECT_EQ(r.error + r.virus, 0);
    EXPECT_EQ(r.fetch(), 0);
    EXPECT_STREQ(r.msg_sendername.c_str(), "ana");  // the message stays
    EXPECT_EQ(r.msg_size, static_cast<long>(0x80000001u));
    EXPECT_EQ(r.msg_time * 10 + r.msg_end_time, 56);
}

// Each user's days have a cursor of their own, which even a reset leaves where it stands.
TEST(LogResult, diasDeUsuarios) {
    LogResult r;
    for (const char* nome : {"rui", "ana"}) {
        pede(r, nome);
        poe(r.msgs_user_day.first()->m_day, nome[0]);
        poe(r.msgs_user_day.first()->m_day, 1);
    }
    r.last_report = MSGS_PER_DAY;
    const auto dias = &LogResult::fetch_msgs_per_day;
    const auto nome = [](const LogResult& l) { return std::string(l.usuario.c_str()); };
    EXPECT_EQ(anda(r, dias, 1, carimbo), "0:0 ");
    EXPECT_EQ(anda(r, &LogResult::fetch, 1, nome), "1:ana ");
    EXPECT_EQ(anda(r, dias, 1, carimbo), "1:1097 ");
    EXPECT_EQ(anda(r, &LogResult::fetch, 1, nome), "1:rui ");
    EXPECT_EQ(anda(r, dias, 4, carimbo), "1:1114 1:1001 0:1001 1:1114 ");
    EXPECT_EQ(anda(r, &LogResult::fetch, 2, nome), "0: 1:ana ");
    EXPECT_EQ(anda(r, dias, 1, carimbo), "1:1001 ");
    r.reset();
    EXPECT_EQ(anda(r, dias, 1, carimbo), "0:0 ");
    r.last_report = MSGS_PER_DAY;
    EXPECT_EQ(anda(r, &LogResult::fetch, 1, nome), "1:ana ");
    EXPECT_EQ(anda(r, dias, 2, carimbo), "0:0 1:1097 ");
    // Totals hide the users.
    poe(r.msgs_day, 1);
    EXPECT_EQ(anda(r, &LogResult::fetch, 3, nome), "1: 0: 1: ");
}

TEST(LogResult, traceEReset) {
    LogResult r;
    Msg* m = r.msg_traced;
    std::strcpy(m->id, "X");
    m->size = 9;
    m->fatal_error = m->virus = m->int_user = true;
    for (const char* nome : {"a", "b"}) {
        RCPTO* d = m->addRecipient(nome);
        d->last_time = nome[0];
        d->error = nome[0] == 'a';
        std::strcpy(d->status_msg, "dito");
    }
    r.last_report = MSGTRACE;
    r.last_error = "dito";
    for (int i = 0; i < 2; ++i) EXPECT_EQ(r.fetch(), 0);
    EXPECT_EQ(id(r) + std::to_string(r.msg_size) + r.msg_sendername.c_str(), "X9");
    EXPECT_EQ(r.fatal_error + r.virus + r.interna, 3);
    EXPECT_EQ(r.error + r.spam, 0);
    const auto destino = [](const LogResult& l) {
        return l.recipient_name.c_str() + std::to_string(l.recipient_time) +
               l.recipient_status_msg.c_str() + std::to_string(l.error);
    };
    EXPECT_EQ(anda(r, &LogResult::fetch_recipient, 4, destino),
              "1:a97dito1 1:b98dito0 0:b98dito0 1:a97dito1 ");
    poe(r.msgs_day, 1);
    poe(r, "A", 'S', "ana");
    r.reset();
    EXPECT_STREQ(r.msg_traced->id, "0");
    EXPECT_EQ(r.msg_traced->recipients.first(), nullptr);
    EXPECT_EQ(anda(r, &LogResult::fetch_recipient, 1, destino), "0:00 ");
    EXPECT_EQ(id(r) + r.last_error.c_str() + std::to_string(r.msg_size + r.virus + r.interna), "0");
    EXPECT_EQ(r.fatal_error, 1);  // stays, as do the rows
    EXPECT_TRUE(r.msgs_day.first() && r.user_msgs.first());
    EXPECT_EQ(r.last_report, NONE);
    std::strcpy(r.msg_traced->id, "00");
    r.msg_traced->addRecipient("c");
    EXPECT_EQ(r.fetch_recipient(), 1);  // only "0" itself is nobody
}

}  // namespace
