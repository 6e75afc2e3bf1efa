#pragma once

#include "ports/status_item_port.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace tessarel::sim {

/// The status item of the simulated desktop, with what a user sees of it and does to it.
class SimStatusItem : public StatusItemPort {
public:
    [[nodiscard]] SubscriptionPtr create(Delegate delegate) override;
    bool setSymbol(std::string_view symbolName, std::string_view accessibilityDescription) override;
    void clearImage() override;
    void setTitle(std::string_view title) override;
    void setAppearsDisabled(bool appearsDisabled) override;

    /// The user opens the menu. The item must be up.
    [[nodiscard]] Menu openMenu() { return m_delegate->menuNeedsUpdate(); }
    /// The user chooses a row, which may be one of a menu opened earlier.
    void choose(const MenuItem& item) { m_delegate->itemSelected(item); }

    [[nodiscard]] bool isUp() const { return m_delegate.has_value(); }

    std::set<std::string, std::less<>> symbols{"rectangle.3.group", "square.grid.2x2",
                                               "rectangle.split.3x1"}; ///< what the system has
    std::string symbol; ///< what the item shows; empty: no image
    std::string accessibilityDescription;
    std::string title;
    bool appearsDisabled = false;

private:
    std::optional<Delegate> m_delegate;
};

} // namespace tessarel::sim
