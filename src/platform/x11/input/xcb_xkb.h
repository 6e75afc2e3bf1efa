// SPDX-License-Identifier: MIT

#pragma once

// Includes <xcb/xkb.h>, a C header with fields named `explicit`, which is a keyword in C++.
#pragma GCC system_header

#include <xcb/xcb.h>

#define explicit explicitFields
#include <xcb/xkb.h>
#undef explicit
