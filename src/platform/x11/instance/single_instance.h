// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/x11/server/connection.h"
#include "ports/single_instance_port.h"

#include <chrono>
#include <functional>
#include <memory>

namespace tessarel::x11 {

/// Limits Tessarel to one copy per X screen: the copy that owns the selection "_TESSAREL_INSTANCE_S<screen>".
///
/// The server releases the selection when the owner disconnects, even if it crashed, so there are no stale
/// locks. A second copy sends the owner's window the client message "_TESSAREL_REOPEN". If another program
/// takes the selection, this copy must quit: otherwise a later copy could run beside it.
class X11SingleInstance : public SingleInstancePort {
public:
    /// `connection` must outlive this object and the claim.
    explicit X11SingleInstance(Connection& connection);
    X11SingleInstance(const X11SingleInstance&) = delete;
    X11SingleInstance& operator=(const X11SingleInstance&) = delete;
    ~X11SingleInstance() override;

    /// How long the start of a copy waits for the copy that owns the selection. That copy does not reply
    /// before its event loop runs.
    static constexpr std::chrono::milliseconds kPatience{2000};

    /// Claims the selection; `reopened` is called whenever a later copy starts, and `lost` when another
    /// client takes or clears the selection, until the returned subscription is destroyed. Returns null when
    /// another client owns the selection, and when the connection is lost. The client is then notified, if it
    /// is a copy of the program.
    [[nodiscard]] SubscriptionPtr claim(std::function<void()> reopened, std::function<void()> lost) override;

    /// Waits at most `kPatience`, and not at all if the owner of the selection is another program.
    [[nodiscard]] Reaction awaitReaction() override;

private:
    class Instance;

    Connection& m_connection;
    std::unique_ptr<Instance> m_refused; ///< null unless the last claim was refused
};

} // namespace tessarel::x11
