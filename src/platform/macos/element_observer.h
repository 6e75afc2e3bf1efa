#pragma once

#include "model/subscription.h"
#include "ports/accessibility_port.h"

#include <functional>
#include <string_view>

namespace tessarel::macos {

/// Calls `handler` with the element that each accessibility notification called `notification` is about,
/// of those that `element` of process `pid` sends, until the answer ends. Null when the process does not
/// answer or refuses.
[[nodiscard]] SubscriptionPtr observeElement(ProcessId pid, const Element& element,
                                             std::string_view notification,
                                             std::function<void(const Element&)> handler);

} // namespace tessarel::macos
