#pragma once

#include "support/child_process.h"
#include "support/connection.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tessarel::bench {

/// Where something is on the screen, in pixels.
struct Place {
    int x;
    int y;
};

/// A panel along the top of the screen with the icons of programs.
class Tray {
public:
    /// `config` is a file for tint2.
    explicit Tray(const std::filesystem::path& config);

    /// The centre of the icon of `program`, its file's name, once it is in the panel; throws
    /// std::runtime_error when it does not come within ten seconds.
    [[nodiscard]] Place awaitIcon(const std::string& program) const;

private:
    [[nodiscard]] std::optional<Place> findIcon(xcb_window_t below, const std::string& program) const;
    [[nodiscard]] std::optional<Place> centreOfIcon(xcb_window_t window, const std::string& program) const;

    Connection m_connection;
    ChildProcess m_panel;
};

} // namespace tessarel::bench
