// SPDX-License-Identifier: MIT

#pragma once

#include "ports/status_item_port.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace tessarel::sim {

/// The status item of the simulated desktop. Records what a user sees of it, and lets a test use the menu.
class SimStatusItem : public StatusItemPort {
public:
    [[nodiscard]] SubscriptionPtr create(Delegate delegate) override;
    /// Calls `placed` before it returns.
    void whenPlaced(std::function<void(bool isShown)> placed) override { placed(hasStatusArea); }
    /// Fails for a name that is not in `symbols`.
    bool setSymbol(std::string_view symbolName, std::string_view accessibilityDescription) override;
    void clearImage() override;
    void setTitle(std::string_view title) override;
    void setAppearsDisabled(bool appearsDisabled) override;

    /// Opens the menu. The item must exist.
    [[nodiscard]] Menu openMenu() { return m_delegate->menuNeedsUpdate(); }
    /// Chooses a row of a menu that was opened now or earlier. The item must exist.
    void choose(const MenuItem& item) { m_delegate->itemSelected(item); }

    /// Returns whether the item exists.
    [[nodiscard]] bool isUp() const { return m_delegate.has_value(); }

    bool hasStatusArea = true; ///< whether the desktop has a place for the item
    /// Names of the symbols that the system has.
    std::set<std::string, std::less<>> symbols{"rectangle.3.group", "square.grid.2x2", "rectangle.split.3x1"};
    std::string symbol; ///< name of the symbol that the item shows; empty if it shows no image
    std::string accessibilityDescription;
    std::string title;
    bool appearsDisabled = false;

private:
    std::optional<Delegate> m_delegate;
};

} // namespace tessarel::sim
