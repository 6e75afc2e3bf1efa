// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#include <functional>

namespace tessarel::macos {

/// Calls `reopened` on the main thread each time the user opens the running application again, in the Finder
/// or the Dock for example; the system then sends it an Apple event instead of launching a second copy. The
/// event has only one handler: at most one subscription may exist at a time.
[[nodiscard]] SubscriptionPtr onReopenRequested(std::function<void()> reopened);

} // namespace tessarel::macos
