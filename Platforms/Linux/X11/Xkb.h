#pragma once

// A field of this C header has a name that C++ keeps for itself, and renaming a keyword is warned of outside the
// system's headers.
#pragma GCC system_header
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
