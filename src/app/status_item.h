#pragma once

#include "app/status_menu.h"
#include "engine/runtime.h"
#include "model/subscription.h"
#include "ports/status_item_port.h"

#include <functional>

namespace tessarel {

/// The program's icon in the status area, and the menu that it opens.
class StatusItem {
public:
    /// Shows the item and calls `itemSelected` with each row that the user chooses. The other arguments must
    /// outlive this object.
    StatusItem(StatusItemPort& port, const StatusMenu& menu, const Runtime& runtime,
               std::function<void(const MenuItem&)> itemSelected);

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
