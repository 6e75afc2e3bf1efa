// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt_xdg/session_bus.h"
#include "ports/main_queue_port.h"
#include "ports/status_item_port.h"

#include <functional>
#include <memory>

namespace tessarel::qt {

/// The status item of a Linux desktop: a StatusNotifierItem if a panel on the session bus supports it, else
/// an icon in the system tray of the X screen (XEmbed). Both mouse buttons open the menu.
///
/// A panel that starts later gets the icon, and so does one that restarts, alone or with the session bus.
/// Panels have no room for a title beside the icon, so the title is shown only when there is no symbol, drawn
/// as the icon. The accessibility description becomes the tool tip.
class QtStatusItem : public StatusItemPort {
public:
    /// `queue` and `bus` must outlive this object and every created item. `beforeOpening` is called each time
    /// before a menu that this program draws opens.
    QtStatusItem(
        MainQueuePort& queue, SessionBus& bus, std::function<void()> beforeOpening = [] {});
    QtStatusItem(const QtStatusItem&) = delete;
    QtStatusItem& operator=(const QtStatusItem&) = delete;
    ~QtStatusItem() override;

    /// Creates the item; the icon appears once the event loop runs. The application object may be created
    /// after this call, but must outlive the returned subscription. `itemSelected` is called in the next
    /// iteration of the main queue, when the menu has closed.
    [[nodiscard]] SubscriptionPtr create(Delegate delegate) override;

    /// Calls `placed` when a panel was found or has not been found, or 8 s later if neither the bus nor the
    /// panel replies.
    void whenPlaced(std::function<void(bool isShown)> placed) override;

    /// Returns false for a name that is not in `status_symbols`, even before `create`.
    bool setSymbol(std::string_view symbolName, std::string_view accessibilityDescription) override;
    void clearImage() override;
    void setTitle(std::string_view title) override;
    void setAppearsDisabled(bool appearsDisabled) override;

private:
    class Item;

    MainQueuePort& m_queue;
    SessionBus& m_bus;
    std::function<void()> m_beforeOpening;
    std::weak_ptr<Item> m_item;
};

} // namespace tessarel::qt
