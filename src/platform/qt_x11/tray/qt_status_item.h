#pragma once

#include "ports/main_queue_port.h"
#include "ports/status_item_port.h"

#include <memory>

namespace tessarel::qt {

/// The status item in the panel of a Linux desktop: as a StatusNotifierItem where a panel on the session bus
/// shows those, else in the system tray of the X screen. Both mouse buttons open the menu.
///
/// A panel that comes later is noticed when it comes; one that ends and starts again gets the icon back.
/// Panels have no room for a title beside the icon, so a title shows only in place of a missing symbol, drawn
/// as the icon. The accessibility description is the tool tip.
class QtStatusItem : public StatusItemPort {
public:
    /// `queue` outlives this and every item put up.
    explicit QtStatusItem(MainQueuePort& queue);
    QtStatusItem(const QtStatusItem&) = delete;
    QtStatusItem& operator=(const QtStatusItem&) = delete;
    ~QtStatusItem() override;

    /// The icon appears when the loop runs; the application object may be made after this call, and has to
    /// outlive the answer. A row that was chosen is told at the next turn of the queue, when the menu has
    /// closed.
    [[nodiscard]] SubscriptionPtr create(Delegate delegate) override;

    bool setSymbol(std::string_view symbolName, std::string_view accessibilityDescription) override;
    void clearImage() override;
    void setTitle(std::string_view title) override;
    void setAppearsDisabled(bool appearsDisabled) override;

private:
    class Item;
    class ItemSubscription;

    MainQueuePort& m_queue;
    std::weak_ptr<Item> m_item;
};

} // namespace tessarel::qt
