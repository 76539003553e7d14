// The module's record.
#pragma once

#include "php/motor.h"

// That of the library (src/Versao.php), which compares the two.
#define VT_MREL_VERSION "1.0"

extern zend_module_entry vt_mrel_module_entry;
