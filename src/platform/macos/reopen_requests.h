#pragma once

#include "model/subscription.h"

#include <functional>

namespace tessarel::macos {

/// Calls `reopened` when the user opens the program once more while it runs, from the Finder, the Dock or the
/// like, which the system tells the program instead of starting it again. One at a time.
[[nodiscard]] SubscriptionPtr onReopenRequested(std::function<void()> reopened);

} // namespace tessarel::macos
