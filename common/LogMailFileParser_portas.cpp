// The public handlers of the log's events: doors to those of the run, for texts that are neither
// measured nor hashed yet.
#include "common/LogMailFileParser_corrida.h"

namespace {

using Texto = std::string_view;

Texto texto(const char* t) {
    return t ? Texto(t) : Texto();
}

Chave chave(const char* t) {
    return t ? Chave(t) : Chave();
}

}  // namespace

Corrida::Hora Corrida::hora(const char* T) {
    return {p_.convTimeFromLog(p_.osBuf.lbuf), texto(T)};
}

int LogMailFileParser::handle_MAILQ_SUBMIT(const char* T, const char* id, const char* tipo,
                                           const char* remetente, const char* tamanho) {
    Corrida& c = corrida();
    return c.mailq_submit(c.hora(T), chave(id), texto(tipo), chave(remetente), texto(tamanho));
}
int LogMailFileParser::handle_MAILQ_OK(const char* T, const char* id, const char* destinatario) {
    Corrida& c = corrida();
    return c.mailq_ok(c.hora(T), chave(id), chave(destinatario));
}
int LogMailFileParser::handle_MAILQ_END(const char* T, const char* id) {
    Corrida& c = corrida();
    return c.mailq_end(c.hora(T), chave(id));
}
int LogMailFileParser::handle_MAILSMTP_DELIVER(const char* T, const char* id) {
    Corrida& c = corrida();
    return c.deliver(c.hora(T), chave(id));
}
int LogMailFileParser::handle_MAILSMTP_OK(const char* T, const char* id, const char* destinatario) {
    Corrida& c = corrida();
    return c.smtp_ok(c.hora(T), chave(id), chave(destinatario));
}
int LogMailFileParser::handle_MAILSMTP_END(const char* T, const char* id) {
    Corrida& c = corrida();
    return c.smtp_end(c.hora(T), chave(id));
}
int LogMailFileParser::handle_MAILSMTP_ERROR_CONNECT(const char* T, const char* id, const char* t) {
    Corrida& c = corrida();
    return c.erro(ERROR_CONNECT, c.hora(T), chave(id), texto(t));
}
int LogMailFileParser::handle_MAILSMTP_ERROR_SENDER(const char* T, const char* id, const char* t) {
    Corrida& c = corrida();
    return c.erro(ERROR_SENDER, c.hora(T), chave(id), texto(t));
}
int LogMailFileParser::handle_MAILSMTP_ERROR_DEST(const char* T, const char* id, const char* t) {
    Corrida& c = corrida();
    return c.erro(ERROR_DEST, c.hora(T), chave(id), texto(t));
}
int LogMailFileParser::handle_MAILSMTP_ERROR_FINAL(const char* T, const char* id, const char* t) {
    Corrida& c = corrida();
    return c.erro(ERROR_FINAL, c.hora(T), chave(id), texto(t));
}
int LogMailFileParser::handle_MAILSMTP_ERROR_DATA(const char* T, const char* id) {
    Corrida& c = corrida();
    return c.erro(ERROR_DATA, c.hora(T), chave(id));
}
int LogMailFileParser::handle_MAILSMTP_ERROR_HELO(const char* T, const char* id, const char* t) {
    Corrida& c = corrida();
    return c.erro(ERROR_HELO, c.hora(T), chave(id), texto(t));
}
int LogMailFileParser::handle_MAILSMTP_ERROR_SIZE(const char* T, const char* id) {
    Corrida& c = corrida();
    return c.erro(ERROR_SIZE, c.hora(T), chave(id));
}
int LogMailFileParser::handle_MAILSMTP_ERROR_DOMAIN(const char* T, const char* id, const char* t) {
    Corrida& c = corrida();
    return c.erro(ERROR_DOMAIN, c.hora(T), chave(id), texto(t));
}
int LogMailFileParser::handle_MAILSMTP_RETRY_DEST(const char* T, const char* id, const char* t) {
    Corrida& c = corrida();
    return c.erro(RETRY_DEST, c.hora(T), chave(id), texto(t));
}
int LogMailFileParser::handle_SPAM(const char* T, const char* id) {
    Corrida& c = corrida();
    return c.spam(c.hora(T), chave(id));
}
int LogMailFileParser::handle_ANTIVIRUS_VIRUS(const char* T, const char* id) {
    Corrida& c = corrida();
    return c.virus(c.hora(T), chave(id));
}
