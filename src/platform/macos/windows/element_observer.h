// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/desktop/workspace_port.h"
#include "ports/main_queue_port.h"

#include <functional>
#include <string_view>

namespace tessarel::macos {

/// What to observe: one accessibility notification of one element.
struct Observation {
    ProcessId pid = 0;
    Element element;                             ///< an element of process `pid`
    std::string_view notification;               ///< name of the notification; a string literal
    std::function<void(const Element&)> handler; ///< called with the element that the notification is about
};

/// Registers for the notification and calls the handler on the main thread until the returned subscription is
/// destroyed. Returns null when the process does not reply or refuses.
[[nodiscard]] SubscriptionPtr observeElement(Observation observation);

/// Like `observeElement`, but retries when the process cannot complete the request
/// (`kAXErrorCannotComplete`), as is usual just after its launch: five times within 0.7 s, and again at each
/// activation of the application. A process that takes 100 ms or longer to report the error counts as hanging
/// and is retried at its next activation only. Returns null when the process refuses. `workspace` and `queue`
/// must outlive the subscription.
[[nodiscard]] SubscriptionPtr observeElementPatiently(WorkspacePort& workspace, MainQueuePort& queue,
                                                      Observation observation);

} // namespace tessarel::macos
