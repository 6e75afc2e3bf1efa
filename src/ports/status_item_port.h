#pragma once

#include "model/subscription.h"
#include "ports/menu.h"

#include <functional>
#include <string>
#include <string_view>

namespace tessarel {

/// The program's item among the status icons of the desktop.
class StatusItemPort {
public:
    struct Delegate {
        std::function<Menu()> menuNeedsUpdate; ///< the menu, asked for each time it is about to open
        std::function<void(const MenuItem&)> itemSelected; ///< a row was chosen
    };

    virtual ~StatusItemPort() = default;

    /// Puts the item up; it goes with the answer. Where the desktop has no place for it now, it appears as
    /// soon as there is one. The calls below mean the item put up last and do nothing before the first.
    [[nodiscard]] virtual SubscriptionPtr create(Delegate delegate) = 0;

    /// Shows the system's symbol of that name as a template image; false, and no change, when the system has
    /// none.
    virtual bool setSymbol(std::string_view symbolName, std::string_view accessibilityDescription) = 0;
    virtual void clearImage() = 0;
    /// Text beside the image or in its place; may be empty.
    virtual void setTitle(std::string_view title) = 0;
    virtual void setAppearsDisabled(bool appearsDisabled) = 0;
};

} // namespace tessarel
