// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt/qt_own_application.h"

#include <cstdint>
#include <functional>
#include <utility>

namespace tessarel::qt {

/// This program on X11. Qt's own request for the focus has the time of the last input to one of its windows,
/// which a window manager may take for outdated when the user has asked for a window elsewhere.
class QtX11Application : public QtOwnApplication {
public:
    /// Handles a mapped window, whatever desktop it is on.
    using Handler = std::function<void(std::uint32_t window)>;

    /// `bringToUser` brings a window to the current desktop, in front, with the focus; `bringAlong` does so
    /// without the focus.
    QtX11Application(Handler bringToUser, Handler bringAlong)
        : m_bringToUser(std::move(bringToUser)), m_bringAlong(std::move(bringAlong)) {}

    /// Brings the visible windows to the user, a modal dialog last, so that it is in front. The last one gets
    /// the focus. Messages stay where they are, unless there is no other window.
    void activate() override;

private:
    Handler m_bringToUser;
    Handler m_bringAlong;
};

} // namespace tessarel::qt
