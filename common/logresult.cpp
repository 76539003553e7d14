// The result set between a report and the script.
#include "common/logresult.h"

namespace {

// Moves a cursor one on: from none to the first, from the last to none. False when it is then none.
template <class T>
bool avanca(const DList<T>& lista, T*& cursor) {
    cursor = cursor ? cursor->next : lista.first();
    return cursor != nullptr;
}

template <class T>
bool recua(const DList<T>& lista, T*& cursor) {
    cursor = cursor ? cursor->prev : lista.last();
    return cursor != nullptr;
}

}  // namespace

LogResult::LogResult() {
    // Assigned once a row: the record is kept from one to the next.
    for (VeltoString* s :
         {&usuario, &msg_id, &msg_sendername, &recipient_status_msg, &recipient_name})
        s->setAllocationPolicy(40, 10);
    limpa();
    msg_traced = new Msg("0", 0);  // last: nothing would release it if a later step threw
}

LogResult::~LogResult() {
    apaga_todos(Lista_usu);
    apaga_todos(msgs_day);
    apaga_todos(msgs_hour);
    for (MsgsDayUser* u = msgs_user_day.first(); u; u = u->next) apaga_todos(u->m_day);
    apaga_todos(msgs_user_day);
    for (UserMsgs* u = user_msgs.first(); u; u = u->next) delete[] u->sendername;
    apaga_todos(user_msgs);
    delete msg_traced;
}

void LogResult::reset() {
    Msg* novo = new Msg("0", 0);
    delete msg_traced;
    msg_traced = novo;
    limpa();
}

void LogResult::limpa() {
    for (VeltoString* s :
         {&last_error, &usuario, &msg_id, &msg_sendername, &recipient_status_msg, &recipient_name})
        *s = "";
    sent = sent_bytes = recv = recv_bytes = current_period = 0;
    msgs_int = msgs_ext = bytes_int = bytes_ext = 0;
    att_blocked = spam = virus = error = 0;
    interna = enviada = timestamp = recipient_time = 0;
    msg_time = msg_end_time = msg_size = 0;
    current_user = nullptr;
    current_user_msg = nullptr;
    current_msgs_day = nullptr;
    current_msgs_user_day = nullptr;
    current_msgs_hour = nullptr;
    current_recipient = nullptr;
    last_report = NONE;
}

int LogResult::fetch() {
    // The byte totals and the message's values stay: after the end of a walk, pages find the last
    // ones.
    usuario = "";
    sent = sent_bytes = recv = recv_bytes = current_period = 0;
    spam = virus = att_blocked = error = msgs_int = msgs_ext = timestamp = 0;
    switch (last_report) {
        case MSGS_PER_DAY:
            return copia_dia();
        case MSGS_PER_USER:
            return avanca(Lista_usu, current_user) ? copia_usuario() : 0;
        case MSGS_PER_HOUR:
            return avanca(msgs_hour, current_msgs_hour) ? copia(*current_msgs_hour) : 0;
        case USERMSGS:
            return recua(user_msgs, current_user_msg) ? copia(*current_user_msg) : 0;
        case MSGTRACE:
            return copia_trace();
        default:
            return 0;
    }
}

int LogResult::fetch_recipient() {
    if (msg_traced->id[0] == '0' && msg_traced->id[1] == '\0') return 0;
    if (!avanca(msg_traced->recipients, current_recipient)) return 0;
    recipient_time = static_cast<long>(current_recipient->last_time);
    recipient_status_msg = current_recipient->status_msg;
    recipient_name = current_recipient->username;
    error = current_recipient->error;
    return 1;
}

int LogResult::fetch_msgs_per_day() {
    MsgsDayUser* u = current_msgs_user_day;
    return u && avanca(u->m_day, u->current_m_day) ? copia(*u->current_m_day) : 0;
}

int LogResult::copia(const MsgsData& d) {
    msgs_int = static_cast<long>(d.msgs_int);
    msgs_ext = static_cast<long>(d.msgs_ext);
    spam = static_cast<long>(d.spam);
    error = static_cast<long>(d.error);
    virus = static_cast<long>(d.virus);
    att_blocked = static_cast<long>(d.att_blocked);
    timestamp = static_cast<long>(d.timestamp);
    bytes_int = static_cast<long>(d.bytes_int);
    bytes_ext = static_cast<long>(d.bytes_ext);
    return 1;
}

// Totals come before users: rows that an earlier report left in msgs_day hide the users of this
// one.
int LogResult::copia_dia() {
    if (msgs_day.first()) return avanca(msgs_day, current_msgs_day) ? copia(*current_msgs_day) : 0;
    if (!avanca(msgs_user_day, current_msgs_user_day)) return 0;
    usuario = current_msgs_user_day->username;
    return 1;
}

int LogResult::copia_usuario() {
    const usuStats s = current_user->getStats(-1);
    usuario = current_user->getName();
    sent = static_cast<long>(s.sent);
    sent_bytes = static_cast<long>(s.bytes_sent);
    recv = static_cast<long>(s.recv);
    recv_bytes = static_cast<long>(s.bytes_recv);
    spam = static_cast<long>(s.spam);
    error = static_cast<long>(s.error);
    virus = static_cast<long>(s.virus);
    att_blocked = static_cast<long>(s.att_blocked);
    return 1;
}

int LogResult::copia(const UserMsgs& m) {
    msg_time = static_cast<long>(m.start_time);
    msg_end_time = static_cast<long>(m.end_time);
    msg_size = static_cast<long>(m.size);
    msg_id = m.msg_id;
    msg_sendername = m.sendername;
    error = m.error;
    virus = m.virus;
    spam = m.spam;
    enviada = m.enviada == 'S';
    interna = m.int_user;
    return 1;
}

int LogResult::copia_trace() {
    const Msg& m = *msg_traced;
    msg_id = m.id;
    msg_size = static_cast<long>(m.size);
    msg_time = static_cast<long>(m.start_time);
    msg_end_time = static_cast<long>(m.end_time);
    msg_sendername = m.sendername;
    fatal_error = m.fatal_error;
    error = m.error;
    virus = m.virus;
    spam = m.spam;
    interna = m.int_user;
    return 0;
}
