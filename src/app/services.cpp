// SPDX-License-Identifier: MIT

#include "app/services.h"

namespace tessarel {

Services::Services(const Ports& ports)
    : store(ports.preferences), storeSharing(store.share()), permissions(ports.trust),
      loginItem(ports.loginItem), geo(ports.displays, store), ax(ports.accessibility, ports.workspace),
      windowEngine(ax, geo, ports.displays, ports.workspace, ports.windowList, ports.alertSound, store),
      actionRunner(windowEngine, store, permissions, runtime), hotKeys(ports.hotKeys, actionRunner, store),
      overlay(ports.overlay), dragSnap({.mouse = ports.mouse,
                                        .mainQueue = ports.mainQueue,
                                        .store = store,
                                        .runtime = runtime,
                                        .permissions = permissions,
                                        .geo = geo,
                                        .ax = ax,
                                        .engine = windowEngine,
                                        .overlay = overlay}),
      appPlacer({.workspace = ports.workspace,
                 .mainQueue = ports.mainQueue,
                 .store = store,
                 .runtime = runtime,
                 .permissions = permissions,
                 .geo = geo,
                 .ax = ax,
                 .engine = windowEngine}),
      updater(store, ports.urlLoading, ports.wallClock, ports.alerts, ports.application, ports.openUrl) {}

} // namespace tessarel
