// SPDX-License-Identifier: MIT

#include "platform/macos/shell/main_menu.h"

#include "platform/macos/objects/conversions.h"
#include "platform/macos/shell/menu_rows.h"

#include <utility>

namespace tessarel::macos {

namespace {

using Toolkit = MacMainMenu::Toolkit;

/// Performs the action of a row in the toolkit's window or, failing that, along the responder chain
/// (`to:nil`). Does nothing once the main menu has been destroyed.
void perform(const MainMenuItem& row, const std::weak_ptr<const Toolkit>& weak) {
    const auto toolkit = weak.lock();
    if (!toolkit || (*toolkit && (*toolkit)(row)))
        return;
    [[NSApplication sharedApplication] sendAction:NSSelectorFromString(nsString(row.action).get())
                                               to:nil
                                             from:nil];
}

ObjcRef<NSMenuItem*> itemFor(const MainMenuItem& row, const std::weak_ptr<const Toolkit>& toolkit) {
    if (row.title.empty())
        return ObjcRef<NSMenuItem*>::share([NSMenuItem separatorItem]);
    auto item = makeMenuItem(row.title, [row, toolkit] { perform(row, toolkit); });
    if (row.key != 0)
        [item.get() setKeyEquivalent:nsString({&row.key, 1}).get()];
    // Command alone is the default.
    if (row.withShift)
        [item.get() setKeyEquivalentModifierMask:NSEventModifierFlagShift | NSEventModifierFlagCommand];
    return item;
}

} // namespace

/// The application's main menu, set from the constructor to the destructor.
class MacMainMenu::Bar {
public:
    Bar() { [[NSApplication sharedApplication] setMainMenu:m_menu.get()]; }
    Bar(const Bar&) = delete;
    Bar& operator=(const Bar&) = delete;
    ~Bar() {
        @autoreleasepool {
            NSApplication* const application = [NSApplication sharedApplication];
            // Another bar may have been set already; see `setMainMenu`.
            if ([application mainMenu] == m_menu.get())
                [application setMainMenu:nil];
        }
    }

    /// Adds a menu at the end. The system takes the title of the first one from the bundle.
    void add(const MainMenu& menu, const std::weak_ptr<const Toolkit>& toolkit) {
        const auto submenu = makeMenu(menu.title);
        for (const MainMenuItem& row : menu.items)
            [submenu.get() addItem:itemFor(row, toolkit).get()];
        const auto parent = makeMenuItem(menu.title);
        [parent.get() setSubmenu:submenu.get()];
        [m_menu.get() addItem:parent.get()];
    }

private:
    ObjcRef<NSMenu*> m_menu = makeMenu("");
};

MacMainMenu::MacMainMenu(Toolkit toolkit) : m_toolkit(std::make_shared<const Toolkit>(std::move(toolkit))) {}

MacMainMenu::~MacMainMenu() = default;

void MacMainMenu::setMainMenu(const std::vector<MainMenu>& menus) {
    @autoreleasepool {
        // The new bar is set before the old one is destroyed, so the application is never without a menu.
        auto bar = std::make_unique<Bar>();
        for (const MainMenu& menu : menus)
            bar->add(menu, m_toolkit);
        m_bar = std::move(bar);
    }
}

} // namespace tessarel::macos
