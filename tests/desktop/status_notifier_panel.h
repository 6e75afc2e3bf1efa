#pragma once

#include "support/x11/child_process.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::x11test {

/// What a panel on the session bus knows of the one status item there, and does to it.
class StatusNotifierPanel {
public:
    /// `environment` has the address of the bus.
    explicit StatusNotifierPanel(const Environment& environment) : m_environment(environment) {}

    /// Whether some panel is ready to show items.
    [[nodiscard]] bool isThere() const;
    /// Bus name of the one item that is registered; empty while none is.
    [[nodiscard]] std::string item() const;
    /// A property of the item's, as text.
    [[nodiscard]] std::string property(std::string_view name) const;

    /// Tells the item that its menu is about to open.
    void aboutToShowMenu() const;
    /// The item's whole menu, as text.
    [[nodiscard]] std::string menu() const;
    /// Chooses the row with this label out of `menu`; false when it has none.
    [[nodiscard]] bool choose(const std::string& menu, std::string_view label) const;
    /// Clicks on the item at this place of the screen, with the first or the second button; a panel that
    /// cannot draw menus hands the second one on too.
    void activate(int x, int y) const { clickOn("Activate", x, y); }
    void contextMenu(int x, int y) const { clickOn("ContextMenu", x, y); }

private:
    void clickOn(std::string_view method, int x, int y) const;
    /// What gdbus prints as the answer; empty when there is none.
    std::string call(const std::string& destination, const std::string& path, const std::string& method,
                     const std::vector<std::string>& arguments) const;

    Environment m_environment;
};

} // namespace tessarel::x11test
