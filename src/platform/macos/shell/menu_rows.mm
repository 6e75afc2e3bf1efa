// SPDX-License-Identifier: MIT

#include "platform/macos/shell/menu_rows.h"

#include "platform/macos/objects/callback_edge.h"
#include "platform/macos/objects/conversions.h"

#include <utility>

@implementation TSLMenuRow

- (instancetype)initWithChosen:(std::function<void()>)chosen {
    if ((self = [super init]))
        m_chosen = std::make_shared<const std::function<void()>>(std::move(chosen));
    return self;
}

- (void)choose:(id)sender {
    (void)sender;
    @autoreleasepool {
        const auto chosen = m_chosen; // the call may release this target
        tessarel::macos::atCallbackEdge([&] { (*chosen)(); });
    }
}

@end

namespace tessarel::macos {

namespace {

using RowChosen = std::function<void(const MenuItem&)>;

/// Returns a row without an action: the click that opens its submenu would choose it.
ObjcRef<NSMenuItem*> parentFor(const MenuItem& row, const RowChosen& chosen) {
    auto parent = makeMenuItem(row.title);
    const auto submenu = makeMenu(row.title);
    showRows(submenu.get(), row.submenu, chosen);
    [parent.get() setSubmenu:submenu.get()];
    return parent;
}

ObjcRef<NSMenuItem*> itemFor(const MenuItem& row, const RowChosen& chosen) {
    if (row.isSeparator)
        return ObjcRef<NSMenuItem*>::share([NSMenuItem separatorItem]);
    auto item = row.submenu.empty() ? makeMenuItem(row.title, [row, chosen] { chosen(row); })
                                    : parentFor(row, chosen);
    [item.get() setEnabled:row.isEnabled];
    [item.get() setState:row.isChecked ? NSControlStateValueOn : NSControlStateValueOff];
    [item.get() setKeyEquivalent:shownText(row.keyEquivalent).get()];
    return item;
}

} // namespace

ObjcRef<NSMenuItem*> makeMenuItem(std::string_view title) {
    return ObjcRef<NSMenuItem*>::adopt([[NSMenuItem alloc] initWithTitle:shownText(title).get()
                                                                  action:nullptr
                                                           keyEquivalent:@""]);
}

ObjcRef<NSMenuItem*> makeMenuItem(std::string_view title, std::function<void()> chosen) {
    const auto target = ObjcRef<TSLMenuRow*>::adopt([[TSLMenuRow alloc] initWithChosen:std::move(chosen)]);
    auto item = makeMenuItem(title);
    // setTarget: does not retain, setRepresentedObject: does.
    [item.get() setTarget:target.get()];
    [item.get() setAction:@selector(choose:)];
    [item.get() setRepresentedObject:target.get()];
    return item;
}

ObjcRef<NSMenu*> makeMenu(std::string_view title) {
    auto menu = ObjcRef<NSMenu*>::adopt([[NSMenu alloc] initWithTitle:shownText(title).get()]);
    [menu.get() setAutoenablesItems:NO];
    return menu;
}

void showRows(NSMenu* menu, const Menu& rows, const RowChosen& chosen) {
    [menu removeAllItems];
    for (const MenuItem& row : rows)
        [menu addItem:itemFor(row, chosen).get()];
}

} // namespace tessarel::macos
