// SPDX-License-Identifier: MIT

#pragma once

#include "platform/macos/objects/refs.h"
#include "ports/menu.h"

#import <AppKit/AppKit.h>
#include <functional>
#include <memory>
#include <string_view>

// For Objective-C++ sources only.

/// Target of a menu row's action. A menu item does not retain its target, so the row retains it as its
/// represented object.
@interface TSLMenuRow : NSObject {
    std::shared_ptr<const std::function<void()>> m_chosen;
}
- (instancetype)initWithChosen:(std::function<void()>)chosen;
- (void)choose:(id)sender;
@end

namespace tessarel::macos {

/// Returns a row without an action, such as the parent of a submenu.
[[nodiscard]] ObjcRef<NSMenuItem*> makeMenuItem(std::string_view title);

/// Returns a row that calls `chosen` when the user chooses it. The row owns `chosen`.
[[nodiscard]] ObjcRef<NSMenuItem*> makeMenuItem(std::string_view title, std::function<void()> chosen);

/// Returns a menu that leaves the enabled state of its rows as it was set, instead of enabling each row
/// according to the responder chain.
[[nodiscard]] ObjcRef<NSMenu*> makeMenu(std::string_view title);

/// Replaces the rows of `menu` with `rows`. Calls `chosen` with the row that the user chooses, submenus
/// included.
void showRows(NSMenu* menu, const Menu& rows, const std::function<void(const MenuItem&)>& chosen);

} // namespace tessarel::macos
