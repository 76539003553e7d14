// The script class vt_mrel: each method parses its arguments and makes one native call.
#include "php/vtmrel_obj.h"

#include <dlfcn.h>

#include <cstring>
#include <memory>

#include "common/relutl.h"

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
}

ZEND_METHOD(vt_mrel, __construct) {}

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
    if (!lastConsolidFile || !p || !testaSeUnico()) return;
    protegido([&] { p->consolidate(lastConsolidFile); });
}

void vt_mrel_init_class() {
    Mrel::registra(register_class_vt_mrel());
}
