// The script class vt_mrel_itr.
#pragma once

#include "borland/vtstring.h"
#include "common/logresult.h"
#include "php/objeto.h"

// One script object. It owns its result set for its whole life.
struct _vt_mrel_itr_object {
    LogResult* result;  // null only when it could not be created
    VeltoString error;  // not used
    zend_object std;

    static zend_object_handlers handlers;
    void cria();
    void libera() noexcept;
};

// The live result set that a script names by its handle; null for any other number. The sets of a
// thread are known to that thread only.
LogResult* vt_mrel_itr_result(zend_long handle);

// Registers the class with its properties.
// False, and nothing was declared, without memory for it.
bool vt_mrel_itr_init_class();
