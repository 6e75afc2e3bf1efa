// SPDX-License-Identifier: MIT

#include "support/x11/x_server.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>
#include <stdexcept>

namespace tessarel::x11test {

namespace {

/// The X authority file of this test process. Display numbers are reused: without it, a program that outlives
/// its server could connect to the server of another test.
class ServerKey {
public:
    ServerKey() {
        std::random_device random;
        std::string cookie(16, '\0');
        std::ranges::generate(cookie, [&] { return static_cast<char>(random()); });
        std::ofstream file(path());
        file.write("\xff\xff", 2); // family 0xffff: any address and display
        for (const std::string& field :
             {std::string(), std::string(), std::string("MIT-MAGIC-COOKIE-1"), cookie}) {
            const std::array<char, 2> length = {'\0', static_cast<char>(field.size())};
            file.write(length.data(), length.size()) << field;
        }
        ::setenv("XAUTHORITY", path().c_str(), 1); // for connections of this process
    }
    [[nodiscard]] std::filesystem::path path() const { return m_folder.path() / "authority"; }

private:
    TemporaryFolder m_folder;
};

const ServerKey& serverKey() {
    static const ServerKey key;
    return key;
}

Environment privateEnvironment(const std::filesystem::path& folder) {
    Environment environment = inheritedEnvironment();
    const std::map<std::string, std::string> folders = {{"HOME", "home"},
                                                        {"XDG_CONFIG_HOME", "config"},
                                                        {"XDG_DATA_HOME", "data"},
                                                        {"XDG_CACHE_HOME", "cache"},
                                                        {"XDG_STATE_HOME", "state"},
                                                        {"XDG_RUNTIME_DIR", "runtime"}};
    for (const auto& [variable, name] : folders) {
        std::filesystem::create_directory(folder / name);
        environment[variable] = folder / name;
    }
    std::filesystem::permissions(folder / "runtime", std::filesystem::perms::owner_all);
    environment["LANG"] = "C.UTF-8";
    environment["XDG_SESSION_TYPE"] = "x11";
    environment["NO_AT_BRIDGE"] = "1";
    environment["XAUTHORITY"] = serverKey().path();
    return environment;
}

std::vector<std::string> serverCommand(const XServerOptions& options) {
    const std::string screen = std::to_string(options.width) + "x" + std::to_string(options.height) + "x" +
                               std::to_string(options.depth);
    std::vector<std::string> command = {
        "Xvfb", "-displayfd", "1",     "-screen",         "0", screen, "-noreset", "-nolisten", "tcp",
        "-dpi", "96",         "-auth", serverKey().path()};
    if (!options.tellsProcesses)
        command.insert(command.end(), {"-extension", "X-Resource"});
    if (!options.offersGl)
        command.insert(command.end(), {"-extension", "GLX"});
    return command;
}

int millimetres(int pixels) {
    return static_cast<int>(std::lround(pixels * 25.4 / 96));
}

/// Returns `<width>/<mm>x<height>/<mm>+<x>+<y>`, the format of xrandr.
std::string geometry(const Monitor& monitor) {
    const auto extent = [](int pixels) {
        return std::to_string(pixels) + "/" + std::to_string(millimetres(pixels));
    };
    return extent(monitor.width) + "x" + extent(monitor.height) + "+" + std::to_string(monitor.x) + "+" +
           std::to_string(monitor.y);
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "tessarel-x11-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder " + pattern);
    m_path = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::vector<Monitor> twoMonitors() {
    return {{.name = "L", .x = 0, .y = 0, .width = 1440, .height = 900, .primary = true},
            {.name = "R", .x = 1440, .y = 0, .width = 1120, .height = 1024, .primary = false}};
}

XServer::XServer(const XServerOptions& options)
    : m_environment(privateEnvironment(m_folder.path())), m_process(serverCommand(options), m_environment),
      m_display(":" + m_process.readLine()), m_offersGl(options.offersGl) {
    m_environment["DISPLAY"] = m_display;
    setMonitors(options.monitors);
}

void XServer::setMonitors(const std::vector<Monitor>& monitors) {
    for (const std::string& name : m_monitorNames)
        runToEnd({"xrandr", "--delmonitor", name}, m_environment);
    m_monitorNames.clear();
    // The server has one output. The monitor that uses it replaces the automatic monitor of the whole root
    // window.
    for (const Monitor& monitor : monitors) {
        const std::string name = (monitor.primary ? "*" : "") + monitor.name;
        const std::string output = m_monitorNames.empty() ? "screen" : "none";
        runToEnd({"xrandr", "--setmonitor", name, geometry(monitor), output}, m_environment);
        m_monitorNames.push_back(monitor.name);
    }
}

} // namespace tessarel::x11test
