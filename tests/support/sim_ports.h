// SPDX-License-Identifier: MIT

#pragma once

#include "app/ports.h"
#include "platform/sim/sim_desktop.h"

namespace tessarel {

/// The words of the simulated desktop.
inline const PlatformWords kSimWords;

/// Returns all ports of a simulated desktop, for the program instance of `instance`. The keys of its own
/// windows come from `localKeys`.
inline Ports simPorts(sim::SimDesktop& desktop, SingleInstancePort& instance, LocalKeysPort& localKeys,
                      const PlatformWords& words = kSimWords) {
    return {.accessibility = desktop.accessibility(),
            .alertSound = desktop.alertSound(),
            .alerts = desktop.alerts(),
            .application = desktop.ownApplication(),
            .displays = desktop.displays(),
            .hotKeys = desktop.hotKeys(),
            .keyNames = desktop.keyNames(),
            .localKeys = localKeys,
            .loginItem = desktop.loginItem(),
            .mainMenu = desktop.mainMenu(),
            .mainQueue = desktop.mainQueue(),
            .mouse = desktop.mouse(),
            .openPanel = desktop.openPanel(),
            .openUrl = desktop.openUrl(),
            .overlay = desktop.overlay(),
            .preferences = desktop.preferences(),
            .singleInstance = instance,
            .statusItem = desktop.statusItem(),
            .trust = desktop.trust(),
            .urlLoading = desktop.urlLoading(),
            .wallClock = desktop.wallClock(),
            .windowList = desktop.windowList(),
            .workspace = desktop.workspace(),
            .words = words};
}

/// Returns all ports of a simulated desktop, for the program instance of `instance`, with the words `words`.
inline Ports simPorts(sim::SimDesktop& desktop, SingleInstancePort& instance,
                      const PlatformWords& words = kSimWords) {
    return simPorts(desktop, instance, desktop.localKeys(), words);
}

} // namespace tessarel
