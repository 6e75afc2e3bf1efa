// SPDX-License-Identifier: MIT

#include "model/settings/app_settings.h"

#include "model/action_id.h"
#include "model/presets.h"

namespace tessarel {

std::vector<Zone> AppSettings::defaultZones() {
    return Presets::all().front().zones;
}

AppSettings::Bindings AppSettings::defaultBindings() {
    Bindings bindings;
    for (const ActionID action : ActionID::allCases)
        bindings.emplace(action.rawValue(), action.defaultBinding());
    return bindings;
}

} // namespace tessarel
