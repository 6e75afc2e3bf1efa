#pragma once

#include "app/ports.h"
#include "app/services.h"
#include "model/subscription.h"

#include <optional>

namespace tessarel {

/// What the application does when it starts and when it ends.
///
/// Its end lets go of everything that it has claimed of the desktop.
class AppDelegate {
public:
    enum class Launch {
        Running,
        AnotherCopyRuns, ///< that copy has been told; nothing has been read, created or claimed
    };

    explicit AppDelegate(const Ports& ports);

    /// The launch sequence; call it once, before the loop runs.
    [[nodiscard]] Launch applicationDidFinishLaunching();

private:
    Ports m_ports;
    SubscriptionPtr m_instance;
    std::optional<Services> m_services; // none before this copy has the desktop
    SubscriptionPtr m_settingsObserver;
};

} // namespace tessarel
