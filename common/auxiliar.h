// Words of a log line: what they mean, how a line is split, and the lookups over the records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>

#include "common/Msg.h"
#include "common/Usuario.h"
#include "common/relatorio.h"
#include "misc/dlist.h"
#include "misc/tabela.h"

// The program that wrote a line. The values stand in compact files.
enum Agent : std::int32_t {
    AGENT_UNKNOWN = 0,
    MAILQ = 1,
    MAILSMTP = 2,
    POPSRV = 3,
    ANTIVIRUS = 4,
    SPAMCATCHER = 5,
};
constexpr std::size_t num_agents = 6;

// The event of a line. The values stand in compact files.
enum Status : std::int32_t {
    STATUS_UNKNOWN = 0,
    SUBMIT = 1,
    OK = 2,
    READ = 3,
    END = 4,
    ERROR_CONNECT = 5,
    ERROR_CONNECTION = 6,
    DELIVER = 7,
    ERROR_SENDER = 8,
    ERROR_DEST = 9,
    ERROR_FINAL = 10,
    ERROR_DATA = 11,
    ERROR_HELO = 12,
    ERROR_SIZE = 13,
    ERROR_DOMAIN = 14,
    VIRUS = 15,
    ARQUIVO = 16,
    RETRY_DEST = 17,
    SPAM = 18,
    COPY = 19,
    TAGGED = 20,
    QUARANTINE = 21,
    DISCARD = 22,
};
constexpr std::size_t num_status = 23;

static_assert(MAILQ == 1 && MAILSMTP == 2 && POPSRV == 3 && SUBMIT == 1 && OK == 2 && READ == 3 &&
                  END == 4 && ERROR_CONNECT == 5 && DELIVER == 7 && ERROR_SENDER == 8 &&
                  ERROR_DEST == 9 && ERROR_FINAL == 10 && ERROR_DATA == 11 && ERROR_HELO == 12 &&
                  ERROR_SIZE == 13 && ERROR_DOMAIN == 14 && VIRUS == 15 && RETRY_DEST == 17 &&
                  SPAM == 18,
              "on disk in every compact file ever written");

// Where a sender is.
enum UserType : std::int32_t {
    USER_UNKNOWN = 0,
    INTERNO = 1,  // a local user
    EXTERNO = 2,
};

// Splits a dispatcher line in place at runs of blanks, up to LF, CR or NUL, and stores at most
// `max` words; answers how many. The word at `line` itself is not stored: callers pass a blank, or
// a word to skip. A CR behind a blank is a word. The line ends where the scan stopped, so the word
// that reaches `max` is cut to its first character: ask for one more than needed.
int getTokens(char* line, char** tokens, int max);

// Cuts `str` in place at each `sep` and answers its pieces, ended by a null, as a new array (the
// caller deletes the array, not the pieces); null, and `count` untouched, for an empty or blank
// text. A line feed at the end is dropped. Pieces are not trimmed and may be empty. With a blank as
// separator, leading blanks are not counted as pieces and the last pieces are lost for them.
char** explode(char* str, char sep, int* count);

// The splitting of explode(), into an array of the caller's with room for one piece more than `str`
// has separators. Answers the count, 0 for an empty or blank text; no null ends the array.
int reparte(char* str, char sep, char** pedacos);

// Unix seconds from hexadecimal text (field 0 of a compact line); 0 for a null or empty text.
time_t strhex_to_time(const char* s);

// Classify by the telling letters only; null is unknown. "ERROR_CONNECTION" answers ERROR_CONNECT
// and "RETRY_DEST" READ, and no word answers SPAM: the day files already written rely on it.
Agent getAgent(const char* word);
Status getStatus(const char* word);
UserType getUserType(const char* word);

// Lookups: the first match from the head, or null. With `prefix` a user also matches when the
// start of `name` equals his whole stored name, ASCII letter case aside (an empty stored name
// matches everybody); otherwise, and in all the others, names must be equal byte for byte.
Usuario* procurar_usuario(const DList<Usuario>* lista, const char* name, bool prefix);
Usuario* procurar_usuario(const Tabela<Usuario>* tabela, const char* name, bool prefix);
MsgsDayUser* procurar_usuario(const DList<MsgsDayUser>* lista, const char* name);
Msg* procurar_msg(const DList<Msg>* lista, const char* id);
Msg* procurar_msg(const Tabela<Msg>* tabela, const char* id);
UserMsgs* procurar_msg(const DList<UserMsgs>* lista, const char* id);
RCPTO* procurar_recipient(const DList<RCPTO>* lista, const char* name);
Domain* procurar_dominio(const DList<Domain>* lista, const char* domain);

// True when the first `n` bytes are equal, ASCII letter case aside, in every locale.
bool igual_sem_caixa(const char* a, const char* b, std::size_t n);

// Orders two InputFiles by their time, oldest first, as qsort asks.
int cmp_func(const void* a, const void* b);
