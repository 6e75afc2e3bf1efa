// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/app_settings.h"

namespace tessarel {

/// Calls `visit(name, member)` for every setting, with its name in the settings document and the pointer to
/// its member of `AppSettings`.
template <typename Visit>
void forEachSetting(Visit visit) {
    visit("zones", &AppSettings::zones);
    visit("bindings", &AppSettings::bindings);
    visit("userLayouts", &AppSettings::userLayouts);
    visit("gap", &AppSettings::gap);
    visit("margin", &AppSettings::margin);
    visit("dragEnabled", &AppSettings::dragEnabled);
    visit("dragTrigger", &AppSettings::dragTrigger);
    visit("edgeSnap", &AppSettings::edgeSnap);
    visit("ignoredApps", &AppSettings::ignoredApps);
    visit("hasOnboarded", &AppSettings::hasOnboarded);
    visit("gridStep", &AppSettings::gridStep);
    visit("lastUpdateCheck", &AppSettings::lastUpdateCheck);
    visit("rememberApps", &AppSettings::rememberApps);
    visit("appZones", &AppSettings::appZones);
}

} // namespace tessarel
