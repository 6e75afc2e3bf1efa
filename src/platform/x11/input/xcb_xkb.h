#pragma once

// <xcb/xkb.h> is written in C and calls fields by a keyword of C++.
#pragma GCC system_header

#include <xcb/xcb.h>

#define explicit explicitFields
#include <xcb/xkb.h>
#undef explicit
