#pragma once

#include "ports/main_queue_port.h"
#include "ports/status_item_port.h"

#include <memory>
#include <string_view>

namespace tessarel::macos {

/// The item in the menu bar. Its menu is filled whenever the user opens it. A chosen row is reported one
/// turn of the main queue later: the system sends its action while the menu is still fading out, and what is
/// ordered to the front then does not stay there.
class MacStatusItem : public StatusItemPort {
public:
    /// `queue` outlives the status item.
    explicit MacStatusItem(MainQueuePort& queue) : m_queue(queue) {}

    [[nodiscard]] SubscriptionPtr create(Delegate delegate) override;

    bool setSymbol(std::string_view symbolName, std::string_view accessibilityDescription) override;
    void clearImage() override;
    void setTitle(std::string_view title) override;
    void setAppearsDisabled(bool appearsDisabled) override;

private:
    class Item;

    MainQueuePort& m_queue;
    std::weak_ptr<Item> m_item; // kept by its subscription
};

} // namespace tessarel::macos
