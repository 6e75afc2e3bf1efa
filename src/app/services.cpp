#include "app/services.h"

namespace tessarel {

Services::Services(const Ports& ports)
    : store(ports.preferences), storeSharing(store.share()), permissions(ports.trust),
      geo(ports.displays, store), ax(ports.accessibility, ports.workspace),
      windowEngine(ax, geo, ports.displays, ports.workspace, ports.windowList, ports.alertSound, store),
      actionRunner(windowEngine, store, permissions, runtime), hotKeys(ports.hotKeys, actionRunner, store) {}

} // namespace tessarel
