// SPDX-License-Identifier: MIT
// Includes the header of X11's keyboard extension, which is written for C only.
#pragma once

#include <xcb/xcb.h>

// The header has a field called `explicit`, which is a keyword in C++.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
