// SPDX-License-Identifier: MIT

#pragma once

#include "model/json.h"
#include "platform/wayland/mirror.h"

#include <cstdint>
#include <optional>

namespace tessarel::plasma {

/// A placement that is over.
struct Settled {
    wayland::WindowId window = wayland::kNoWindow;
    std::uint64_t serial = 0;
    bool isLate = false;     ///< whether the window has not taken its frame in time
    bool isReplaced = false; ///< whether something else, such as a key of KWin, has requested another frame
};

/// Applies a report of the bridge script to the mirror. Ignores what is malformed. Returns the placement if
/// the report says that one is over.
std::optional<Settled> applyReport(const Json& report, wayland::Mirror& mirror);

} // namespace tessarel::plasma
