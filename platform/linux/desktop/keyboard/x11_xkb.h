// The keyboard extension of X11, whose header is C alone.
#pragma once

#include <xcb/xcb.h>

// One of its fields is called like a word of C++.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
