// The script class vt_mrel: each method parses its arguments and makes one native call.
#include "php/vtmrel_obj.h"

#include <dlfcn.h>

#include <cstring>
#include <memory>

#include "common/logresult.h"
#include "common/relutl.h"
#include "php/vtmrel_itr.h"

#include "zend_attributes.h"

#include "php/vtmrel_obj_arginfo.h"

namespace {

using Mrel = Objeto<_vt_mrel_object>;

// The parser of the object that a method was called on; null when it has none.
LogMailFileParser* parser_de(zval* objeto) {
    return Mrel::de(objeto)->mrel;
}

// Parses the one text argument of a method that takes a path. Null, with the method's result set,
// when the arguments are wrong, the path holds a NUL byte or open_basedir forbids it.
const char* caminho(INTERNAL_FUNCTION_PARAMETERS) {
    char* texto;
    std::size_t tamanho;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "s", &texto, &tamanho) == FAILURE) return nullptr;
    RETVAL_FALSE;
    if (std::strlen(texto) != tamanho || php_check_open_basedir(texto) != 0) return nullptr;
    return texto;
}

// The engine binds an extension to the C library ahead of what was preloaded into the process. The
// clock must be the one that the script sees, so it is looked up from the program's side.
time_t (*relogio_do_processo())(time_t*) {
    static const auto relogio = [] {
        void* programa = dlopen(nullptr, RTLD_LAZY);
        void* f = programa ? dlsym(programa, "time") : nullptr;
        return f ? reinterpret_cast<time_t (*)(time_t*)>(f) : ::time;
    }();
    return relogio;
}

// Whether open_basedir lets this directory be used now; a refusal gets the engine's warning. Asked
// at each use: the directory may be the default, which no script gave, and the limit may have been
// tightened since it was given.
bool permitido(const char* diretorio) {
    return php_check_open_basedir(diretorio) == 0;
}

constexpr int sem_resposta = -1;  // null, and the result set holds no report

// The frame of all reports: finds the result set, empties its values, runs `roda(parser, result)`,
// which answers 1, 0 or sem_resposta, and notes which report it was. Where the day files may not be
// read there are no rows. The handle is looked up last: a warning may run script code.
template <class F>
void relatorio(zval* objeto, zval* return_value, zend_long handle, ReportType tipo, F roda) {
    LogMailFileParser* p = parser_de(objeto);
    if (!p) return;
    if (!permitido(p->getDataDir())) RETURN_LONG(0);
    LogResult* r = vt_mrel_itr_result(handle);
    if (!r) {
        php_error_docref(nullptr, E_WARNING,
                         ZEND_LONG_FMT " is not the handle of a live vt_mrel_itr", handle);
        RETURN_LONG(0);
    }
    int resposta = sem_resposta;
    const bool feito = protegido([&] {
        r->reset();
        resposta = roda(*p, *r);
        if (resposta != sem_resposta) r->last_report = tipo;
    });
    if (feito && resposta != sem_resposta) RETURN_LONG(resposta);
}

// Adds the users of a comma list to the front of the result set's. False when it names nobody.
bool pede_usuarios(const char* users, DList<MsgsDayUser>& lista) {
    const std::unique_ptr<char[]> copia(copia_texto(users));
    const std::unique_ptr<char*[]> nomes(explode(copia.get(), ',', nullptr));
    for (char** nome = nomes.get(); nome && *nome; ++nome) {
        MsgsDayUser* u = new MsgsDayUser;
        std::memcpy(u->username, *nome, strnlen(*nome, 199));
        lista.putFirst(u);
    }
    return nomes != nullptr;
}

bool em_branco(const char* texto) {
    return std::strcmp(texto, " ") == 0;
}

// A filter that was given, or null.
const char* filtro(const char* texto) {
    return *texto == '\0' || em_branco(texto) ? nullptr : texto;
}

}  // namespace

zend_object_handlers _vt_mrel_object::handlers;

void _vt_mrel_object::cria() {
    mrel = new LogMailFileParser;
    mrel->relogio_do_sistema = relogio_do_processo();
}

void _vt_mrel_object::libera() noexcept {
    // The parser's class is the one that was created, so its destructor need not be virtual.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdelete-non-virtual-dtor"
    delete mrel;
#pragma GCC diagnostic pop
    mrel = nullptr;
    error.deallocate();
}

ZEND_METHOD(vt_mrel, __construct) {}

ZEND_METHOD(vt_mrel, getPontaraPath) {
    LogMailFileParser* p = parser_de(ZEND_THIS);
    if (!p) RETURN_FALSE;
    char path[128];  // a copy of our own: the engine may not return while a string of ours is alive
    if (protegido([&] { std::strcpy(path, p->getPontaraPath().c_str()); })) RETURN_STRING(path);
}

ZEND_METHOD(vt_mrel, setForceMode) {
    if (LogMailFileParser* p = parser_de(ZEND_THIS)) p->setForceMode();
    RETURN_TRUE;
}

ZEND_METHOD(vt_mrel, getDataDir) {
    const LogMailFileParser* p = parser_de(ZEND_THIS);
    if (!p) RETURN_TRUE;
    RETURN_STRING(p->getDataDir());
}

ZEND_METHOD(vt_mrel, setDataDir) {
    const char* dirpath = caminho(INTERNAL_FUNCTION_PARAM_PASSTHRU);
    LogMailFileParser* p = parser_de(ZEND_THIS);
    if (dirpath && p) protegido([&] { RETVAL_BOOL(p->setDataDir(dirpath)); });
}

ZEND_METHOD(vt_mrel, getLogDir) {
    const LogMailFileParser* p = parser_de(ZEND_THIS);
    if (!p) RETURN_TRUE;
    RETURN_STRING(p->getLogDir());
}

ZEND_METHOD(vt_mrel, setLogDir) {
    const char* dirpath = caminho(INTERNAL_FUNCTION_PARAM_PASSTHRU);
    LogMailFileParser* p = parser_de(ZEND_THIS);
    if (dirpath && p) RETURN_BOOL(p->setLogDir(dirpath));
}

ZEND_METHOD(vt_mrel, getPeriods) {
    if (parser_de(ZEND_THIS)) RETURN_LONG(Mrel::de(ZEND_THIS)->periods);
}

ZEND_METHOD(vt_mrel, setPeriods) {
    zend_long periods;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "l", &periods) == FAILURE) return;
    if (!parser_de(ZEND_THIS)) return;
    Mrel::de(ZEND_THIS)->periods = static_cast<std::int32_t>(periods);
    RETURN_TRUE;
}

ZEND_METHOD(vt_mrel, add_domain) {
    char* domain;
    std::size_t tamanho;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "s", &domain, &tamanho) == FAILURE) return;
    LogMailFileParser* p = parser_de(ZEND_THIS);
    if (!p) RETURN_FALSE;
    protegido([&] {
        // The list is cut in place, and the script's own text must stay as it is.
        const std::unique_ptr<char[]> lista(copia_texto(domain));
        RETVAL_BOOL(p->add_domain(lista.get()));
    });
}

ZEND_METHOD(vt_mrel, consolidate) {
    const char* lastConsolidFile = caminho(INTERNAL_FUNCTION_PARAM_PASSTHRU);
    LogMailFileParser* p = parser_de(ZEND_THIS);
    if (!lastConsolidFile || !p) return;
    if (!permitido(p->getDataDir()) || !permitido(p->getLogDir()) || !testaSeUnico()) return;
    protegido([&] { p->consolidate(lastConsolidFile); });
}

ZEND_METHOD(vt_mrel, msgs_per_day) {
    zend_long start, end, handle;
    char* users;
    std::size_t tamanho;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "llsl", &start, &end, &users, &tamanho, &handle) ==
        FAILURE)
        return;
    relatorio(
        ZEND_THIS, return_value, handle, MSGS_PER_DAY, [=](LogMailFileParser& p, LogResult& r) {
            if (start < 1 || end < 1 || start > end) {
                r.last_error = "Per\xEDodo incorreto.";
                return sem_resposta;
            }
            const bool por_usuario = !em_branco(users) && pede_usuarios(users, r.msgs_user_day);
            p.get_msgs_per_day(start, end, &r.msgs_day, por_usuario ? &r.msgs_user_day : nullptr);
            return static_cast<int>(por_usuario ? r.msgs_user_day.first() != nullptr
                                                : r.msgs_day.first() != nullptr);
        });
}

ZEND_METHOD(vt_mrel, user_msgs) {
    char *destinatarios, *remetentes, *msg_id;
    std::size_t n1, n2, n3;
    zend_long start, end, min_kb, max_kb, handle;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "ssllslll", &destinatarios, &n1, &remetentes, &n2,
                              &start, &end, &msg_id, &n3, &min_kb, &max_kb, &handle) == FAILURE)
        return;
    relatorio(ZEND_THIS, return_value, handle, USERMSGS, [=](LogMailFileParser& p, LogResult& r) {
        const VeltoString id = VeltoString(msg_id).Trim();
        p.get_user_msgs(filtro(destinatarios), filtro(remetentes),
                        id.IsEmpty() ? nullptr : id.c_str(), static_cast<int>(min_kb),
                        static_cast<int>(max_kb), start, end, &r.user_msgs);
        return static_cast<int>(r.user_msgs.first() != nullptr);
    });
}

ZEND_METHOD(vt_mrel, msgs_per_hour) {
    zend_long start, end, handle;
    char* user;
    std::size_t tamanho;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "llsl", &start, &end, &user, &tamanho, &handle) ==
        FAILURE)
        return;
    relatorio(ZEND_THIS, return_value, handle, MSGS_PER_HOUR,
              [=](LogMailFileParser& p, LogResult& r) {
                  if (em_branco(user))
                      p.get_msgs_per_hour(start, end, &r.msgs_hour);
                  else
                      p.get_msgs_per_hour_per_user(start, end, user, &r.msgs_hour);
                  return static_cast<int>(r.msgs_hour.first() != nullptr);
              });
}

ZEND_METHOD(vt_mrel, msg_trace) {
    char* msg_id;
    std::size_t tamanho;
    zend_long start, end, handle;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "slll", &msg_id, &tamanho, &start, &end, &handle) ==
        FAILURE)
        return;
    relatorio(ZEND_THIS, return_value, handle, MSGTRACE, [=](LogMailFileParser& p, LogResult& r) {
        p.msg_trace(msg_id, start, end, r.msg_traced);
        return static_cast<int>(std::strcmp(msg_id, r.msg_traced->id) == 0);
    });
}

void vt_mrel_init_class() {
    Mrel::registra(register_class_vt_mrel());
}
