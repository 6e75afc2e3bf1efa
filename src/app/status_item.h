// SPDX-License-Identifier: MIT

#pragma once

#include "engine/runtime.h"
#include "model/subscription.h"
#include "ports/status_item_port.h"

namespace tessarel {

/// The program's icon in the status area, and the menu that it opens.
class StatusItem {
public:
    /// Shows the item with the menu of `delegate`. The other arguments must outlive this object.
    StatusItem(StatusItemPort& port, const Runtime& runtime, StatusItemPort::Delegate delegate);

    /// Updates the icon: the first of our symbols that the system has, otherwise the program's initials;
    /// dimmed while paused.
    void refreshStatusIcon();

private:
    StatusItemPort& m_port;
    const Runtime& m_runtime;
    /// Keeps the item visible.
    SubscriptionPtr m_item;
};

} // namespace tessarel
