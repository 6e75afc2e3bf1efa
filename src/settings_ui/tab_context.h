#pragma once

#include "app/ports.h"
#include "app/services.h"

#include <functional>

namespace tessarel {

/// What each tab of the settings window works with. A tab is a class with a constructor that takes this, a
/// `QWidget* view()` of 780 x 480 that stays its own, and a `refresh()` that shows the present settings.
struct TabContext {
    Services& services;
    const Ports& ports;
    /// Shows the present settings in every tab.
    std::function<void()> refreshAll;
};

} // namespace tessarel
