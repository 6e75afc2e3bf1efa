#pragma once

#include "support/x11/child_process.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tessarel::x11test {

/// A folder of its own that goes with its owner.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

/// A display of the virtual desktop: a part of the root window, in pixels.
struct Monitor {
    std::string name;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool primary = false;
};

/// Two displays of different size, side by side, their tops aligned; `L` is the primary one.
[[nodiscard]] std::vector<Monitor> twoMonitors();

struct XServerOptions {
    int width = 1600;
    int height = 900;
    /// Without any, the server offers the whole root window as its one monitor.
    std::vector<Monitor> monitors = {};
    bool tellsProcesses = true; ///< whether it can be asked which process a client is
};

/// A private X server without a screen, and a private home for everything that runs on it.
///
/// The server listens on a free display number and dies with the test process. Programs started with
/// `environment()` see this display, an empty home and no session of the person who runs the tests.
class XServer {
public:
    /// Throws std::runtime_error when the server does not start.
    explicit XServer(const XServerOptions& options = {});

    /// Such as ":17".
    [[nodiscard]] const std::string& display() const { return m_display; }
    [[nodiscard]] const Environment& environment() const { return m_environment; }
    [[nodiscard]] std::filesystem::path home() const { return m_folder.path() / "home"; }
    [[nodiscard]] std::filesystem::path configHome() const { return m_folder.path() / "config"; }

    /// Replaces the monitors of an earlier call; the same names may come back with another geometry.
    void setMonitors(const std::vector<Monitor>& monitors);

    /// Ends the server under the feet of its clients.
    void kill() { m_process.kill(); }

private:
    TemporaryFolder m_folder;
    Environment m_environment;
    ChildProcess m_process;
    std::string m_display;
    std::vector<std::string> m_monitorNames;
};

} // namespace tessarel::x11test
