// SPDX-License-Identifier: MIT

// Compares the identifiers of real programs with the expected ones. Needs the packages of the group
// "programs" of script/bootstrap.

#include "platform/x11/x11_fixture.h"
#include "support/x11/child_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace tessarel::x11 {
namespace {

using x11test::ChildProcess;
using x11test::Environment;

/// A program and what it is to be called.
struct Program {
    std::string name;
    std::vector<std::string> arguments;
    std::string identifier;
    std::string earlier; ///< the identifier that earlier versions gave it, where that was another one
};

std::ostream& operator<<(std::ostream& stream, const Program& program) {
    return stream << program.name;
}

const std::vector<std::string> kWriter = {"soffice", "--writer", "--norestore", "--nologo"};
const std::vector<std::string> kCalc = {"soffice", "--calc", "--norestore", "--nologo"};

const std::vector<Program> kPrograms = {
    // X toolkit, Motif, and none
    {"xterm", {"xterm", "-e", "cat"}, "debian-xterm", {}},
    {"uxterm", {"uxterm", "-e", "cat"}, "debian-uxterm", {}},
    {"xcalc", {"xcalc"}, "XCalc", {}},
    {"xclock", {"xclock"}, "XClock", {}},
    {"xedit", {"xedit"}, "Xedit", {}},
    {"nedit", {"nedit"}, "nedit", {}},
    {"stterm", {"stterm", "-e", "cat"}, "st", "st-256color"},
    // FLTK
    {"dillo", {"dillo"}, "dillo", {}},
    // GTK 2
    {"gimp", {"gimp", "--new-instance", "--no-splash"}, "gimp", {}},
    // GTK 3
    {"mousepad", {"mousepad"}, "org.xfce.mousepad", {}},
    {"thunar", {"thunar"}, "thunar", "org.xfce.Thunar"},
    {"zathura", {"zathura"}, "org.pwmt.zathura", "Zathura"},
    {"geany", {"geany", "--new-instance"}, "geany", {}},
    {"emacs", {"emacs", "-Q"}, "emacs", "emacsclient"},
    {"galculator", {"galculator"}, "galculator", {}},
    {"l3afpad", {"l3afpad"}, "l3afpad", {}},
    {"meld", {"meld"}, "org.gnome.Meld", {}},
    {"writer", kWriter, "libreoffice-writer", "org.libreoffice"},
    {"calc", kCalc, "libreoffice-calc", "org.libreoffice"},
    {"firefox", {"firefox-esr", "about:blank"}, "firefox-esr", {}},
    // GTK 4
    {"gnome_calculator", {"gnome-calculator"}, "org.gnome.Calculator", {}},
    {"gnome_text_editor", {"gnome-text-editor"}, "org.gnome.TextEditor", {}},
    {"gtk4_demo", {"gtk4-demo"}, "org.gtk.Demo4", {}},
    {"gtk4_widget_factory", {"gtk4-widget-factory"}, "org.gtk.WidgetFactory4", {}},
    // Qt
    {"kate", {"kate"}, "org.kde.kate", {}},
    {"kwrite", {"kwrite"}, "org.kde.kwrite", {}},
    {"featherpad", {"featherpad", "--standalone"}, "featherpad", {}},
    {"qterminal", {"qterminal"}, "qterminal", {}},
    {"speedcrunch", {"speedcrunch"}, "speedcrunch", {}},
    // Tk
    {"idle", {"/usr/bin/idle"}, "idle", "Toplevel"},
    {"tkinter", {"/usr/bin/python3", "-m", "tkinter"}, "tkinter", "Tk"},
    {"tkdiff", {"tkdiff", "/etc/passwd", "/etc/group"}, "Tkdiff", {}},
    // Java
    {"jedit", {"jedit"}, "jedit", "org-gjt-sp-jedit-jEdit"},
    {"gpsprune", {"gpsprune"}, "gpsprune", "tim-prune-GpsPrune"},
};

/// A desktop of its own for each program, with the installed desktop entries.
class ProgramsTest : public ::testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<ChildProcess> start(const std::vector<std::string>& arguments) const {
        Environment environment = server.environment();
        environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
        environment["GSK_RENDERER"] = "cairo"; // there is no GPU
        environment["LIBGL_ALWAYS_SOFTWARE"] = "1";
        environment["JAVA_TOOL_OPTIONS"] = "-Duser.home=" + server.home().native(); // Java ignores HOME
        return std::make_unique<ChildProcess>(arguments, environment);
    }

    /// Waits until a window belongs to the application `identifier`, and returns that application.
    [[nodiscard]] std::optional<RunningApplication> await(const std::string& identifier) {
        std::optional<RunningApplication> found;
        (void)observer.waitUntil([&] {
            found = find(identifier);
            return found.has_value();
        });
        return found;
    }

    /// Returns the identifiers of all windows, for messages.
    [[nodiscard]] std::string present() {
        std::string text = "the windows are of:";
        for (const xcb_window_t window : windows.frontToBack())
            text += " " + ofWindow(window).bundleIdentifier.value_or("(none)");
        return text;
    }

    x11test::XServer server{{.offersGl = true}};
    x11test::Observer observer{server.display()};
    x11test::WindowManager manager{server, x11test::WindowManagerKind::Openbox};
    x11test::SessionBus bus{server.environment(), x11test::OwnKeys::Dropped};
    ConnectionDriver driver{server.display()};
    ClientWindows windows{driver.connection()};
    Applications applications{windows, {"/usr/share/applications"}};

private:
    [[nodiscard]] std::optional<RunningApplication> find(const std::string& identifier) {
        for (const xcb_window_t window : observer.clients())
            observer.watch(window); // its class may change
        driver.hear();
        for (const xcb_window_t window : windows.frontToBack()) {
            const RunningApplication application = ofWindow(window);
            if (application.bundleIdentifier == identifier)
                return application;
        }
        return std::nullopt;
    }
    [[nodiscard]] RunningApplication ofWindow(xcb_window_t window) {
        const auto pid = windows.pid(window);
        return pid ? applications.ofWindows(*pid, {window}) : RunningApplication();
    }
};

class ProgramTest : public ProgramsTest, public ::testing::WithParamInterface<Program> {};

TEST_P(ProgramTest, HasItsIdentifier) {
    const Program& program = GetParam();
    const auto process = start(program.arguments);

    const auto application = await(program.identifier);

    ASSERT_TRUE(application) << present() << "\n" << process->errors();
    if (!program.earlier.empty()) {
        EXPECT_EQ(std::ranges::count(application->otherNames, program.earlier), 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Of, ProgramTest, testing::ValuesIn(kPrograms),
                         [](const auto& program) { return program.param.name; });

TEST_F(ProgramsTest, TheProgramsOfAnOfficeSuiteAreKeptApartInOneProcess) {
    const auto first = start(kWriter);
    const auto writer = await("libreoffice-writer");
    ASSERT_TRUE(writer) << present() << "\n" << first->errors();

    const auto second = start(kCalc);
    const auto calc = await("libreoffice-calc");

    ASSERT_TRUE(calc) << present() << "\n" << second->errors();
    EXPECT_EQ(calc->processIdentifier, writer->processIdentifier);
    EXPECT_TRUE(await("libreoffice-writer"));
    EXPECT_FALSE(applications.ofProcess(calc->processIdentifier)->ownsWholeProcess);
}

} // namespace
} // namespace tessarel::x11
