// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt_xdg/bus_probe.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace tessarel::qt {

/// Lets Qt do without the input method ibus if its daemon does not reply.
///
/// The daemon is a bus apart from the session bus. Qt connects to it while it creates the application object,
/// and blocks until it has replied.
class InputMethodProbe {
public:
    /// Starts probing the daemon, if the environment chooses ibus and the daemon runs. Does not block.
    InputMethodProbe();

    /// Waits for up to `patience` until the daemon has replied. If it has not, Qt uses its default input
    /// method, which knows dead keys, as long as the result exists. Call it before the application object is
    /// created, and keep the result until it exists.
    [[nodiscard]] std::shared_ptr<void>
    beforeQt(std::chrono::milliseconds patience = std::chrono::milliseconds(100));

    /// Returns whether the environment chooses an input method that Qt connects to the session bus while it
    /// creates the application object (fcitx).
    [[nodiscard]] static bool usesSessionBus();

    /// Returns the address of the bus in the text of the file in which ibus announces it; empty unless the
    /// daemon that has written it runs.
    [[nodiscard]] static std::string addressIn(const std::string& announcement);

private:
    std::optional<BusProbe> m_probe; // empty if Qt does not connect
};

} // namespace tessarel::qt
