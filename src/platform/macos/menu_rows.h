#pragma once

#include "platform/macos/refs.h"
#include "ports/menu.h"

#import <AppKit/AppKit.h>
#include <functional>
#include <memory>
#include <string_view>

// For Objective-C++ sources only.

/// What a row of a menu sends its message to. The row keeps it, since it does not keep its target.
@interface TSLMenuRow : NSObject {
    std::shared_ptr<const std::function<void()>> m_chosen;
}
- (instancetype)initWithChosen:(std::function<void()>)chosen;
- (void)choose:(id)sender;
@end

namespace tessarel::macos {

/// A row of which nothing comes.
[[nodiscard]] ObjcRef<NSMenuItem*> makeMenuItem(std::string_view title);

/// A row that calls `chosen`, for as long as anybody holds it.
[[nodiscard]] ObjcRef<NSMenuItem*> makeMenuItem(std::string_view title, std::function<void()> chosen);

/// A menu whose rows are enabled as they say themselves, whoever could act on them.
[[nodiscard]] ObjcRef<NSMenu*> makeMenu(std::string_view title);

/// Replaces all that `menu` shows by `rows`, each of which is given to `chosen` when the user chooses it.
void showRows(NSMenu* menu, const Menu& rows, const std::function<void(const MenuItem&)>& chosen);

} // namespace tessarel::macos
