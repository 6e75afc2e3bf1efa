// SPDX-License-Identifier: MIT

// Plays Tessarel in a private session of KDE Plasma on Wayland, with real key presses and pointer events.
//   plasma_demo FOLDER
// Leaves pictures in the folder, and frames.txt, which lists for each action where the window was, where it
// was to go and where it went. Exits with 0 only if every window reached its target.

#include "plasma_stage.h"

#include <cmath>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>
#include <string>

namespace tessarel::plasmademo {

namespace {

using plasmatest::FakeInput;
namespace key = plasmatest::key;

constexpr std::uint32_t kKeyA = 30;
constexpr std::uint32_t kBackspace = 14;

constexpr const char* kGallery = "gtk4-demo";
constexpr const char* kTerminal = "konsole";
constexpr const char* kEditor = "kwrite";

/// Windows by what the demo calls them, with their classes and where they open.
const std::map<std::string, std::pair<std::string, Rect>> kWindows{
    {kGallery, {"org.gtk.Demo4", {90, 70, 900, 600}}},
    {kTerminal, {"org.kde.konsole", {880, 120, 860, 560}}},
    {kEditor, {"org.kde.kwrite", {420, 330, 960, 620}}},
};

class Demo {
public:
    explicit Demo(std::filesystem::path folder)
        : m_folder(std::move(folder)), m_table(m_folder / "frames.txt") {}

    /// Returns whether every window went where it was to go.
    bool play() {
        openPrograms();
        shoot("before");
        m_stage.session().writeSettings(
            R"({"hasOnboarded":true,"dragTrigger":"control","lastUpdateCheck":4102444800})");
        if (!m_stage.session().startProgram())
            throw std::runtime_error("Tessarel registers no hot keys");
        snap(kEditor, key::kDigit1 + 4, zone(50, 50, 50, 50), "Ctrl+Alt+5");
        snap(kGallery, key::kDigit1 + 3, zone(0, 50, 50, 50), "Ctrl+Alt+4");
        snap(kTerminal, key::kDigit1, zone(0, 0, kThird, 50), "Ctrl+Alt+1");
        shoot("zones");
        for (const char* const name : {kGallery, kTerminal, kEditor})
            snap(name, kBackspace, kWindows.at(name).second, "Ctrl+Alt+Backspace");
        drag(kEditor, zone(2 * kThird, 0, kThird, 50));
        shoot("dropped");
        arrange();
        shoot("arranged");
        openSettings();
        const bool hasEnded = m_stage.session().endProgram() == 0;
        std::cout << m_actions - m_missed << " of " << m_actions
                  << " windows went where they were asked to\n";
        return m_missed == 0 && hasEnded;
    }

private:
    static constexpr double kThird = 100.0 / 3;

    void openPrograms() {
        const std::string sources = TESSAREL_SOURCES;
        const std::map<std::string, std::vector<std::string>> commands{
            {kGallery, {"gtk4-demo"}},
            {kTerminal,
             {"konsole", "--hide-menubar", "--hide-tabbar", "--workdir",
              m_stage.session().environment().at("HOME"), "-e", "bash", sources + "/demo/keys.sh"}},
            {kEditor, {"kwrite", sources + "/src/model/presets.cpp"}}};
        for (const char* const name : {kGallery, kTerminal, kEditor}) {
            const auto& [windowClass, frame] = kWindows.at(name);
            m_stage.session().open(commands.at(name), windowClass);
            m_stage.put(windowClass, frame);
        }
    }

    /// Returns the frame of a zone, given in percent of what the panel leaves free.
    [[nodiscard]] Rect zone(double x, double y, double width, double height) {
        const Size area{PlasmaStage::kDisplay.width, PlasmaStage::kDisplay.height - m_stage.panelHeight()};
        return {std::round(area.width * x / 100), std::round(area.height * y / 100),
                std::round(area.width * width / 100), std::round(area.height * height / 100)};
    }

    void snap(const std::string& name, std::uint32_t pressed, const Rect& asked, const std::string& keys) {
        m_stage.activate(kWindows.at(name).first);
        expect(name, keys, asked, [&] {
            m_stage.session().input().press({key::kLeftControl, key::kLeftAlt, pressed});
        });
    }

    /// Drags the window by its title bar to the middle of the zone while Control is held.
    void drag(const std::string& name, const Rect& asked) {
        const std::string& windowClass = kWindows.at(name).first;
        m_stage.activate(windowClass);
        constexpr double kBelowTop = 12;
        const Rect before = frame(windowClass);
        const Point from{before.midX(), before.minY() + kBelowTop};
        FakeInput& input = m_stage.session().input();
        expect(name, "Ctrl+drag", asked, [&] {
            input.moveTo(from.x, from.y);
            input.setLeftButton(true);
            constexpr int kSteps = 20;
            for (int step = 1; step <= kSteps; ++step) {
                input.moveTo(from.x + (asked.midX() - from.x) * step / kSteps,
                             from.y + (asked.midY() - 60 - from.y) * step / kSteps);
                if (step == kSteps / 2)
                    input.setKey(key::kLeftControl, true);
            }
            awaitOverlay();
            shoot("drag");
            input.setLeftButton(false);
            input.setKey(key::kLeftControl, false);
        });
    }

    void awaitOverlay() {
        const Rect display{0, 0, PlasmaStage::kDisplay.width, PlasmaStage::kDisplay.height};
        const bool isShown = m_stage.session().probe().waitUntil([&] {
            const auto& windows = m_stage.session().probe().windows();
            return std::ranges::any_of(windows, [&](const plasmatest::SeenWindow& window) {
                return window.pid == m_stage.session().program().pid() && window.frame == display;
            });
        });
        if (!isShown)
            throw std::runtime_error("no zones are shown");
    }

    /// Arranges all windows; the front one goes into the first zone.
    void arrange() {
        for (const char* const name : {kGallery, kTerminal, kEditor})
            m_stage.activate(kWindows.at(name).first);
        const std::map<std::string, Rect> asked{{kEditor, zone(0, 0, kThird, 50)},
                                                {kTerminal, zone(kThird, 0, kThird, 50)},
                                                {kGallery, zone(2 * kThird, 0, kThird, 50)}};
        bool isPressed = false;
        for (const char* const name : {kEditor, kTerminal, kGallery})
            expect(name, "Ctrl+Alt+A", asked.at(name), [&] {
                if (!std::exchange(isPressed, true))
                    m_stage.session().input().press({key::kLeftControl, key::kLeftAlt, kKeyA});
            });
    }

    void openSettings() {
        const auto& panel = m_stage.panel();
        panel.aboutToShowMenu();
        if (!panel.choose(panel.menu(), "Settings..."))
            throw std::runtime_error("the menu in the panel has no settings");
        const bool isOpen = m_stage.session().probe().waitUntil(
            [this] { return !m_stage.frameOfTitle("Tessarel Settings").isNull(); });
        if (!isOpen)
            throw std::runtime_error("no settings window opens");
        shoot("settings");
    }

    /// Does something, waits for the window to get the frame `asked`, and reports what it has.
    void expect(const std::string& name, const std::string& action, const Rect& asked,
                const std::function<void()>& act) {
        const std::string& windowClass = kWindows.at(name).first;
        const Rect before = frame(windowClass);
        act();
        const Rect got = m_stage.session().settledFrame(windowClass, asked);
        ++m_actions;
        m_missed += got == asked ? 0 : 1;
        std::ostringstream row;
        row << std::left << "  " << std::setw(10) << name << std::setw(20) << action << std::setw(20)
            << text(before) << std::setw(20) << text(asked) << std::setw(20) << text(got)
            << (got == asked ? "ok" : "MISSED");
        say(row.str());
    }

    [[nodiscard]] Rect frame(const std::string& windowClass) {
        return m_stage.session().frame(windowClass).value_or(Rect::null());
    }

    static std::string text(const Rect& rect) {
        std::ostringstream out;
        out << rect.x << ' ' << rect.y << ' ' << rect.width << ' ' << rect.height;
        return out.str();
    }

    void shoot(const std::string& title) {
        m_stage.shoot(m_folder / (title + ".ppm"));
        say(title);
    }

    void say(const std::string& line) {
        m_table << line << std::endl;
        std::cout << line << std::endl;
    }

    std::filesystem::path m_folder;
    std::ofstream m_table;
    PlasmaStage m_stage;
    int m_actions = 0;
    int m_missed = 0;
};

} // namespace

} // namespace tessarel::plasmademo

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2)
        return EXIT_FAILURE;
    try {
        return tessarel::plasmademo::Demo(arguments[1]).play() ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& problem) {
        std::cerr << "demo: " << problem.what() << '\n';
        return EXIT_FAILURE;
    }
}
