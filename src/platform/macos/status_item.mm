#include "platform/macos/status_item.h"

#include "platform/macos/callback_edge.h"
#include "platform/macos/conversions.h"
#include "platform/macos/menu_rows.h"

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

/// One item in the menu bar, from its construction to its destruction. The menu delegate and the rows refer
/// to it weakly, because the system may keep them longer.
class MacStatusItem::Item : public std::enable_shared_from_this<Item> {
public:
    Item(MainQueuePort& queue, Delegate delegate) : m_queue(queue), m_delegate(std::move(delegate)) {}
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;
    ~Item() {
        @autoreleasepool {
            [m_menu.get() setDelegate:nil];
            [[NSStatusBar systemStatusBar] removeStatusItem:m_item.get()];
        }
    }

    /// Attaches the menu. Call it once a shared pointer owns this object.
    void appear() {
        m_menuDelegate = ObjcRef<TSLMenuDelegate*>::adopt(
            [[TSLMenuDelegate alloc] initWithNeedsUpdate:[weak = weak_from_this()](NSMenu* menu) {
                if (const auto self = weak.lock())
                    self->fill(menu);
            }]);
        [m_menu.get() setDelegate:m_menuDelegate.get()];
        [m_item.get() setMenu:m_menu.get()];
    }

    /// Returns the button that shows image and title; nil when the system provides none.
    [[nodiscard]] NSStatusBarButton* button() const { return [m_item.get() button]; }

private:
    void fill(NSMenu* menu) {
        showRows(menu, m_delegate.menuNeedsUpdate(), [weak = weak_from_this()](const MenuItem& row) {
            if (const auto self = weak.lock())
                self->tellLater(row);
        });
    }

    /// Reports the row once the menu has closed; see `MacStatusItem`.
    void tellLater(const MenuItem& row) {
        m_queue.async([weak = weak_from_this(), row] {
            if (const auto self = weak.lock())
                atCallbackEdge([&] { self->m_delegate.itemSelected(row); });
        });
    }

    MainQueuePort& m_queue;
    Delegate m_delegate;
    ObjcRef<NSStatusItem*> m_item = ObjcRef<NSStatusItem*>::share(
        [[NSStatusBar systemStatusBar] statusItemWithLength:NSVariableStatusItemLength]);
    ObjcRef<NSMenu*> m_menu = makeMenu("");
    ObjcRef<TSLMenuDelegate*> m_menuDelegate; // NSMenu does not retain its delegate
};

SubscriptionPtr MacStatusItem::create(Delegate delegate) {
    struct End : Subscription {
        std::shared_ptr<Item> item;
    };
    @autoreleasepool {
        auto end = std::make_unique<End>();
        end->item = std::make_shared<Item>(m_queue, std::move(delegate));
        end->item->appear();
        m_item = end->item;
        return end;
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
