#pragma once

#include "model/subscription.h"
#include "ports/accessibility_port.h"
#include "ports/main_queue_port.h"
#include "ports/workspace_port.h"

#include <functional>
#include <string_view>

namespace tessarel::macos {

/// Accessibility notifications to observe.
struct Observation {
    ProcessId pid = 0;
    Element element;                             ///< of that process
    std::string_view notification;               ///< its name, which stays
    std::function<void(const Element&)> handler; ///< called with the element that each is about
};

/// Calls the handler until the returned subscription is destroyed. Null when the process does not answer or
/// refuses.
[[nodiscard]] SubscriptionPtr observeElement(Observation observation);

/// Like `observeElement`, but a process that cannot answer, as is usual just after its launch, is asked
/// again: five times within 0.7 s, then whenever it is activated. One that takes its time to say so hangs; it
/// is left alone until it is activated. Null when the process refuses. `workspace` and `queue` outlive the
/// subscription.
[[nodiscard]] SubscriptionPtr observeElementPatiently(WorkspacePort& workspace, MainQueuePort& queue,
                                                      Observation observation);

} // namespace tessarel::macos
