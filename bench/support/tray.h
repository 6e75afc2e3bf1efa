// SPDX-License-Identifier: MIT

#pragma once

#include "support/connection.h"
#include "support/drags.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tessarel::bench {

/// A panel along the top of the screen with a system tray.
class Tray {
public:
    /// Starts the panel with `config`, a tint2 configuration file.
    explicit Tray(const std::filesystem::path& config);

    /// Waits for the tray icon of `program` (the name of its file) and returns the centre of the icon. Throws
    /// std::runtime_error after ten seconds.
    [[nodiscard]] Place awaitIcon(const std::string& program) const;

private:
    [[nodiscard]] std::optional<Place> findIcon(xcb_window_t below, const std::string& program) const;
    [[nodiscard]] std::optional<Place> centreOfIcon(xcb_window_t window, const std::string& program) const;

    Connection m_connection;
    ChildProcess m_panel;
};

} // namespace tessarel::bench
