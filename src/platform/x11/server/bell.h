// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"
#include "ports/alert_sound_port.h"

namespace tessarel::x11 {

/// The X server's bell, at the volume that the user has set.
class X11Bell : public AlertSoundPort {
public:
    /// `connection` must outlive the bell.
    explicit X11Bell(Connection& connection) : m_connection(connection) {}

    /// Rings the bell and flushes the connection, so that it sounds before the turn ends.
    void beep() override;

private:
    Connection& m_connection;
};

} // namespace tessarel::x11
