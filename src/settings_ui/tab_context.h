// SPDX-License-Identifier: MIT

#pragma once

#include "app/ports.h"
#include "app/services.h"

#include <functional>

namespace tessarel {

/// What the tabs of the settings window work with.
///
/// A tab is a class whose constructor takes a context. It has a `QWidget* view()` of the size `kTabSize`,
/// which the tab owns, and, if it shows settings, a `refresh()` that shows the current ones.
struct TabContext {
    Services& services;
    const Ports& ports;
    /// Shows the current settings in every tab.
    std::function<void()> refreshAll;
};

} // namespace tessarel
