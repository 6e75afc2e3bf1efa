#include "app/app_delegate.h"

namespace tessarel {

AppDelegate::AppDelegate(const Ports& ports) : m_ports(ports) {}

AppDelegate::Launch AppDelegate::applicationDidFinishLaunching() {
    m_instance = m_ports.singleInstance.claim([] {}); // there is no window to bring back to the user
    if (!m_instance)
        return Launch::AnotherCopyRuns;

    Services& services = m_services.emplace(m_ports);
    services.hotKeys.registerAll();
    m_settingsObserver =
        services.store.tessarelSettingsChanged.addObserver([&services] { services.hotKeys.registerAll(); });
    if (!services.permissions.isTrusted())
        services.permissions.prompt();
    return Launch::Running;
}

} // namespace tessarel
