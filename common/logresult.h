// The result set between a report and the script: rows, one cursor a kind, the current row's
// values.
#pragma once

#include <ctime>

#include "borland/vtstring.h"
#include "common/Msg.h"
#include "common/Usuario.h"
#include "common/relatorio.h"

// Filled by a report, then walked row by row: each fetch moves one cursor and copies one row into
// the values below. Owns everything in its lists and the traced message.
//
// Lists are never emptied: rows of one report stay, and come first, when another of the same kind
// is run. A walk that has answered 0 begins again with the next fetch.
class LogResult {
  public:
    VeltoString usuario;       // user of the row
    VeltoString last_error;    // text of a report that was refused
    ReportType last_report;    // decides what fetch() walks
    DList<Usuario> Lista_usu;  // walked for MSGS_PER_USER, which no report fills
    Usuario* current_user;
    long sent, sent_bytes;  // of a user, messages and bytes
    long recv, recv_bytes;
    long spam, virus;  // counts, or flags of one message
    long att_blocked;
    long error;               // count, or flag of a message or recipient
    long fatal_error = 0;     // flag of the traced message; survives reset()
    long msgs_int, msgs_ext;  // messages of local and of outside users
    long bytes_int, bytes_ext;
    long current_period;          // always 0
    long timestamp;               // of the day or hour, Unix seconds
    long interna;                 // 1: the message's sender is a local user
    long msg_time, msg_end_time;  // Unix seconds
    long msg_size;                // bytes
    VeltoString msg_id;
    VeltoString msg_sendername;
    DList<MsgsData> msgs_day;
    MsgsData* current_msgs_day;
    DList<MsgsDayUser> msgs_user_day;
    MsgsDayUser* current_msgs_user_day;
    DList<MsgsData> msgs_hour;
    MsgsData* current_msgs_hour;
    DList<UserMsgs> user_msgs;
    UserMsgs* current_user_msg;
    long enviada;               // 1: sent by a listed sender, 0: received by a listed recipient
    time_t ts = 0;              // not used
    Msg* msg_traced = nullptr;  // what a trace fills; owned, never null
    RCPTO* current_recipient;
    long recipient_time;  // Unix seconds
    VeltoString recipient_status_msg;
    VeltoString recipient_name;

    LogResult();
    ~LogResult();
    LogResult(const LogResult&) = delete;
    LogResult& operator=(const LogResult&) = delete;

    // Prepares for a report: clears values and cursors and takes a new traced message, whose id is
    // "0". The lists and fatal_error stay as they are.
    void reset();

    // The set's address, by which scripts name it.
    long getHandle() const { return reinterpret_cast<long>(this); }

    // Go to the next row and copy it. 1 when there was one, 0 at the end or when there is nothing.
    // For a trace, fetch() copies the message and answers 0: there are no rows to loop over.
    int fetch();
    // The next recipient of the traced message.
    int fetch_recipient();
    // The next day of the user that fetch() went to.
    int fetch_msgs_per_day();

  private:
    void limpa();
    int copia(const MsgsData& d);
    int copia(const UserMsgs& m);
    int copia_dia();
    int copia_usuario();
    int copia_trace();
};
