#pragma once

#include "platform/macos/callbacks.h"
#include "platform/macos/workspace.h"
#include "ports/local_keys_port.h"

#include <memory>

namespace tessarel::macos {

/// The keys of this program's own windows. Combinations that another program has claimed do not come: the
/// system hands them to that program alone.
class MacLocalKeys : public LocalKeysPort {
public:
    /// `workspace` outlives the keys.
    explicit MacLocalKeys(MacWorkspace& workspace) : m_workspace(workspace) {}

    [[nodiscard]] SubscriptionPtr monitorKeyDown(Handler handler) override;

    /// Gives a key that the system has taken for one of our hot keys to the handlers; false when there is
    /// none, or when no window of ours has the keyboard.
    [[nodiscard]] bool takeHotKey(const KeyDown& key);

private:
    class Monitor;

    MacWorkspace& m_workspace;
    std::weak_ptr<Monitor> m_monitor; // kept by the subscriptions
};

} // namespace tessarel::macos
