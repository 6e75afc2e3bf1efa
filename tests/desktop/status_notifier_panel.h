// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/child_process.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::x11test {

/// Reads and controls the one status item on the session bus, as a panel does.
class StatusNotifierPanel {
public:
    /// `environment` contains the address of the bus.
    explicit StatusNotifierPanel(const Environment& environment) : m_environment(environment) {}

    /// Returns true if a panel is ready to show items.
    [[nodiscard]] bool isThere() const;
    /// Returns the bus name of the registered item; empty if there is none.
    [[nodiscard]] std::string item() const;
    /// Returns a property of the item as text.
    [[nodiscard]] std::string property(std::string_view name) const;

    /// Tells the item that its menu is about to open.
    void aboutToShowMenu() const;
    /// Returns the item's whole menu as text.
    [[nodiscard]] std::string menu() const;
    /// Returns true if `menu` has a row with this label, and the row is checked.
    [[nodiscard]] static bool isMarked(const std::string& menu, const std::string& label);
    /// Activates the row with this label in `menu`. Returns false if there is no such row.
    [[nodiscard]] bool choose(const std::string& menu, std::string_view label) const;
    /// Clicks the item at a point of the screen, with the first or the second button. A panel that cannot
    /// draw menus forwards clicks of the second button, too.
    void activate(int x, int y) const { clickOn("Activate", x, y); }
    void contextMenu(int x, int y) const { clickOn("ContextMenu", x, y); }

private:
    void clickOn(std::string_view method, int x, int y) const;
    /// Calls a method and returns the output of gdbus; empty on failure.
    std::string call(const std::string& destination, const std::string& path, const std::string& method,
                     const std::vector<std::string>& arguments) const;

    Environment m_environment;
};

} // namespace tessarel::x11test
