// The module's record.
#pragma once

#include "php/motor.h"

extern zend_module_entry vt_mrel_module_entry;
