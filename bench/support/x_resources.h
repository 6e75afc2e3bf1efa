// SPDX-License-Identifier: MIT

#pragma once

#include "support/connection.h"

#include <map>
#include <string>
#include <sys/types.h>

namespace tessarel::bench {

/// Numbers of X resources (windows, pixmaps, cursors and so on) by type.
using XResources = std::map<std::string, long>;

/// Returns the resources that the server holds for all connections of a process.
[[nodiscard]] XResources resourcesOf(const Connection& connection, pid_t pid);

/// Returns the sum of all numbers.
[[nodiscard]] long total(const XResources& resources);

/// Returns the types whose numbers differ, such as "PIXMAP +2"; empty if there are none.
[[nodiscard]] std::string difference(const XResources& before, const XResources& after);

} // namespace tessarel::bench
