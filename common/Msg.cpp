// A message in flight, its recipients and pending errors.
#include "common/Msg.h"

#include <cstring>

#include "misc/reserva.h"

static constinit thread_local Reserva reserva(sizeof(Msg));

void* Msg::operator new(std::size_t n) {
    return reserva.nova(n);
}

void Msg::operator delete(void* p, std::size_t n) noexcept {
    reserva.apaga(p, n);
}

ErrorInfo::ErrorInfo(ErrorType tipo, const char* texto)
    : error_type(tipo), error(copia_texto(texto)) {}

Msg::Msg(const char* id_, time_t inicio) : start_time(inicio) {
    if (id_) std::memcpy(id, id_, strnlen(id_, sizeof id - 1));
}

Msg::~Msg() {
    apaga_todos(recipients);
    apaga_todos(error_list);
    TextoPartilhado::solta(sendername);
}

void Msg::define_remetente(const char* nome) {
    define_remetente(nome ? TextoPartilhado(nome, std::strlen(nome)) : TextoPartilhado());
}

void Msg::define_remetente(TextoPartilhado nome) {
    TextoPartilhado::solta(std::exchange(sendername, nome.larga()));
}

RCPTO* Msg::addRecipient(const char* nome) {
    if (!nome) return nullptr;
    const std::size_t n = std::strlen(nome);
    if (n >= sizeof RCPTO::username) return nullptr;
    RCPTO* r = new RCPTO;
    std::memcpy(r->username, nome, n);
    recipients.putLast(r);
    return r;
}

RCPTO* Msg::getRecipientByName(const char* nome) const {
    if (!nome) return nullptr;
    RCPTO* r = recipients.first();
    while (r && std::strcmp(r->username, nome) != 0) r = r->next;
    return r;
}

int Msg::add_error(ErrorType tipo, const char* texto) {
    if (!texto) return 0;
    switch (tipo) {
        case etHELO:
        case etSENDER:
        case etDOMAIN:
        case etCONNECT:
        case etRETRY_DEST:
        case etDEST:
            for (const ErrorInfo* e = error_list.first(); e; e = e->next)
                if (e->error && std::strcmp(e->error, texto) == 0) return 1;
            error_list.putFirst(new ErrorInfo(tipo, texto));
            return 1;
        case etDATA:
        case etSIZE:
            error_list.putFirst(new ErrorInfo(tipo, nullptr));
            return 1;
        case etCONNECTION:
        case etFINAL:
            return 1;
    }
    return 1;
}

ErrorInfo* Msg::procurar_erro(ErrorType tipo, const char* texto) const {
    if (!texto || tipo == etDEST || tipo == etSIZE || tipo == etFINAL) return nullptr;
    for (ErrorInfo* e = error_list.first(); e; e = e->next)
        if (e->error_type == tipo &&
            (tipo == etDATA || (e->error && std::strcmp(e->error, texto) == 0)))
            return e;
    return nullptr;
}

int Msg::remove_error(ErrorInfo* e) {
    if (!e) return 0;
    error_list.remove(e);
    delete e;
    return 1;
}

int Msg::remove_error(ErrorType tipo, const char* texto) {
    remove_error(procurar_erro(tipo, texto));
    return 1;
}
