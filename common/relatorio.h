// What reports take and give: rows, parameters, kinds of report.
#pragma once

#include <cstdint>
#include <ctime>

#include "misc/dlist.h"
#include "misc/texto.h"

class Msg;
class Usuario;

// The last report of a result set.
enum ReportType : std::int32_t {
    NONE = 0,
    MSGS_PER_DAY = 1,
    MSGS_PER_USER = 2,
    MSGS_PER_HOUR = 3,
    USERMSGS = 4,
    MSGTRACE = 5,
    MSG_STAT = 6,
};

// One row of counters, for a day or an hour. All times in Unix seconds.
struct MsgsData {
    MsgsData *prev, *next;
    time_t timestamp;         // start of the day or period
    std::uint32_t msgs_int;   // messages of local users; per user: received
    std::uint32_t msgs_ext;   // messages of outside users; per user: sent
    std::uint32_t bytes_int;  // bytes of msgs_int
    std::uint32_t bytes_ext;  // bytes of msgs_ext
    std::uint32_t virus;
    std::uint32_t spam;
    std::uint32_t error;
    std::uint32_t att_blocked;
};

// One requested user of the messages-per-day report.
struct MsgsDayUser {
    MsgsDayUser *prev = nullptr, *next = nullptr;
    char username[201] = {};            // as the script named him, at most 199 bytes of it
    DList<MsgsData> m_day;              // a row a day that has a line of his, oldest first
    bool has_data = false;              // the row of the day being read exists
    MsgsData* current_m_day = nullptr;  // cursor of the result set
};

// One message of the user-messages report.
struct UserMsgs {
    UserMsgs *prev, *next;
    char msg_id[24];
    char* sendername;    // owned by the row's owner, new char[]
    std::uint32_t size;  // bytes
    time_t start_time;   // submission or acceptance
    time_t last_time;    // latest event
    time_t end_time;
    bool virus, spam, int_user, error;
    char enviada;  // 'S' sent by a listed sender, 'N' received by a listed recipient
    TextoErro str_error;
};

// A local mail domain. A name of 300 bytes has no terminator inside the field.
struct Domain {
    Domain *prev, *next;
    char name[300];
};

// A file to read. A null `file` ends a list.
struct InputFiles {
    char* file;    // full path, new char[], owned by the list's owner
    time_t iTime;  // time of a log's first line; unset for day files
};

// What the compact-file replay hands to a report's handlers; each report fills what its own read.
struct params {
    DList<Usuario>* usuarios;
    DList<Usuario>* remetentes;
    DList<Usuario>* destinatarios;
    DList<MsgsData>* m_day;
    DList<MsgsData>* m_hour;
    DList<UserMsgs>* msgs;
    std::uint32_t min_kb, max_kb;
    Msg* m;  // the traced message
    char* msg_id;
    char* user;
};
