// SPDX-License-Identifier: MIT

#include "plasma_stage.h"

#include "support/plasma/screenshot.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tessarel::plasmademo {

namespace {

namespace fs = std::filesystem;
using plasmatest::PlasmaSession;
using plasmatest::Screenshot;
using plasmatest::SeenWindow;

void require(bool holds, const std::string& what) {
    if (!holds)
        throw std::runtime_error(what);
}

} // namespace

PlasmaStage::PlasmaStage() {
    copyFiles();
    start({"kded5"});
    require(PlasmaSession::waitFor([this] {
                try {
                    x11test::runToEnd({"gdbus", "call", "--session", "-d", "org.kde.kded5", "-o", "/kded",
                                       "-m", "org.kde.kded5.loadModule", "statusnotifierwatcher"},
                                      m_session.environment());
                    return true;
                } catch (const std::runtime_error&) {
                    return false; // it has not started yet
                }
            }),
            "kded5 does not start");
    start({"plasmashell", "--no-respawn"});
    require(PlasmaSession::waitFor([this] { return m_panel.isThere(); }), "plasmashell shows no icons");
    require(PlasmaSession::waitFor([this] {
                return tellShell("for (const one of desktops()) {"
                                 " one.wallpaperPlugin = 'org.kde.image';"
                                 " one.currentConfigGroup = ['Wallpaper', 'org.kde.image', 'General'];"
                                 " one.writeConfig('Image', 'file://" TESSAREL_SOURCES
                                 "/demo/landscape.svg'); }");
            }),
            "plasmashell takes no background");
    require(m_session.probe().waitUntil([this] { return panelHeight() > 0; }), "plasmashell shows no panel");
}

double PlasmaStage::panelHeight() {
    for (const SeenWindow& window : m_session.probe().windows()) {
        const bool isAtBottom =
            window.frame.maxY() == kDisplay.height && window.frame.y > kDisplay.height / 2;
        if (window.windowClass == "org.kde.plasmashell" && window.frame.width == kDisplay.width && isAtBottom)
            return window.frame.height;
    }
    return 0;
}

/// Puts the files of the session where programs look for them: fonts, and what an installed Tessarel has.
void PlasmaStage::copyFiles() {
    const fs::path config = m_session.environment().at("XDG_CONFIG_HOME");
    const fs::path data = m_session.environment().at("XDG_DATA_HOME");
    const fs::path package = TESSAREL_PACKAGE_FILES;
    fs::copy(fs::path(TESSAREL_SOURCES) / "demo/config/fontconfig", config / "fontconfig");
    std::ofstream(config / "kdeglobals") << "[General]\nfont=Inter,10,-1,5,50,0,0,0,0,0\n"
                                            "fixed=DejaVu Sans Mono,10,-1,5,50,0,0,0,0,0\n"
                                            "[Icons]\nTheme=breeze\n";
    fs::create_directories(data / "konsole");
    std::ofstream(data / "konsole/demo.profile") << "[General]\nName=demo\nParent=FALLBACK/\n"
                                                    "ShowTerminalSizeHint=false\n[Appearance]\n"
                                                    "Font=DejaVu Sans Mono,11,-1,5,50,0,0,0,0,0\n";
    std::ofstream(config / "konsolerc") << "[Desktop Entry]\nDefaultProfile=demo.profile\n"
                                           "[KonsoleWindow]\nShowMenuBarByDefault=false\n"
                                           "[MainWindow][Toolbar sessionToolbar]\nHidden=true\n"
                                           "[MainWindow]\nToolBarsMovable=Disabled\n";
    std::ofstream(config / "kwriterc") << "[General]\nShow welcome view for new window=false\n";
    fs::create_directories(data / "applications");
    fs::create_directories(data / "icons");
    fs::copy_file(package / (TESSAREL_BUNDLE_ID ".desktop"),
                  data / "applications" / (TESSAREL_BUNDLE_ID ".desktop"));
    fs::copy(package / "hicolor", data / "icons" / "hicolor", fs::copy_options::recursive);
}

void PlasmaStage::start(const std::vector<std::string>& command) {
    m_processes.emplace_back(command, m_session.environment());
}

bool PlasmaStage::tellShell(const std::string& script) {
    try {
        x11test::runToEnd({"gdbus", "call", "--session", "-d", "org.kde.plasmashell", "-o", "/PlasmaShell",
                           "-m", "org.kde.PlasmaShell.evaluateScript", script},
                          m_session.environment());
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

void PlasmaStage::put(const std::string& windowClass, const Rect& frame) {
    std::ostringstream script;
    script << "workspace.clientList().filter((c) => c.resourceClass == '" << windowClass
           << "').forEach((c) => { c.frameGeometry = { x: " << frame.x << ", y: " << frame.y
           << ", width: " << frame.width << ", height: " << frame.height << " }; });";
    m_session.probe().run(script.str());
    (void)m_session.settledFrame(windowClass, frame);
}

void PlasmaStage::activate(const std::string& windowClass) {
    m_session.probe().run("workspace.clientList().filter((c) => c.resourceClass == '" + windowClass +
                          "').forEach((c) => { workspace.activeClient = c; });");
    require(m_session.probe().waitUntil([&] {
        return std::ranges::any_of(m_session.probe().windows(), [&](const SeenWindow& window) {
            return window.windowClass == windowClass && window.isActive;
        });
    }),
            windowClass + " cannot be activated");
}

Rect PlasmaStage::frameOfTitle(std::string_view title) {
    const auto& windows = m_session.probe().windows();
    const auto found = std::ranges::find(windows, title, &SeenWindow::title);
    return found == windows.end() ? Rect::null() : found->frame;
}

void PlasmaStage::shoot(const fs::path& file) {
    Screenshot shot;
    (void)PlasmaSession::waitFor([&] {
        const auto before = std::move(shot.pixels);
        shot = plasmatest::takeScreenshot(m_session.environment().at("DBUS_SESSION_BUS_ADDRESS"),
                                          {0, 0, kDisplay.width, kDisplay.height});
        return shot.pixels == before;
    });
    std::ofstream out(file, std::ios::binary);
    out << "P6 " << shot.width << ' ' << shot.height << " 255\n";
    for (const std::uint32_t pixel : shot.pixels)
        for (const unsigned shift : {16U, 8U, 0U})
            out.put(static_cast<char>(pixel >> shift));
}

} // namespace tessarel::plasmademo
