// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel::qt {

/// Returns whether the server has closed a connection, whose socket is `descriptor`, or does so within half a
/// second: a server that dies closes one connection after the other.
[[nodiscard]] bool isDisplayLost(int descriptor);

/// Ends the program in order if the X server dies while Qt starts.
///
/// Qt's start then dereferences null replies, and Xlib ends the process with lines of its own. At most one
/// object of this class may exist at a time.
class DisplayLossGuard {
public:
    /// `descriptor` is the socket of another connection to the same server. `displayLost` must end the
    /// process; it may be called from the handler of a signal that Qt's own code has caused.
    DisplayLossGuard(int descriptor, void (*displayLost)());
    DisplayLossGuard(const DisplayLossGuard&) = delete;
    DisplayLossGuard& operator=(const DisplayLossGuard&) = delete;
    /// Restores the handler of the signal. Xlib's handler stays.
    ~DisplayLossGuard();
};

} // namespace tessarel::qt
