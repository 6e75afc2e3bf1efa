#pragma once

#include "engine/permissions.h"
#include "engine/runtime.h"
#include "model/action_id.h"
#include "model/key_names.h"
#include "model/layout.h"
#include "model/store.h"
#include "ports/menu.h"

#include <optional>
#include <vector>

namespace tessarel {

/// What the menu of the status item shows, built afresh each time it opens, and what the tags of its rows
/// mean.
class StatusMenu {
public:
    /// Tag of the first layout that the user saved; built-in layouts have their position as tag.
    static constexpr int kFirstUserLayoutTag = 1000;

    StatusMenu(const Store& store, const Permissions& permissions, const Runtime& runtime,
               const ModifierNames& modifierNames);

    /// The whole menu for the present settings, pause and trust.
    [[nodiscard]] Menu rebuild() const;

    /// The action that a row tagged `tag` runs; none for a tag that no action has.
    [[nodiscard]] static std::optional<ActionID> action(int tag);

    /// The zones of the layout that a row tagged `tag` applies, as they were saved; none when there is no
    /// such layout (any more).
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
    ModifierNames m_modifierNames;
};

} // namespace tessarel
