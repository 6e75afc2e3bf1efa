// SPDX-License-Identifier: MIT

#pragma once

#include "macos/cocoa_windows.h"
#include "macos/fake/fake_mac.h"
#include "macos/fake/fake_menus.h"
#include "program/mac_program.h"
#include "program/qt_program.h"
#include "support/main_queue.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>
#include <QWidget>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace tessarel {

/// The whole program, assembled as on a Mac, on a fake Mac with two displays and a running editor. The
/// destructor fails the test if the program leaves any object of the system behind.
class MacApplicationTest : public ::testing::Test {
protected:
    static constexpr ProcessId kEditor = 7;
    static constexpr const char* kEditorIdentifier = "org.example.editor";
    static constexpr const char* kOwnIdentifier = "org.example.Tessarel";
    static constexpr const char* kSettingsKey = "tessarel.settings.v1";
    static constexpr std::uint32_t kCtrlOpt = 4096 + 2048;
    static constexpr std::uint32_t kKey1 = 18;
    static constexpr Rect kWindow{300, 200, 500, 400};
    /// First zone of the layout with three columns above and two below.
    static constexpr Rect kZone1{0, 25, 480, 438};

    static void SetUpTestSuite() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        MacProgram::prepareToolkit();
        describeProgramToQt();
    }

    MacApplicationTest() {
        fakemac::reset();
        fakemac::mac().ownBundleIdentifier = kOwnIdentifier;
        fakemac::mac().symbols = {"rectangle.3.group"};
        fakemac::mac().displays = {
            {.number = 1, .frame = {0, 0, 1440, 900}, .visibleFrame = {0, 0, 1440, 875}},
            {.number = 2, .frame = {1440, -124, 1120, 1024}, .visibleFrame = {1440, -124, 1120, 1024}}};
        fakemac::launch(fakemac::mac().ownPid, {.bundleIdentifier = kOwnIdentifier, .isRegular = false});
        fakemac::launch(kEditor, {.bundleIdentifier = kEditorIdentifier});
        windows.emplace();
        settings();
    }
    ~MacApplicationTest() override {
        program.reset();
        windows.reset();
        EXPECT_EQ(fakemac::heldObjects(), std::vector<std::string>());
    }

    /// Stores a settings document: the welcome has been shown, the next update check is due in the year 2100,
    /// and `more` is appended.
    static void settings(const std::string& more = {}) {
        fakemac::mac().defaults[kSettingsKey] =
            R"({"hasOnboarded": true, "lastUpdateCheck": 4102444800)" + more + "}";
    }

    AppDelegate::Launch launch() {
        return program.emplace([this](QWidget& widget) { return windows->view(widget); }).launch();
    }

    /// Opens a window of the editor and gives it the focus.
    static fakemac::WindowNumber openEditorWindow(const Rect& axFrame = kWindow) {
        const auto window = fakemac::openWindow({.pid = kEditor, .axFrame = axFrame});
        fakemac::focus(window);
        return window;
    }

    [[nodiscard]] static Rect frameOf(fakemac::WindowNumber window) {
        return fakemac::mac().windows.at(window).axFrame;
    }

    /// Opens the menu of the status item and clicks the row at the end of this path of titles.
    static void choose(const std::vector<std::string>& titles) {
        ASSERT_FALSE(fakemac::openStatusMenu().empty());
        const auto click = fakemac::clickAt(titles);
        ASSERT_TRUE(click) << titles.back();
        click();
    }

    /// Returns the visible window with this title; null when there is none.
    [[nodiscard]] static QWidget* shownWindow(const QString& title) {
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->windowTitle() == title)
                return window;
        }
        return nullptr;
    }
    [[nodiscard]] static QWidget* settingsWindow() {
        return shownWindow(QStringLiteral("Tessarel Settings"));
    }
    /// Returns the visible overlay, the only window without a title; null when none is shown.
    [[nodiscard]] static QWidget* overlay() { return shownWindow(QString()); }

    /// Runs the loop until `holds` returns true. Returns false after a timeout of 20 s.
    template <class Condition>
    [[nodiscard]] static bool until(Condition holds) {
        QTimer safety;
        safety.setSingleShot(true);
        safety.start(std::chrono::seconds(20));
        while (!holds() && safety.isActive()) {
            fakemac::turn();
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return holds();
    }

    /// Runs the loop until all work that is due now has been done.
    void drain() {
        bool last = false;
        async(program->mainQueue(), [&last] { last = true; });
        EXPECT_TRUE(until([&last] { return last; }));
    }

private:
    int m_argumentCount = 1;
    std::array<char, 9> m_programName{"Tessarel"};
    std::array<char*, 2> m_arguments{m_programName.data(), nullptr};
    QApplication m_application{m_argumentCount, m_arguments.data()};

protected:
    std::optional<CocoaWindows> windows;
    std::optional<MacProgram> program; // destroyed before the application object
};

} // namespace tessarel
