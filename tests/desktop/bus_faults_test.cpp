// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "desktop/screen_reader.h"
#include "desktop/status_notifier_panel.h"
#include "desktop/tray_desktop.h"
#include "support/hanging_bus.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tessarel::x11test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// Time in which a responsive program is certain to react. D-Bus waits 25 s for a reply, or for ever.
constexpr seconds kSoon{5};

/// A session bus that accepts connections and never replies: the kernel accepts them for a listening socket.
class SilentBus {
public:
    static std::string pathOn(const XServer& server) { return server.home().string() + "/bus"; }
    static std::string addressOn(const XServer& server) { return "unix:path=" + pathOn(server); }

    explicit SilentBus(const XServer& server) {
        const std::string path = pathOn(server);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(&address.sun_path[0], sizeof address.sun_path - 1);
        if (::bind(m_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(m_socket.get(), SOMAXCONN) != 0)
            throw std::runtime_error("cannot listen at " + path);
    }

private:
    FileDescriptor m_socket{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
};

/// A service that never replies: nothing processes the events of its thread.
class SilentService : public QDBusVirtualObject {
public:
    SilentService(const std::string& address, const char* name, const char* path)
        : m_bus(QDBusConnection::connectToBus(QString::fromStdString(address), kConnection)) {
        if (!m_bus.registerVirtualObject(path, this) || !m_bus.registerService(name))
            throw std::runtime_error(std::string("cannot become ") + name);
    }
    SilentService(const SilentService&) = delete;
    SilentService& operator=(const SilentService&) = delete;
    ~SilentService() override { QDBusConnection::disconnectFromBus(kConnection); }

    /// Returns whether a call has arrived. Requires an application object.
    [[nodiscard]] bool isCalled() const {
        QCoreApplication::processEvents();
        return m_isCalled;
    }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage&, const QDBusConnection&) override { return m_isCalled = true; }

private:
    static constexpr const char* kConnection = "silent";
    QDBusConnection m_bus;
    bool m_isCalled = false;
};

/// The program on a desktop whose session bus fails.
class BusFaultsTest : public testing::Test {
protected:
    BusFaultsTest() {
        writeSettings(server, kNoHomes);
        window = client.open({.client = {300, 200, 500, 300}});
        EXPECT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == window; }));
        EXPECT_TRUE(observer.settle());
        observer.watch(window);
    }

    void start(const std::string& address, const Environment& more = {}) {
        environment = server.environment();
        environment["DBUS_SESSION_BUS_ADDRESS"] = address;
        for (const auto& [name, value] : more)
            environment[name] = value;
        program.emplace(environment);
        ASSERT_TRUE(program->waitUntilReady(observer, keyboard)) << program->errors();
    }

    /// Returns true if some hot keys, one after the other, move the window soon.
    bool answersKeys() {
        const Deadline deadline(kSoon);
        for (int i = 0; i < 10; ++i)
            if (!answersTwoKeys())
                return false;
        return !deadline.passed();
    }

    bool answersTwoKeys() {
        for (const auto& [keys, half] :
             {std::pair{hotkey::kLeftHalf, kLeftHalf}, std::pair{hotkey::kRightHalf, kRightHalf}}) {
            const Frame wanted = frameIn(observer.workArea().value_or(Frame{}), half);
            keyboard.press(keys);
            if (!observer.waitUntil([&] { return observer.outerFrame(window) == wanted; }))
                return false;
        }
        return true;
    }

    /// Waits until a panel has taken its strip of the screen, so that the work area stays the same.
    bool panelHasItsPlace() {
        return observer.waitUntil([&] {
            const auto area = observer.workArea();
            return area && area->height < kHeight;
        });
    }

    /// Starts a panel with a system tray, and expects the icon there, hot keys that work, and a quick end.
    void expectIconInSystemTray() {
        const auto panel = startTint2(server, environment);
        ShownStatusItem item(observer, "tessarel");

        EXPECT_NO_THROW((void)item.waitForIcon());
        EXPECT_TRUE(panelHasItsPlace());
        EXPECT_TRUE(answersKeys());
        EXPECT_TRUE(endsSoon());
    }

    /// Returns true if the settings window opens soon.
    bool opensSettings() {
        const Deadline deadline(kSoon);
        const xcb_window_t settings = openSettingsWindow(observer, environment);
        if (settings == XCB_WINDOW_NONE || deadline.passed())
            return false;
        observer.activate(window);
        return observer.waitUntil([&] { return observer.activeWindow() == window; });
    }

    /// Sends what a new system tray sends when it starts; the program looks for one then.
    void announceSystemTray() {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = observer.root();
        event.type = observer.x().atom("MANAGER");
        event.data.data32[1] = observer.x().atom("_NET_SYSTEM_TRAY_S0");
        xcb_send_event(observer.x().get(), 0, observer.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
        observer.x().roundTrip();
    }

    /// Announces the address of an accessibility bus as its service does.
    void announceAccessibilityBus(const std::string& address) {
        xcb_change_property(observer.x().get(), XCB_PROP_MODE_REPLACE, observer.root(),
                            observer.x().atom("AT_SPI_BUS"), XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(address.size()), address.data());
        observer.x().roundTrip();
    }

    /// Returns true if the program ends in order soon.
    bool endsSoon() {
        program->process().signal(SIGTERM);
        return program->process().waitForExit(Deadline(kSoon)) == 0;
    }

    static constexpr int kHeight = 700;
    XServer server{{.width = 1000, .height = kHeight}};
    DesktopBus bus{server.environment()};
    WindowManager manager{server, WindowManagerKind::Openbox};
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
    TestClient client{server};
    xcb_window_t window = XCB_WINDOW_NONE;
    Environment environment;
    std::optional<Program> program;
};

TEST_F(BusFaultsTest, TheProgramWorksOnABusThatNeverReplies) {
    const SilentBus silent(server);
    start(SilentBus::addressOn(server));

    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, ASystemTrayGetsTheIconOnABusThatNeverReplies) {
    const SilentBus silent(server);
    start(SilentBus::addressOn(server));

    expectIconInSystemTray();
}

TEST_F(BusFaultsTest, ASystemTrayGetsTheIconWhenABusThatStartsLateNeverReplies) {
    start(SilentBus::addressOn(server));
    const SilentBus silent(server);

    expectIconInSystemTray();
}

TEST_F(BusFaultsTest, TheProgramWorksOnABusThatLetsNobodyEnter) {
    const HangingBus hanging(SilentBus::pathOn(server), 0);
    start(SilentBus::addressOn(server));

    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheProgramWorksOnABusThatHangsWhenQtConnects) {
    const HangingBus hanging(SilentBus::pathOn(server), 1);
    start(SilentBus::addressOn(server));

    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    expectIconInSystemTray();
}

TEST_F(BusFaultsTest, TheProgramWorksOnABusThatRepliesToNoCall) {
    constexpr int kAll = 1000;
    const HangingBus hanging(SilentBus::pathOn(server), kAll);
    start(SilentBus::addressOn(server));

    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheIconAppearsWhenASlowBusReplies) {
    const StatusNotifierPanel tray(bus.environmentOn(server));
    const auto panel = startXfce4Panel(server, bus.environmentOn(server));
    ASSERT_TRUE(observer.waitUntil([&] { return tray.isThere(); })) << panel->errors();
    ASSERT_TRUE(panelHasItsPlace());
    bus.signal(SIGSTOP);
    start(bus.address());

    bus.signal(SIGCONT); // soon: after two seconds the program takes the panel's other tray, that of X

    EXPECT_TRUE(observer.waitUntil([&] { return !tray.item().empty(); }));
    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheProgramSurvivesABusThatDies) {
    start(bus.address());
    EXPECT_TRUE(answersKeys());

    bus.kill();

    EXPECT_TRUE(opensSettings()) << program->errors();
    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(endsSoon()) << program->errors();
}

TEST_F(BusFaultsTest, ASystemTrayGetsTheIconAfterTheBusHasDied) {
    start(bus.address());
    bus.kill();

    const auto panel = startTint2(server, environment);
    ShownStatusItem item(observer, "tessarel");

    EXPECT_NO_THROW((void)item.waitForIcon()) << program->errors();
    EXPECT_TRUE(panelHasItsPlace());
    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(endsSoon()) << program->errors();
}

TEST_F(BusFaultsTest, TheProgramWorksWhileTheBusIsStopped) {
    start(bus.address());
    EXPECT_TRUE(answersKeys());

    bus.signal(SIGSTOP);

    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, HotKeysDoNotWaitForASilentWatcher) {
    const SilentService watcher(bus.address(), "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher");
    start(bus.address());
    EXPECT_TRUE(answersKeys());

    for (int i = 0; i < 60; ++i)
        announceSystemTray();

    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheIconAppearsWhenAPanelReplacesASilentWatcher) {
    std::optional<SilentService> watcher;
    watcher.emplace(bus.address(), "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher");
    start(bus.address());
    EXPECT_TRUE(answersKeys());

    watcher.reset();
    const auto panel = startXfce4Panel(server, bus.environmentOn(server));

    // This panel is a system tray, too, and may be found as one before it is ready for items.
    const StatusNotifierPanel tray(bus.environmentOn(server));
    ShownStatusItem item(observer, "tessarel");
    EXPECT_TRUE(observer.waitUntil([&] { return !tray.item().empty() || item.icon(); })) << panel->errors();
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheProgramWorksWithASilentAccessibilityService) {
    const SilentService service(bus.address(), "org.a11y.Bus", "/org/a11y/bus");
    start(bus.address());

    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheProgramWorksWhileTheAccessibilityBusIsStopped) {
    const ScreenReader reader(server.environment());
    reader.signalAccessibilityBus(SIGSTOP);
    start(reader.environment().at("DBUS_SESSION_BUS_ADDRESS"), {{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"}});

    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheProgramWorksWithAnAccessibilityBusOfTheEnvironmentThatNeverReplies) {
    const SilentBus silent(server);
    start(bus.address(), {{"AT_SPI_BUS_ADDRESS", SilentBus::addressOn(server)}});

    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheProgramWorksWithAnAccessibilityBusOfTheScreenThatNeverReplies) {
    const SilentBus silent(server);
    announceAccessibilityBus(SilentBus::addressOn(server));
    start(bus.address());

    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheProgramWorksWithAnInputMethodThatNeverReplies) {
    const SilentBus silent(server);
    const std::filesystem::path folder = server.home();
    std::ofstream(folder / "ibus-daemon") << "#!/bin/sh\n"; // Qt uses ibus only if this is in $PATH
    std::filesystem::permissions(folder / "ibus-daemon", std::filesystem::perms::owner_all);
    const std::filesystem::path announcements = server.configHome() / "ibus" / "bus";
    std::filesystem::create_directories(announcements);
    std::ofstream(announcements /
                  (QDBusConnection::localMachineId().toStdString() + "-unix-" + server.display().substr(1)))
        << "IBUS_ADDRESS=" << SilentBus::addressOn(server) << "\nIBUS_DAEMON_PID=" << ::getpid() << '\n';
    start(bus.address(), {{"QT_IM_MODULE", "ibus"}, {"PATH", folder.string() + ":" + std::getenv("PATH")}});

    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, AnInputMethodThatUsesTheSessionBusGetsTheSettingsWindow) {
    int argumentCount = 1;
    std::array<char, 5> name{"test"};
    std::array<char*, 2> arguments{name.data(), nullptr};
    const QCoreApplication application(argumentCount, arguments.data());
    const SilentService inputMethod(bus.address(), "org.fcitx.Fcitx5", "/org/freedesktop/portal/inputmethod");
    start(bus.address(), {{"QT_IM_MODULE", "fcitx"}});

    EXPECT_TRUE(opensSettings());

    EXPECT_TRUE(observer.waitUntil([&] { return inputMethod.isCalled(); })) << program->errors();
    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheProgramWorksWhileTheBusOfAnInputMethodIsStopped) {
    bus.signal(SIGSTOP);
    start(bus.address(), {{"QT_IM_MODULE", "fcitx"}});

    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheProgramSurvivesTheLossOfTheBusOfAnInputMethod) {
    const SilentService inputMethod(bus.address(), "org.fcitx.Fcitx5", "/org/freedesktop/portal/inputmethod");
    start(bus.address(), {{"QT_IM_MODULE", "fcitx"}});
    EXPECT_TRUE(opensSettings());

    bus.kill();

    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(endsSoon()) << program->errors();
}

TEST_F(BusFaultsTest, TheSettingsWindowDoesNotWaitForASilentPortal) {
    const SilentService portal(bus.address(), "org.freedesktop.portal.Desktop",
                               "/org/freedesktop/portal/desktop");
    start(bus.address());

    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(answersKeys());
    EXPECT_TRUE(endsSoon());
}

TEST_F(BusFaultsTest, TheIconReturnsWithTheBus) {
    const StatusNotifierPanel tray(bus.environmentOn(server));
    auto panel = startXfce4Panel(server, bus.environmentOn(server));
    ASSERT_TRUE(observer.waitUntil([&] { return tray.isThere(); })) << panel->errors();
    start(bus.address());
    ASSERT_TRUE(observer.waitUntil([&] { return !tray.item().empty(); })) << "no item";

    for (int i = 0; i < 2; ++i) {
        bus.kill();
        panel->kill();
        EXPECT_TRUE(opensSettings()) << program->errors();
        bus.start();
        panel = startXfce4Panel(server, bus.environmentOn(server));
        ASSERT_TRUE(observer.waitUntil([&] { return !tray.item().empty(); })) << program->errors();
    }

    tray.aboutToShowMenu();
    EXPECT_TRUE(tray.choose(tray.menu(), "Pause Tessarel"));
    EXPECT_TRUE(endsSoon());
}

} // namespace
} // namespace tessarel::x11test
