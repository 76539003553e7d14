// The engine's headers, whose own style is not ours to warn about.
#pragma once

#ifdef HAVE_CONFIG_H
#include "config.h"
#endif

// The engine's macros give every method the same parameters, used or not.
#pragma GCC diagnostic ignored "-Wunused-parameter"
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#include "php.h"
#pragma GCC diagnostic pop
