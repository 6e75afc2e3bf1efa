// SPDX-License-Identifier: MIT

#include "platform/macos/shell/status_item.h"

#include "model/call_on_end.h"
#include "model/lifetime.h"
#include "platform/macos/objects/callback_edge.h"
#include "platform/macos/objects/conversions.h"
#include "platform/macos/shell/menu_rows.h"
#include "ports/deferred_work.h"

#include <functional>
#include <memory>
#include <utility>

/// Delegate of the menu, which calls a function when the menu is about to open.
@interface TSLMenuDelegate : NSObject <NSMenuDelegate> {
    std::shared_ptr<const std::function<void(NSMenu*)>> m_needsUpdate;
}
- (instancetype)initWithNeedsUpdate:(std::function<void(NSMenu*)>)needsUpdate;
@end

@implementation TSLMenuDelegate

- (instancetype)initWithNeedsUpdate:(std::function<void(NSMenu*)>)needsUpdate {
    if ((self = [super init]))
        m_needsUpdate = std::make_shared<const std::function<void(NSMenu*)>>(std::move(needsUpdate));
    return self;
}

- (void)menuNeedsUpdate:(NSMenu*)menu {
    @autoreleasepool {
        const auto needsUpdate = m_needsUpdate; // the call may release this delegate
        tessarel::macos::atCallbackEdge([&] { (*needsUpdate)(menu); });
    }
}

@end

namespace tessarel::macos {

/// One item in the menu bar, from its construction to its destruction. The menu delegate and the rows watch
/// its lifetime, because the system may keep them longer.
class MacStatusItem::Item {
public:
    Item(MainQueuePort& queue, Delegate delegate) : m_delegate(std::move(delegate)), m_later(queue) {
        m_menuDelegate = ObjcRef<TSLMenuDelegate*>::adopt(
            [[TSLMenuDelegate alloc] initWithNeedsUpdate:[this, alive = m_lifetime.watch()](NSMenu* menu) {
                if (!alive.expired())
                    fill(menu);
            }]);
        [m_menu.get() setDelegate:m_menuDelegate.get()];
        [m_item.get() setMenu:m_menu.get()];
    }
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;
    ~Item() {
        @autoreleasepool {
            [m_menu.get() setDelegate:nil];
            [[NSStatusBar systemStatusBar] removeStatusItem:m_item.get()];
        }
    }

    /// Returns the button that shows image and title; nil when the system provides none.
    [[nodiscard]] NSStatusBarButton* button() const { return [m_item.get() button]; }

private:
    void fill(NSMenu* menu) {
        showRows(menu, m_delegate.menuNeedsUpdate(), [this, alive = m_lifetime.watch()](const MenuItem& row) {
            if (!alive.expired())
                chooseLater(row);
        });
    }

    /// Reports the row once the menu has closed; see `MacStatusItem`.
    void chooseLater(const MenuItem& row) {
        // The callback is copied, because it may destroy this item.
        m_later.async(
            [row, itemSelected = m_delegate.itemSelected] { atCallbackEdge([&] { itemSelected(row); }); });
    }

    Lifetime m_lifetime;
    Delegate m_delegate;
    ObjcRef<NSStatusItem*> m_item = ObjcRef<NSStatusItem*>::share(
        [[NSStatusBar systemStatusBar] statusItemWithLength:NSVariableStatusItemLength]);
    ObjcRef<NSMenu*> m_menu = makeMenu("");
    ObjcRef<TSLMenuDelegate*> m_menuDelegate; // NSMenu does not retain its delegate
    DeferredWork m_later;
};

SubscriptionPtr MacStatusItem::create(Delegate delegate) {
    @autoreleasepool {
        auto item = std::make_shared<Item>(m_queue, std::move(delegate));
        m_item = item;
        return callOnEnd([item = std::move(item)] {}); // owns the item
    }
}

bool MacStatusItem::setSymbol(std::string_view symbolName, std::string_view accessibilityDescription) {
    @autoreleasepool {
        const auto item = m_item.lock();
        const auto name = nsString(symbolName);
        if (!item || !name)
            return false;
        NSImage* const image = [NSImage imageWithSystemSymbolName:name.get()
                                         accessibilityDescription:shownText(accessibilityDescription).get()];
        if (!image)
            return false;
        // The menu bar draws a template image in its own colour, light or dark.
        [image setTemplate:YES];
        [item->button() setImage:image];
        return true;
    }
}

void MacStatusItem::clearImage() {
    @autoreleasepool {
        if (const auto item = m_item.lock())
            [item->button() setImage:nil];
    }
}

void MacStatusItem::setTitle(std::string_view title) {
    @autoreleasepool {
        if (const auto item = m_item.lock())
            [item->button() setTitle:shownText(title).get()];
    }
}

void MacStatusItem::setAppearsDisabled(bool appearsDisabled) {
    @autoreleasepool {
        if (const auto item = m_item.lock())
            [item->button() setAppearsDisabled:appearsDisabled];
    }
}

} // namespace tessarel::macos
