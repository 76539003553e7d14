// The script class vt_mrel_itr: moves the result set's cursors and publishes its row as properties.
#include "php/vtmrel_itr.h"

#include <array>
#include <cstring>
#include <unordered_set>

#include "zend_attributes.h"

#include "php/vtmrel_itr_arginfo.h"

namespace {

using Itr = Objeto<_vt_mrel_itr_object>;

thread_local std::unordered_set<const LogResult*> vivos;

// A value of the row as a script value. `antes` is what the property holds now: an equal text is
// shared with it instead of copied.
using Valor = void (*)(const LogResult& r, const zval* antes, zval* z);

void publica_texto(const char* texto, std::size_t n, const zval* antes, zval* z) {
    if (n == 0)
        ZVAL_EMPTY_STRING(z);
    else if (Z_TYPE_P(antes) == IS_STRING && Z_STRLEN_P(antes) == n &&
             std::memcmp(Z_STRVAL_P(antes), texto, n) == 0)
        ZVAL_COPY(z, antes);
    else
        ZVAL_STRINGL(z, texto, n);
}

template <auto membro>
void inteiro(const LogResult& r, const zval*, zval* z) {
    ZVAL_LONG(z, r.*membro);
}

template <auto membro>
void texto(const LogResult& r, const zval* antes, zval* z) {
    const VeltoString& t = r.*membro;
    publica_texto(t.c_str(), std::strlen(t.c_str()), antes, z);
}

void falha_definitiva(const LogResult& r, const zval*, zval* z) {
    ZVAL_BOOL(z, r.msg_traced->fatal_error);
}

void texto_do_erro(const LogResult& r, const zval* antes, zval* z) {
    const char* t = r.msg_traced->str_error;
    publica_texto(t, std::strlen(t), antes, z);
}

struct Propriedade {
    const char* nome;
    Valor valor;
};

// In the order in which they are declared and written. "fatal_error" is written twice: the boolean
// of the traced message stands.
constexpr Propriedade propriedades[] = {
    {"recv", inteiro<&LogResult::recv>},
    {"recv_bytes", inteiro<&LogResult::recv_bytes>},
    {"sent", inteiro<&LogResult::sent>},
    {"sent_bytes", inteiro<&LogResult::sent_bytes>},
    {"att_blocked", inteiro<&LogResult::att_blocked>},
    {"error", inteiro<&LogResult::error>},
    {"spam", inteiro<&LogResult::spam>},
    {"virus", inteiro<&LogResult::virus>},
    {"msgs_int", inteiro<&LogResult::msgs_int>},
    {"msgs_ext", inteiro<&LogResult::msgs_ext>},
    {"timestamp", inteiro<&LogResult::timestamp>},
    {"msg_size", inteiro<&LogResult::msg_size>},
    {"msg_time", inteiro<&LogResult::msg_time>},
    {"msg_end_time", inteiro<&LogResult::msg_end_time>},
    {"enviada", inteiro<&LogResult::enviada>},
    {"recipient_time", inteiro<&LogResult::recipient_time>},
    {"bytes_ext", inteiro<&LogResult::bytes_ext>},
    {"bytes_int", inteiro<&LogResult::bytes_int>},
    {"fatal_error", inteiro<&LogResult::fatal_error>},
    {"interna", inteiro<&LogResult::interna>},
    {"fatal_error", falha_definitiva},
    {"usuario", texto<&LogResult::usuario>},
    {"last_error", texto<&LogResult::last_error>},
    {"msg_id", texto<&LogResult::msg_id>},
    {"msg_sendername", texto<&LogResult::msg_sendername>},
    {"recipient_name", texto<&LogResult::recipient_name>},
    {"recipient_status_msg", texto<&LogResult::recipient_status_msg>},
    {"str_error", texto_do_erro},
};
constexpr std::size_t escritas = std::size(propriedades);

// For each write, the place of its property among the object's declared ones.
constexpr std::array<int, escritas> lugares = [] {
    std::array<int, escritas> l{};
    int proximo = 0;
    for (std::size_t i = 0; i < escritas; ++i) {
        std::size_t j = 0;
        while (std::string_view(propriedades[j].nome) != propriedades[i].nome) ++j;
        l[i] = j < i ? l[j] : proximo++;
    }
    return l;
}();

// A slot that a plain write may fill: neither unset nor a reference, and nothing whose release
// would run script code.
bool intocado(const zval* lugar) {
    return Z_TYPE_P(lugar) > IS_UNDEF && Z_TYPE_P(lugar) <= IS_STRING;
}

// Writes the row into the object's properties. All values are taken before the first one is
// written: the destructor of an object that a script put there may call back into this object.
// Stops at an exception.
void vt_mrel_setup_attribs(const LogResult& r, zend_object* o) {
    zval novos[escritas];
    for (std::size_t i = 0; i < escritas; ++i)
        propriedades[i].valor(r, OBJ_PROP_NUM(o, lugares[i]), &novos[i]);
    for (std::size_t i = 0; i < escritas; ++i) {
        zval* lugar = OBJ_PROP_NUM(o, lugares[i]);
        if (EXPECTED(intocado(lugar))) {
            zval velho;
            ZVAL_COPY_VALUE(&velho, lugar);
            ZVAL_COPY_VALUE(lugar, &novos[i]);
            zval_ptr_dtor_str(&velho);
            continue;
        }
        if (!EG(exception))
            zend_update_property(o->ce, o, propriedades[i].nome, std::strlen(propriedades[i].nome),
                                 &novos[i]);
        zval_ptr_dtor(&novos[i]);
    }
}

// Moves a cursor and publishes what it came to.
template <int (LogResult::*move)()>
void vai(zval* objeto, zval* return_value) {
    LogResult* r = Itr::de(objeto)->result;
    if (!r) return;
    int linha = 0;
    if (!protegido([&] { linha = (r->*move)(); })) return;
    vt_mrel_setup_attribs(*r, Z_OBJ_P(objeto));
    RETURN_LONG(linha);
}

}  // namespace

zend_object_handlers _vt_mrel_itr_object::handlers;

void _vt_mrel_itr_object::cria() {
    result = new LogResult;
    vivos.insert(result);
}

void _vt_mrel_itr_object::libera() noexcept {
    vivos.erase(result);  // first of all: from here on nothing may find it
    delete result;
    result = nullptr;
    error.deallocate();
}

LogResult* vt_mrel_itr_result(zend_long handle) {
    auto* r = reinterpret_cast<LogResult*>(handle);
    return vivos.count(r) ? r : nullptr;
}

ZEND_METHOD(vt_mrel_itr, __construct) {
    if (const LogResult* r = Itr::de(ZEND_THIS)->result)
        vt_mrel_setup_attribs(*r, Z_OBJ_P(ZEND_THIS));
}

ZEND_METHOD(vt_mrel_itr, getHandle) {
    if (const LogResult* r = Itr::de(ZEND_THIS)->result) RETURN_LONG(r->getHandle());
}

ZEND_METHOD(vt_mrel_itr, fetch) {
    vai<&LogResult::fetch>(ZEND_THIS, return_value);
}

ZEND_METHOD(vt_mrel_itr, fetch_recipient) {
    vai<&LogResult::fetch_recipient>(ZEND_THIS, return_value);
}

ZEND_METHOD(vt_mrel_itr, fetch_msgs_per_day) {
    vai<&LogResult::fetch_msgs_per_day>(ZEND_THIS, return_value);
}

bool vt_mrel_itr_init_class() {
    // The values of an empty row; of a property that is written twice, the last one stands.
    zval iniciais[escritas];
    zval nada;
    ZVAL_UNDEF(&nada);
    try {
        const LogResult vazio;
        for (std::size_t i = 0; i < escritas; ++i)
            propriedades[i].valor(vazio, &nada, &iniciais[lugares[i]]);
    } catch (const std::bad_alloc&) {
        return false;
    }
    zend_class_entry* classe = register_class_vt_mrel_itr();
    int declaradas = 0;
    for (std::size_t i = 0; i < escritas; ++i) {
        if (lugares[i] < declaradas) continue;
        zend_declare_property(classe, propriedades[i].nome, std::strlen(propriedades[i].nome),
                              &iniciais[declaradas++], ZEND_ACC_PUBLIC);
    }
    Itr::registra(classe);
    return true;
}
