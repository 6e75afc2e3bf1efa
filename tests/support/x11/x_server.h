// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/child_process.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tessarel::x11test {

/// A temporary folder, removed with its contents in the destructor.
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

/// A RandR monitor: a part of the root window, in pixels.
struct Monitor {
    std::string name;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool primary = false;
};

/// Returns two monitors of different size, side by side with their tops aligned; `L` is the primary one.
[[nodiscard]] std::vector<Monitor> twoMonitors();

struct XServerOptions {
    int width = 1600;
    int height = 900;
    /// If empty, the server has one monitor, the whole root window.
    std::vector<Monitor> monitors = {};
    int depth = 24;             ///< bits per pixel; a screen of 8 has a palette
    bool tellsProcesses = true; ///< false disables the X-Resource extension
    bool offersGl = false;      ///< takes two thirds of the time in which a server starts
};

/// A private X server without a screen (Xvfb), with a private home for all programs on it.
///
/// The server uses a free display number and dies with the test process. Programs started with
/// `environment()` get this display, an empty home and nothing of the session in which the tests run.
class XServer {
public:
    /// Throws std::runtime_error if the server does not start.
    explicit XServer(const XServerOptions& options = {});

    /// Returns the display, for example ":17".
    [[nodiscard]] const std::string& display() const { return m_display; }
    [[nodiscard]] const Environment& environment() const { return m_environment; }
    [[nodiscard]] std::filesystem::path home() const { return m_folder.path() / "home"; }
    [[nodiscard]] std::filesystem::path configHome() const { return m_folder.path() / "config"; }

    /// Replaces the monitors of an earlier call. Names can be used again with another geometry.
    void setMonitors(const std::vector<Monitor>& monitors);

    [[nodiscard]] bool offersGl() const { return m_offersGl; }

    /// Kills the server while clients are connected.
    void kill() { m_process.kill(); }

private:
    TemporaryFolder m_folder;
    Environment m_environment;
    ChildProcess m_process;
    std::string m_display;
    std::vector<std::string> m_monitorNames;
    bool m_offersGl;
};

} // namespace tessarel::x11test
