// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/menu.h"

#include <functional>
#include <string>
#include <string_view>

namespace tessarel {

/// The program's item in the status area of the desktop.
class StatusItemPort {
public:
    /// Callbacks of an item.
    struct Delegate {
        /// Returns the menu. Called each time the menu is about to open.
        std::function<Menu()> menuNeedsUpdate;
        /// Called with the row that the user has chosen.
        std::function<void(const MenuItem&)> itemSelected;
    };

    virtual ~StatusItemPort() = default;

    /// Shows an item until the returned subscription is destroyed. If the desktop has no status area yet, the
    /// item appears as soon as there is one. The functions below apply to the item created last, and do
    /// nothing before the first.
    [[nodiscard]] virtual SubscriptionPtr create(Delegate delegate) = 0;

    /// Calls `placed` once it is known whether the desktop shows the item, which takes a status area, but
    /// within a few seconds of startup; maybe before this function returns, and never after the item's
    /// subscription has been destroyed.
    virtual void whenPlaced(std::function<void(bool isShown)> placed) = 0;

    /// Shows the system's symbol of that name as a template image and returns true. Returns false, and
    /// changes nothing, if the system has no such symbol.
    virtual bool setSymbol(std::string_view symbolName, std::string_view accessibilityDescription) = 0;
    /// Removes the image.
    virtual void clearImage() = 0;
    /// Sets the text beside the image, or in place of a missing image. May be empty.
    virtual void setTitle(std::string_view title) = 0;
    /// Dims the item. Its menu still opens.
    virtual void setAppearsDisabled(bool appearsDisabled) = 0;
};

} // namespace tessarel
