// The module: its record for the engine and its start-up.
#include "php/vtmrel.h"

#include "php/vtmrel_itr.h"
#include "php/vtmrel_obj.h"

namespace {

// Scripts see no version of the module. The library (src/Versao.php) reads this one in its file, to
// tell the module of another release from its own.
[[gnu::used]] const char versao[] = "vt_mrel versao=1.0;";

// The module has classes only.
const zend_function_entry vt_mrel_module_functions[] = {ZEND_FE_END};

zend_result zm_startup_vt_mrel(INIT_FUNC_ARGS) {
    if (!vt_mrel_itr_init_class()) return FAILURE;
    vt_mrel_init_class();
    return SUCCESS;
}

}  // namespace

// The sentence is the name under which the engine lists the module.
zend_module_entry vt_mrel_module_entry = {
    STANDARD_MODULE_HEADER,
    "Vorna PHP admin reports functions",
    vt_mrel_module_functions,
    zm_startup_vt_mrel,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    NO_VERSION_YET,
    STANDARD_MODULE_PROPERTIES,
};

extern "C" {
ZEND_GET_MODULE(vt_mrel)
}
