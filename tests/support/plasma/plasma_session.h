// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"
#include "support/plasma/fake_input.h"
#include "support/plasma/output_control.h"
#include "support/plasma/probe.h"
#include "support/plasma/wayland_client.h"
#include "support/scratch_folder.h"
#include "support/x11/child_process.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::plasmatest {

/// The class of the window that `PlasmaSession::openEditor` opens.
inline constexpr const char* kEditor = "org.example.editor";
/// The class of the windows of kwrite.
inline constexpr const char* kRealEditor = "org.kde.kwrite";

/// What KWin draws with. Effects, and so the modifiers of a drag, need OpenGL.
enum class Drawing : std::uint8_t { Software, OpenGl };

/// The pixels of X programs in one pixel of KWin with `Extra::ScaledXServer`.
inline constexpr double kXScale = 1.25;

/// What else KWin runs: an X server for programs that need one, also one whose programs apply the scale of
/// the displays themselves, or a screen locker. A locked session cannot be unlocked again: that takes a
/// password.
enum class Extra : std::uint8_t { None, XServer, ScaledXServer, ScreenLocker };

/// A private session of KDE Plasma on Wayland: a session bus and KWin without a screen, with two
/// displays side by side, in a home and a runtime folder of its own. There is no desktop shell.
class PlasmaSession {
public:
    static constexpr Rect kFirst{0, 0, 1600, 900};
    static constexpr Rect kSecond{1600, 0, 1600, 900};

    /// Throws std::runtime_error if the session does not start.
    explicit PlasmaSession(Drawing drawing = Drawing::Software, const Size& display = kFirst.size(),
                           Extra extra = Extra::None);
    PlasmaSession(const PlasmaSession&) = delete;
    PlasmaSession& operator=(const PlasmaSession&) = delete;
    ~PlasmaSession();

    [[nodiscard]] const x11test::Environment& environment() const { return m_environment; }
    [[nodiscard]] FakeInput& input() { return *m_input; }
    [[nodiscard]] Probe& probe() { return *m_probe; }
    [[nodiscard]] OutputControl& outputs() { return *m_outputs; }

    /// Evaluates `holds` again and again until it returns true, for what KWin does not report. Returns false
    /// if it does not.
    [[nodiscard]] static bool waitFor(const std::function<bool()>& holds);

    /// Writes the settings of the program under test.
    void writeSettings(std::string_view document);
    /// Starts the program under test, with these variables in addition to its environment, and waits until it
    /// carries out hot keys and sees drags. Returns false if it does not.
    [[nodiscard]] bool startProgram(const x11test::Environment& more = {});
    /// Starts the program under test without waiting for it. The time limit for its end is blocked
    /// (`x11test::Alarm`), so that it ends in order or not at all.
    void startProgramOnly(const x11test::Environment& more = {});
    /// Starts the program and holds it where it is about to connect to KWin's socket. It has sent its hot
    /// keys and its script by then. Throws std::runtime_error if it does not get there.
    void startProgramHeld(x11test::Alarm alarm = x11test::Alarm::Blocked);
    /// Lets the held program go on.
    void releaseProgram();
    /// Waits until KWin runs the script of the program. Returns false if it does not.
    [[nodiscard]] bool waitForScript();
    /// Ends the program with SIGTERM. Returns its exit code; empty if it does not exit.
    [[nodiscard]] std::optional<int> endProgram();
    [[nodiscard]] x11test::ChildProcess& program() { return *m_program; }
    /// Waits until the running program carries out commands. Returns false if it does not.
    [[nodiscard]] bool waitForCommands();
    /// Runs the launcher with these words, as users do. Returns its exit code; empty if it does not exit.
    [[nodiscard]] std::optional<int> command(const std::vector<std::string>& words);
    /// Returns the global shortcuts that are registered under the program's name.
    [[nodiscard]] std::vector<std::string> shortcuts();

    /// Returns the keys of the program's global shortcut with this name, as numbers of Qt.
    [[nodiscard]] std::vector<std::int64_t> keysOf(const std::string& shortcut);
    /// Gives the keyboard these layouts, in place of the usual one, and chooses the one with the index.
    void setLayouts(const std::string& layouts, int chosen);

    /// The session bus; if it is killed, it does not come back.
    [[nodiscard]] x11test::ChildProcess& bus() { return *m_bus; }
    [[nodiscard]] x11test::ChildProcess& compositor() { return *m_compositor; }
    /// Locks the screen. Returns false if KWin does not.
    [[nodiscard]] bool lock();
    /// Makes KWin set up its drawing anew, as after a graphics reset: it drops all effects. Returns false if
    /// the effects of the program are not loaded again.
    [[nodiscard]] bool resetGraphics();
    /// Kills KWin, with all windows.
    void killCompositor();
    /// Starts KWin again and waits until it takes scripts and input.
    void startCompositor();
    /// Starts another program and waits until its window is active, and KWin has told the program under test.
    /// Throws std::runtime_error if it is not.
    void open(const std::vector<std::string>& command, const std::string& windowClass);
    /// Opens a window with a title bar, in the same way. Its program takes every size that is not below the
    /// minimum, and starts within milliseconds.
    void openEditor(const Size& minimum = {});
    /// The program of the window that `openEditor` has opened.
    [[nodiscard]] WaylandClient& editor() { return *m_editor; }
    /// Returns the frame of the window with this class; empty if there is none.
    [[nodiscard]] std::optional<Rect> frame(const std::string& windowClass);
    /// Waits until the window with this class has the frame `expected`. Returns the frame that it has then.
    [[nodiscard]] Rect settledFrame(const std::string& windowClass, const Rect& expected);

private:
    void permitInput() const;
    [[nodiscard]] std::filesystem::path dataWithoutPrograms() const;
    void writeXScale() const;
    [[nodiscard]] std::vector<std::string> compositorCommand() const;
    [[nodiscard]] bool hasXServer() const {
        return m_extra == Extra::XServer || m_extra == Extra::ScaledXServer;
    }
    void readXDisplay();
    [[nodiscard]] std::filesystem::path gateFile() const { return m_folder.path() / "gate"; }
    /// Waits until the window with this class is active, and KWin has told the program under test. Returns
    /// false if it is not.
    [[nodiscard]] bool waitForActive(const std::string& windowClass);
    [[nodiscard]] bool waitForEffects();
    /// Where a program that KWin starts writes the name of the X display.
    [[nodiscard]] std::filesystem::path xDisplayFile() const { return m_folder.path() / "x-display"; }
    [[nodiscard]] bool replies(const std::string& busName, const std::string& path);
    [[nodiscard]] wayland::BusMessage replyTo(const wayland::BusCall& call);
    /// Sends a call again and again until its reply is true. Returns false if it never is.
    [[nodiscard]] bool waitUntilTrue(const wayland::BusCall& call);
    [[nodiscard]] const SeenWindow* find(const std::string& windowClass);

    Drawing m_drawing;
    Size m_display;
    Extra m_extra;
    ScratchFolder m_folder;
    x11test::Environment m_environment;
    std::optional<x11test::ChildProcess> m_bus;
    std::optional<x11test::ChildProcess> m_compositor;
    std::optional<Probe> m_probe;
    std::optional<FakeInput> m_input;
    std::optional<OutputControl> m_outputs;
    std::vector<std::unique_ptr<x11test::ChildProcess>> m_clients;
    std::optional<WaylandClient> m_editor;
    std::optional<x11test::ChildProcess> m_program;
    std::optional<int> m_gate; ///< the writing end of what the held program reads
};

} // namespace tessarel::plasmatest
