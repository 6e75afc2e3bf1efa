// SPDX-License-Identifier: MIT

#pragma once

#include "platform/macos/windows/workspace.h"
#include "ports/desktop/local_keys_port.h"

#include <memory>

namespace tessarel::macos {

/// Key presses in this application's own windows. Combinations that another application has registered as hot
/// keys are not reported: the system delivers them to that application only.
class MacLocalKeys : public LocalKeysPort {
public:
    /// `workspace` must outlive this object.
    explicit MacLocalKeys(MacWorkspace& workspace);

    /// Consumes the repeats of a key that is held down; `handler` is called for the first press only.
    [[nodiscard]] SubscriptionPtr monitorKeyDown(Handler handler) override;

    /// Offers a press of one of our hot keys to the handlers; Carbon takes such a press before any window or
    /// event monitor receives it. Returns false, without calling any handler, when none is registered or
    /// another application is in front. Returns true otherwise, even when no handler has consumed the key.
    [[nodiscard]] bool takeHotKey(const KeyDown& key);

private:
    class Monitor;

    MacWorkspace& m_workspace;
    std::shared_ptr<Monitor> m_monitor; // shared with the subscriptions, which may outlive this object
};

} // namespace tessarel::macos
