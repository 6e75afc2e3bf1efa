// SPDX-License-Identifier: MIT

#include "app/status_menu.h"

#include "model/config.h"
#include "model/presets.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace tessarel {

namespace {

MenuItem item(std::string title, MenuCommand command = MenuCommand::None, int tag = 0) {
    MenuItem result;
    result.title = std::move(title);
    result.command = command;
    result.tag = tag;
    return result;
}

MenuItem item(std::string title, MenuCommand command, std::string keyEquivalent) {
    MenuItem result = item(std::move(title), command);
    result.keyEquivalent = std::move(keyEquivalent);
    return result;
}

std::string withAppName(std::string_view verb) {
    return std::string(verb) + " " + std::string(Config::appName);
}

/// Returns the tag of a row that runs `action`: the action's index in `ActionID::allCases`.
int tagOf(ActionID action) {
    return static_cast<int>(ActionID::Case(action));
}

} // namespace

StatusMenu::StatusMenu(const Store& store, const Permissions& permissions, const Runtime& runtime,
                       PlatformWords words, KeyNamesPort& keyNames, IsTaken isTaken)
    : m_store(store), m_permissions(permissions), m_runtime(runtime), m_words(std::move(words)),
      m_keyNames(keyNames), m_isTaken(std::move(isTaken)) {}

Menu StatusMenu::rebuild() const {
    Menu menu;
    MenuItem heading = item(std::string(Config::appName) + " " + std::string(Config::version));
    heading.isEnabled = false;
    menu.push_back(std::move(heading));
    if (!m_permissions.isTrusted()) {
        menu.push_back(MenuItem::separator());
        menu.push_back(item(m_words.grantAccess, MenuCommand::GrantAccess));
    }
    menu.push_back(MenuItem::separator());
    addZoneItems(menu);
    menu.push_back(item(std::string(ActionID(ActionID::arrangeAll).title()), MenuCommand::RunMenuAction,
                        tagOf(ActionID::arrangeAll)));
    menu.push_back(moveWindowItem());
    menu.push_back(layoutsItem());
    menu.push_back(MenuItem::separator());
    MenuItem pause = item(withAppName("Pause"), MenuCommand::TogglePause);
    pause.isChecked = m_runtime.paused;
    menu.push_back(std::move(pause));
    menu.push_back(item("Settings...", MenuCommand::OpenSettings, ","));
    menu.push_back(item("Check for updates...", MenuCommand::CheckUpdates));
    menu.push_back(MenuItem::separator());
    menu.push_back(item(withAppName("Quit"), MenuCommand::Quit, "q"));
    return menu;
}

/// Adds a row for each enabled zone.
void StatusMenu::addZoneItems(Menu& menu) const {
    const std::vector<Zone>& zones = m_store.settings.zones;
    for (const ActionID action : ActionID::zoneActions) {
        const std::size_t zone = *action.zoneIndex();
        if (zone < zones.size() && zones[zone].enabled)
            menu.push_back(actionItem(action));
    }
}

/// Returns a row that runs `action`. The hot key is part of the title, because a key equivalent has no
/// modifiers of its own. It is left out if another program has the combination.
MenuItem StatusMenu::actionItem(ActionID action) const {
    std::string title(action.title());
    if (const std::optional<Binding> binding = m_store.binding(action); binding && !m_isTaken(action))
        title += "   (" +
                 KeyNames::describe(binding, m_words.modifierNames,
                                    [this](std::int64_t keyCode) { return m_keyNames.name(keyCode); }) +
                 ")";
    return item(std::move(title), MenuCommand::RunMenuAction, tagOf(action));
}

/// Returns a submenu with all actions that have no row of their own.
MenuItem StatusMenu::moveWindowItem() const {
    MenuItem parent = item("Move window");
    for (const ActionID action : ActionID::allCases) {
        if (!action.zoneIndex() && action != ActionID::arrangeAll)
            parent.submenu.push_back(actionItem(action));
    }
    return parent;
}

MenuItem StatusMenu::layoutsItem() const {
    MenuItem parent = item("Layouts");
    int tag = 0;
    for (const Layout& layout : Presets::all())
        parent.submenu.push_back(layoutItem(layout, tag++));
    const std::vector<Layout>& userLayouts = m_store.settings.userLayouts;
    if (!userLayouts.empty())
        parent.submenu.push_back(MenuItem::separator());
    tag = Presets::kFirstUserTag;
    for (const Layout& layout : userLayouts)
        parent.submenu.push_back(layoutItem(layout, tag++));
    return parent;
}

MenuItem StatusMenu::layoutItem(const Layout& layout, int tag) const {
    MenuItem result = item(layout.name, MenuCommand::ApplyLayout, tag);
    // Padded for the comparison, because there are always nine active zones.
    result.isChecked = m_store.settings.zones == Presets::pad(layout.zones);
    return result;
}

std::optional<ActionID> StatusMenu::action(int tag) {
    if (tag < 0 || static_cast<std::size_t>(tag) >= ActionID::allCases.size())
        return std::nullopt;
    return ActionID::allCases[static_cast<std::size_t>(tag)];
}

std::optional<std::vector<Zone>> StatusMenu::layoutZones(int tag) const {
    const Layout* const layout = Presets::layout(tag, m_store.settings.userLayouts);
    return layout ? std::optional(layout->zones) : std::nullopt;
}

} // namespace tessarel
