// The life of a script object that owns one native object: shared by both classes.
#pragma once

#include <cstddef>
#include <exception>

#include "php/motor.h"

// Runs native code that may throw. False when it did; a script exception is then pending. No engine
// call is made while anything of the native code is alive.
template <class F>
bool protegido(F&& nativo) noexcept {
    try {
        nativo();
        return true;
    } catch (const std::exception&) {
    }
    zend_throw_error(nullptr, "vt_mrel: out of memory");
    return false;
}

// `Registro` is the per-object record: its last member is `zend_object std`, and it brings
//   static zend_object_handlers handlers;
//   void cria();            makes what the record owns; may throw
//   void libera() noexcept; releases it, also after a cria() that failed
template <class Registro>
struct Objeto {
    static Registro* de(zend_object* o) {
        return reinterpret_cast<Registro*>(reinterpret_cast<char*>(o) - offsetof(Registro, std));
    }
    static Registro* de(zval* z) { return de(Z_OBJ_P(z)); }

    static zend_object* novo(zend_class_entry* classe) {
        auto* r = static_cast<Registro*>(zend_object_alloc(sizeof(Registro), classe));
        zend_object_std_init(&r->std, classe);
        object_properties_init(&r->std, classe);
        r->std.handlers = &Registro::handlers;
        protegido([r] { r->cria(); });
        return &r->std;
    }

    static void fim(zend_object* o) {
        de(o)->libera();
        zend_object_std_dtor(o);
    }

    // Makes `classe` create such objects; they cannot be cloned.
    static void registra(zend_class_entry* classe) {
        classe->create_object = novo;
        Registro::handlers = *zend_get_std_object_handlers();
        Registro::handlers.offset = offsetof(Registro, std);
        Registro::handlers.free_obj = fim;
        Registro::handlers.clone_obj = nullptr;
    }
};
