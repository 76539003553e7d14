// The script class vt_mrel.
#pragma once

#include <cstdint>

#include "borland/vtstring.h"
#include "common/LogMailFileParser.h"
#include "php/objeto.h"

// One script object. It owns its parser for its whole life; directories, force mode and domains
// last as long.
struct _vt_mrel_object {
    LogMailFileParser* mrel;  // null only when it could not be created
    std::int32_t periods;     // what setPeriods stored
    VeltoString error;        // not used
    zend_object std;

    static zend_object_handlers handlers;
    void cria();
    void libera() noexcept;
};

// Registers the class.
void vt_mrel_init_class();
