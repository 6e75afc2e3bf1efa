// SPDX-License-Identifier: MIT

#pragma once

#include "model/json.h"
#include "platform/wayland/mirror.h"

#include <cstdint>
#include <optional>

namespace tessarel::plasma {

/// A placement that has settled.
struct Settled {
    wayland::WindowId window = wayland::kNoWindow;
    std::uint64_t serial = 0;
};

/// Applies a report of the bridge script to the mirror. Ignores what is malformed. Returns the placement if
/// the report says that one has settled.
std::optional<Settled> applyReport(const Json& report, wayland::Mirror& mirror);

} // namespace tessarel::plasma
