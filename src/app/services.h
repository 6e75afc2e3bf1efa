// SPDX-License-Identifier: MIT

#pragma once

#include "app/login_item.h"
#include "app/ports.h"
#include "app/updates/updater.h"
#include "engine/action_runner.h"
#include "engine/ax.h"
#include "engine/geo.h"
#include "engine/hot_keys.h"
#include "engine/permissions.h"
#include "engine/runtime.h"
#include "engine/window_engine.h"
#include "model/settings/store.h"
#include "model/subscription.h"
#include "placer/app_placer.h"
#include "snap/drag_snap.h"
#include "snap/overlay_controller.h"

namespace tessarel {

/// The services of the running program.
///
/// Each member uses only members declared above it, so the order of declaration is also the order in which
/// they can be safely created and, in reverse, destroyed.
struct Services {
    /// Creates all services. Does not register anything with the desktop yet.
    explicit Services(const Ports& ports);
    Services(const Services&) = delete;
    Services& operator=(const Services&) = delete;

    Store store;
    /// Makes `Store::shared()` return `store`.
    SubscriptionPtr storeSharing;
    Runtime runtime;
    Permissions permissions;
    LoginItem loginItem;
    Geo geo;
    AX ax;
    WindowEngine windowEngine;
    ActionRunner actionRunner;
    HotKeys hotKeys;
    OverlayController overlay;
    DragSnap dragSnap;
    AppPlacer appPlacer;
    Updater updater;
};

} // namespace tessarel
