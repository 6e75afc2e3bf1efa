#pragma once

#include "ports/status_item_port.h"

#include <memory>
#include <string_view>

namespace tessarel::macos {

/// The item in the menu bar. Its menu is filled whenever the user opens it; a row that was chosen is told
/// when the menu has closed.
class MacStatusItem : public StatusItemPort {
public:
    [[nodiscard]] SubscriptionPtr create(Delegate delegate) override;

    bool setSymbol(std::string_view symbolName, std::string_view accessibilityDescription) override;
    void clearImage() override;
    void setTitle(std::string_view title) override;
    void setAppearsDisabled(bool appearsDisabled) override;

private:
    class Item;

    std::weak_ptr<Item> m_item; // kept by its subscription
};

} // namespace tessarel::macos
