// SPDX-License-Identifier: MIT

#pragma once

#include "ports/main_queue_port.h"
#include "ports/status_item_port.h"

#include <memory>
#include <string_view>

namespace tessarel::macos {

/// The application's NSStatusItem in the menu bar.
///
/// Its menu is filled each time the user opens it. A chosen row is reported from the main queue, one
/// iteration of the loop later: the system sends the row's action while the menu is still fading out, and a
/// window that is ordered to the front at that time does not stay there.
class MacStatusItem : public StatusItemPort {
public:
    /// `queue` must outlive this object.
    explicit MacStatusItem(MainQueuePort& queue) : m_queue(queue) {}

    [[nodiscard]] SubscriptionPtr create(Delegate delegate) override;

    /// Calls `placed` before it returns: there is always a menu bar.
    void whenPlaced(std::function<void(bool isShown)> placed) override { placed(true); }
    bool setSymbol(std::string_view symbolName, std::string_view accessibilityDescription) override;
    void clearImage() override;
    void setTitle(std::string_view title) override;
    void setAppearsDisabled(bool appearsDisabled) override;

private:
    class Item;

    MainQueuePort& m_queue;
    std::weak_ptr<Item> m_item; // owned by its subscription
};

} // namespace tessarel::macos
