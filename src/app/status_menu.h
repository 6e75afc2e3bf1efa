// SPDX-License-Identifier: MIT

#pragma once

#include "engine/permissions.h"
#include "engine/runtime.h"
#include "model/action_id.h"
#include "model/layout.h"
#include "model/settings/store.h"
#include "ports/desktop/key_names_port.h"
#include "ports/menu.h"
#include "ports/platform_words.h"

#include <functional>
#include <optional>
#include <vector>

namespace tessarel {

/// Builds the menu of the status item and interprets the tags of its rows. The menu is built anew each time
/// it opens, so it always shows the current state.
class StatusMenu {
public:
    /// Returns whether another program has the combination of an action; see `HotKeys::isTaken`.
    using IsTaken = std::function<bool(ActionID)>;

    /// `store`, `permissions`, `runtime` and `keyNames` must outlive the menu.
    StatusMenu(const Store& store, const Permissions& permissions, const Runtime& runtime,
               PlatformWords words, KeyNamesPort& keyNames, IsTaken isTaken);

    /// Returns the whole menu for the current settings, pause and permission.
    [[nodiscard]] Menu rebuild() const;

    /// Returns the action of rows with tag `tag`, or `std::nullopt` if there is no such action.
    [[nodiscard]] static std::optional<ActionID> action(int tag);

    /// Returns the zones of the layout with tag `tag` as saved, not padded to nine, or `std::nullopt` if
    /// there is no such layout.
    [[nodiscard]] std::optional<std::vector<Zone>> layoutZones(int tag) const;

private:
    [[nodiscard]] MenuItem actionItem(ActionID action) const;
    [[nodiscard]] MenuItem layoutItem(const Layout& layout, int tag) const;
    [[nodiscard]] MenuItem moveWindowItem() const;
    [[nodiscard]] MenuItem layoutsItem() const;
    void addZoneItems(Menu& menu) const;

    const Store& m_store;
    const Permissions& m_permissions;
    const Runtime& m_runtime;
    PlatformWords m_words;
    KeyNamesPort& m_keyNames;
    IsTaken m_isTaken;
};

} // namespace tessarel
