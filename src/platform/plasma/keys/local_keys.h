// SPDX-License-Identifier: MIT

#pragma once

#include "model/call_on_end.h"
#include "platform/plasma/keys/global_shortcuts.h"
#include "ports/desktop/local_keys_port.h"

#include <memory>
#include <utility>

namespace tessarel::plasma {

/// The key presses in this program's windows. While there is a monitor, no shortcut of the desktop triggers.
class LocalKeys : public LocalKeysPort {
public:
    /// `windows` reports the key presses. Both must outlive this object.
    LocalKeys(LocalKeysPort& windows, GlobalShortcuts& shortcuts)
        : m_windows(windows), m_shortcuts(shortcuts) {}

    [[nodiscard]] SubscriptionPtr monitorKeyDown(Handler handler) override {
        return callOnEnd(
            [monitor = std::shared_ptr<Subscription>(m_windows.monitorKeyDown(std::move(handler))),
             block = std::shared_ptr<Subscription>(m_shortcuts.blockAll())] {});
    }

private:
    LocalKeysPort& m_windows;
    GlobalShortcuts& m_shortcuts;
};

} // namespace tessarel::plasma
