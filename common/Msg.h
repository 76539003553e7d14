// A message in flight through the dispatcher, with its recipients and pending delivery errors.
#pragma once

#include <cstdint>
#include <ctime>

#include "misc/dlist.h"
#include "misc/tabela.h"
#include "misc/texto.h"

class Usuario;

// Kinds of delivery error. There is no value 0.
enum ErrorType : std::int32_t {
    etHELO = 1,
    etSENDER = 2,
    etDOMAIN = 3,
    etCONNECT = 4,
    etDATA = 5,
    etRETRY_DEST = 6,
    etCONNECTION = 7,
    etDEST = 8,
    etSIZE = 9,
    etFINAL = 10,
};

// One recipient of a traced message.
struct RCPTO {
    RCPTO *next = nullptr, *prev = nullptr;
    char username[201] = {};
    time_t last_time = 0;  // Unix seconds of the last event that named this recipient
    bool error = false;
    char status_msg[1025] = {};
};

// One pending error.
struct ErrorInfo {
    ErrorInfo *next = nullptr, *prev = nullptr;
    ErrorType error_type;
    char* error = nullptr;  // owned; null for the kinds that carry no text

    ErrorInfo(ErrorType tipo, const char* texto);
    ~ErrorInfo() { delete[] error; }
    ErrorInfo(const ErrorInfo&) = delete;
    ErrorInfo& operator=(const ErrorInfo&) = delete;
};

// Created by the first event that names its id; lives in the message table until the day after
// which it is finished. Owns its recipients, its errors and the sender's text.
class Msg {
  public:
    Msg *next = nullptr, *prev = nullptr;
    char id[24] = {};            // dispatcher's message id, cut to 23 characters
    char* sendername = nullptr;  // the sender as logged, null until known; define_remetente sets it
    Usuario* sender = nullptr;   // the sender's record when he is a local user; not owned
    DList<RCPTO> recipients;     // in order of addition
    std::uint32_t tries = 0;     // delivery attempts seen this day
    std::uint32_t size = 0;      // bytes
    bool sent = false;           // a recipient accepted it
    bool spam = false;
    bool virus = false;
    bool att_blocked = false;
    bool int_user = false;     // the sender is a local user
    bool error = false;        // delivery errors are pending
    bool old_error = false;    // its errors were counted on an earlier day
    bool fatal_error = false;  // delivery failed for good
    time_t start_time = 0;     // submission, Unix seconds
    time_t last_time = 0;      // last attempt or error
    time_t end_time = 0;       // 0 while in flight
    TextoErro str_error;
    DList<ErrorInfo> error_list;  // newest first

    // `id_` may be null; `inicio` 0 leaves the start unknown.
    Msg(const char* id_, time_t inicio);
    ~Msg();
    Msg(const Msg&) = delete;
    Msg& operator=(const Msg&) = delete;
    static void* operator new(std::size_t n);
    static void operator delete(void* p, std::size_t n) noexcept;

    // Replaces the sender's text by a copy of `nome` (null: unknown), or by a text that others hold
    // too. Nobody else sets or frees it.
    void define_remetente(const char* nome);
    void define_remetente(TextoPartilhado nome);

    // Appends a recipient. Null, and nothing added, for a null name or one over 200 characters.
    // Equal names are not looked for. The answer is owned by the message.
    RCPTO* addRecipient(const char* nome);
    // The first recipient of exactly this name, or null.
    RCPTO* getRecipientByName(const char* nome) const;

    // Records a pending error. With HELO, SENDER, DOMAIN, CONNECT, RETRY_DEST and DEST the text is
    // kept, unless an entry of any kind already has it; DATA and SIZE stack up without a text;
    // CONNECTION and FINAL are never recorded. 0 for a null text, else 1.
    int add_error(ErrorType tipo, const char* texto);
    // Finds an error to remove. HELO, SENDER, DOMAIN, CONNECT, RETRY_DEST and CONNECTION by kind
    // and text, DATA by its kind; DEST, SIZE and FINAL are never found, so a refused recipient
    // stays an error to the message's end. Null when there is none or `texto` is null.
    ErrorInfo* procurar_erro(ErrorType tipo, const char* texto) const;
    // Removes and deletes an entry; 0 for null, else 1.
    int remove_error(ErrorInfo* e);
    // Removes what procurar_erro finds; always 1.
    int remove_error(ErrorType tipo, const char* texto);
};

inline const char* chave(const Msg& m) {
    return m.id;
}
inline bool tem_chave(const Msg& m, const Chave& c) {
    return igual_ao_campo(m.id, c);
}
