#pragma once

#include "app/status_menu.h"
#include "engine/runtime.h"
#include "model/subscription.h"
#include "ports/status_item_port.h"

#include <functional>

namespace tessarel {

/// The program's icon among the status icons, with the menu that opens from it.
class StatusItem {
public:
    /// Shows the item; `itemSelected` is called with each row that the user chooses.
    StatusItem(StatusItemPort& port, const StatusMenu& menu, const Runtime& runtime,
               std::function<void(const MenuItem&)> itemSelected);

    /// Shows the first of our symbols that the system has, else our initials, dimmed while paused.
    void refreshStatusIcon();

private:
    StatusItemPort& m_port;
    const Runtime& m_runtime;
    SubscriptionPtr m_item;
};

} // namespace tessarel
