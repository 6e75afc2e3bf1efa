#pragma once

#include "model/subscription.h"
#include "platform/x11/server/connection.h"
#include "ports/single_instance_port.h"

#include <functional>

namespace tessarel::x11 {

/// Limits Tessarel to one copy per X screen: the copy that owns the selection "_TESSAREL_INSTANCE_S<screen>".
///
/// The server releases the selection when the owner disconnects, even if it crashed, so there are no stale
/// locks. A second copy sends the owner's window the client message "_TESSAREL_REOPEN". If another program
/// takes the selection, this copy goes on running but no longer receives that message.
class X11SingleInstance : public SingleInstancePort {
public:
    /// `connection` must outlive this object and the claim.
    explicit X11SingleInstance(Connection& connection) : m_connection(connection) {}

    /// Claims the selection; `reopened` is called whenever a later copy starts, until the returned
    /// subscription is destroyed. Returns null when another copy owns the selection, which is then notified,
    /// and when the connection is lost.
    [[nodiscard]] SubscriptionPtr claim(std::function<void()> reopened) override;

private:
    Connection& m_connection;
};

} // namespace tessarel::x11
