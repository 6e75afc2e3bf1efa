// SPDX-License-Identifier: MIT

#pragma once

#include "support/connection.h"

#include <string>
#include <vector>

namespace tessarel::bench {

/// Sees and closes windows, as pagers do.
class Pager {
public:
    /// Returns whether the window manager lists a window.
    [[nodiscard]] bool lists(xcb_window_t window) const;
    /// Waits until a window of the program with this instance name is shown. Throws std::runtime_error if
    /// none is shown in ten seconds.
    [[nodiscard]] xcb_window_t awaitWindowOf(const std::string& program) const;
    [[nodiscard]] bool isShown(xcb_window_t window) const;

    void close(xcb_window_t window) const;

private:
    [[nodiscard]] std::vector<xcb_window_t> windows() const;
    [[nodiscard]] bool belongsTo(xcb_window_t window, const std::string& program) const;

    Connection m_connection;
};

} // namespace tessarel::bench
