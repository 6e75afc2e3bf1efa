// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace tessarel::plasmatest {

/// How a display is set up, as in the system settings.
struct OutputSetup {
    bool isEnabled = true;
    int x = 0; ///< of the top-left corner, in the compositor's coordinates
    int y = 0;
    double scale = 1;
    bool isPrimary = false;
};

/// Sets up the displays of a session.
class OutputControl {
public:
    /// Connects to the socket with this absolute path. Throws std::runtime_error if that fails.
    explicit OutputControl(const std::string& socket);
    OutputControl(const OutputControl&) = delete;
    OutputControl& operator=(const OutputControl&) = delete;
    ~OutputControl();

    /// Sets up the display with this index, and returns once the compositor has done so. Throws
    /// std::runtime_error if it refuses.
    void setUp(std::size_t display, const OutputSetup& setup);

private:
    class Connection;
    std::unique_ptr<Connection> m_connection;
};

} // namespace tessarel::plasmatest
