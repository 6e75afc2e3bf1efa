// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/session_bus.h"

#include "platform/qt_xdg/bus_probe.h"
#include "support/hanging_bus.h"
#include "support/ticks.h"

#include <QAccessible>
#include <QByteArray>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QEvent>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QVariant>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>
#include <utility>

namespace tessarel::qt {
namespace {

constexpr std::chrono::milliseconds kLong{30'000}; // longer than any reply takes

/// An accessibility service that never replies.
class SilentAccessibility : public QDBusVirtualObject {
public:
    explicit SilentAccessibility(const std::string& address)
        : m_bus(QDBusConnection::connectToBus(QString::fromStdString(address), kConnection)) {
        EXPECT_TRUE(m_bus.registerVirtualObject("/org/a11y/bus", this));
        EXPECT_TRUE(m_bus.registerService("org.a11y.Bus"));
    }
    SilentAccessibility(const SilentAccessibility&) = delete;
    SilentAccessibility& operator=(const SilentAccessibility&) = delete;
    ~SilentAccessibility() override { QDBusConnection::disconnectFromBus(kConnection); }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage&, const QDBusConnection&) override { return true; }

private:
    static constexpr const char* kConnection = "silent";
    QDBusConnection m_bus;
};

/// An accessibility service with the accessibility bus at `address`.
class AccessibilityService : public QDBusVirtualObject {
public:
    AccessibilityService(const std::string& sessionBus, bool isEnabled, std::string address)
        : m_isEnabled(isEnabled), m_address(std::move(address)),
          m_bus(QDBusConnection::connectToBus(QString::fromStdString(sessionBus), kConnection)) {
        EXPECT_TRUE(m_bus.registerVirtualObject("/org/a11y/bus", this));
        EXPECT_TRUE(m_bus.registerService("org.a11y.Bus"));
    }
    AccessibilityService(const AccessibilityService&) = delete;
    AccessibilityService& operator=(const AccessibilityService&) = delete;
    ~AccessibilityService() override { QDBusConnection::disconnectFromBus(kConnection); }

    /// Returns how often the address was asked for, which would start the bus.
    [[nodiscard]] int queries() const { return m_queries; }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
        if (call.member() == QLatin1String("GetAddress")) {
            ++m_queries;
            return bus.send(call.createReply(QString::fromStdString(m_address)));
        }
        return bus.send(call.createReply(QVariantMap{{QStringLiteral("IsEnabled"), m_isEnabled},
                                                     {QStringLiteral("ScreenReaderEnabled"), false}}));
    }

private:
    static constexpr const char* kConnection = "accessibility service";
    bool m_isEnabled;
    std::string m_address;
    int m_queries = 0;
    QDBusConnection m_bus;
};

/// A bus that can die, hang and return at the same address.
class SessionBusTest : public testing::Test {
protected:
    SessionBusTest() {
        addressForBridge.reset();
        QAccessible::installRootObjectHandler(
            [](QObject*) { addressForBridge = qgetenv(kAccessibilityBus); });
    }
    ~SessionBusTest() override {
        QAccessible::installRootObjectHandler(nullptr);
        bus.reset();
        // Otherwise Qt leaks parts of a new connection.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        killDaemon();
        qputenv(kVariable, addressBefore);
        qunsetenv(kAccessibilityBus);
    }
    SessionBusTest(const SessionBusTest&) = delete;
    SessionBusTest& operator=(const SessionBusTest&) = delete;

    void startDaemon() {
        daemon.start("dbus-daemon", {"--session", "--nofork", "--nopidfile", "--print-address",
                                     "--address=" + QString::fromStdString(address)});
        ASSERT_TRUE(daemon.waitForReadyRead());
    }
    void killDaemon() {
        if (daemon.state() == QProcess::NotRunning)
            return;
        daemon.kill();
        daemon.waitForFinished();
    }
    void signalDaemon(int signal) const { ::kill(static_cast<pid_t>(daemon.processId()), signal); }

    /// Starts as the program does. Qt keeps its own connection to the first bus that replies for all tests of
    /// this process, also when that bus has died.
    void start(std::chrono::milliseconds windowPatience = std::chrono::milliseconds(1)) {
        qputenv(kVariable, QByteArray::fromStdString(address));
        bus.emplace(queue, windowPatience);
        changes = bus->onChanged([this] {
            if (++changed == 1)
                partsAtFirst = bus->qtParts();
        });
        application.emplace(argumentCount, arguments.data());
        bus->start([this] { return accessibilityBusOfScreen; });
    }
    bool waitForConnection(bool isThere) {
        return QTest::qWaitFor([&] { return bus->connection().has_value() == isThere; },
                               static_cast<int>(kLong.count()));
    }

    bool waitUntilDecided() {
        return QTest::qWaitFor([&] { return bus->qtParts() != SessionBus::QtParts::Undecided; },
                               static_cast<int>(kLong.count()));
    }
    /// Returns the socket of the bus.
    [[nodiscard]] std::string path() const { return folder.filePath("bus").toStdString(); }
    static std::string addressForOthers() { return qgetenv(kVariable).toStdString(); }

    static constexpr const char* kVariable = "DBUS_SESSION_BUS_ADDRESS";
    static constexpr const char* kAccessibilityBus = "AT_SPI_BUS_ADDRESS";
    static constexpr const char* kHidden = "disabled:";
    /// The address in the environment with which the accessibility bridge was created; empty before.
    static inline std::optional<QByteArray> addressForBridge;
    std::string accessibilityBusOfScreen;
    QByteArray addressBefore = qgetenv(kVariable);
    int argumentCount = 1;
    std::array<char, 5> programName{"test"};
    std::array<char*, 2> arguments{programName.data(), nullptr};
    std::optional<QCoreApplication> application;
    QTemporaryDir folder;
    std::string address = "unix:path=" + folder.filePath("bus").toStdString();
    QProcess daemon;
    QtMainQueue queue;
    std::optional<SessionBus> bus;
    SubscriptionPtr changes;
    int changed = 0;
    std::optional<SessionBus::QtParts> partsAtFirst; // after the first change
};

TEST_F(SessionBusTest, AProbeSucceedsOnABusThatReplies) {
    startDaemon();

    EXPECT_EQ(BusProbe(address).wait(kLong), BusProbe::State::Replied);
    EXPECT_EQ(BusProbe("tcp:host=localhost;" + address + ",guid=0").wait(kLong), BusProbe::State::Replied);
}

TEST_F(SessionBusTest, AProbeWaitsForABusThatHangs) {
    startDaemon();
    signalDaemon(SIGSTOP);
    BusProbe probe(address);

    EXPECT_EQ(probe.wait(std::chrono::milliseconds(1)), BusProbe::State::Waiting);

    signalDaemon(SIGCONT);
    EXPECT_EQ(probe.wait(kLong), BusProbe::State::Replied);
}

TEST_F(SessionBusTest, AProbeFailsWhenTheBusDies) {
    startDaemon();
    signalDaemon(SIGSTOP);
    BusProbe probe(address);

    killDaemon();

    EXPECT_EQ(probe.wait(kLong), BusProbe::State::Failed);
}

TEST_F(SessionBusTest, AProbeFailsWithoutABus) {
    const std::string tooLong = "unix:path=/" + std::string(200, 'x');
    for (const std::string& nowhere :
         {address, tooLong, std::string(), std::string("disabled:"), std::string("unix:path=%zz%")})
        EXPECT_EQ(BusProbe(nowhere).wait(kLong), BusProbe::State::Failed) << nowhere;
}

TEST_F(SessionBusTest, OnlySocketsOfThisMachineAreSupported) {
    EXPECT_TRUE(BusProbe::supports("tcp:host=localhost;unix:abstract=/tmp/bus,guid=0"));
    EXPECT_FALSE(BusProbe::supports("disabled:"));
    EXPECT_FALSE(BusProbe::supports("tcp:host=localhost"));
    EXPECT_FALSE(BusProbe::supports(""));
}

TEST_F(SessionBusTest, ConnectsToABusThatStartsLater) {
    start();
    EXPECT_FALSE(bus->connection());

    EXPECT_EQ(bus->qtParts(), SessionBus::QtParts::WithoutBus);
    EXPECT_EQ(changed, 1);

    startDaemon();

    EXPECT_TRUE(waitForConnection(true));
    EXPECT_EQ(changed, 2);
}

TEST_F(SessionBusTest, ReportsTheLossOfTheBusAndConnectsToTheNext) {
    start();
    for (int i = 1; i <= 2; ++i) {
        startDaemon();
        ASSERT_TRUE(waitForConnection(true));
        EXPECT_EQ(changed, 2 * i);

        killDaemon();

        ASSERT_TRUE(QTest::qWaitFor([&] { return changed == 2 * i + 1; }));
        EXPECT_FALSE(bus->connection());
    }
}

TEST_F(SessionBusTest, WaitsBrieflyForABusThatHangsAndConnectsWhenItGoesOn) {
    startDaemon();
    signalDaemon(SIGSTOP);
    const Ticks ticks(std::chrono::milliseconds(100));

    start(SessionBus::kWindowPatience);
    EXPECT_EQ(bus->qtParts(), SessionBus::QtParts::Undecided);
    bus->beforeWindow();

    EXPECT_LT(ticks.count(), 40) << "periods, of which one is expected";
    EXPECT_FALSE(bus->connection());
    signalDaemon(SIGCONT);
    EXPECT_TRUE(waitForConnection(true));
    EXPECT_TRUE(waitUntilDecided());
}

TEST_F(SessionBusTest, QtDoesNotWaitForABusThatHangsForLong) {
    startDaemon();
    signalDaemon(SIGSTOP);
    start();

    EXPECT_TRUE(waitUntilDecided());

    EXPECT_EQ(bus->qtParts(), SessionBus::QtParts::WithoutBus);
    EXPECT_EQ(changed, 1);
}

TEST_F(SessionBusTest, DoesNotWaitForABusThatHangsWhenQtConnects) {
    const HangingBus hanging(path(), 1);
    start();
    bool isRunning = false;
    const auto later = queue.async([&] { isRunning = true; });

    // Until Qt connects, which another test of this process may have done.
    ASSERT_TRUE(QTest::qWaitFor([&] { return isRunning && addressForOthers() == address; }));
    EXPECT_TRUE(waitUntilDecided());

    EXPECT_FALSE(bus->connection());
}

TEST_F(SessionBusTest, AWindowDoesNotWaitForABusThatHangsWhenQtConnects) {
    const HangingBus hanging(path(), 1);
    start(kLong);
    const Ticks ticks(std::chrono::seconds(1));

    bus->beforeWindow();

    EXPECT_LT(ticks.count(), 5) << "periods, of which at most two are expected";
    EXPECT_FALSE(bus->connection());
    EXPECT_FALSE(qEnvironmentVariableIsSet("AT_SPI_BUS_ADDRESS"));
}

TEST_F(SessionBusTest, AWindowDoesNotWaitForABusThatHangsWhenQtConnectsThroughALink) {
    const HangingBus hanging(path(), 1);
    const std::string link = folder.filePath("link").toStdString();
    std::filesystem::create_directory_symlink(folder.path().toStdString(), link);
    address = "unix:path=" + link + "/bus";
    start(kLong);

    bus->beforeWindow();

    EXPECT_FALSE(bus->connection());
    EXPECT_NE(bus->qtParts(), SessionBus::QtParts::Undecided);
}

TEST_F(SessionBusTest, AWindowDoesNotWaitForABusThatDoesNotTakeQtsConnection) {
    const HangingBus hanging(path(), 1, HangingBus::Others::WaitInConnect);
    start(kLong);

    bus->beforeWindow();

    EXPECT_FALSE(bus->connection());
}

TEST_F(SessionBusTest, EndsWhileABusHangsWhenQtConnects) {
    const HangingBus hanging(path(), 1);
    start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return addressForOthers() == address; }));

    bus.reset();

    EXPECT_EQ(addressForOthers(), address);
}

/// Fixture: Qt connects to another bus than the one that has replied, one that hangs, so that its socket is
/// not recognised and the connecting is not broken off.
class SessionBusStuckTest : public SessionBusTest {
protected:
    void startStuck() {
        startDaemon();
        signalDaemon(SIGSTOP);
        const std::string other = folder.filePath("other").toStdString();
        address = "unix:path=" + other + ";" + address;
        start();
        stuck.emplace(other, 0);
        signalDaemon(SIGCONT);
        ASSERT_TRUE(QTest::qWaitFor([&] { return addressForOthers() == address; }));
    }
    std::optional<HangingBus> stuck;
};

TEST_F(SessionBusStuckTest, AWindowGoesOnAndTheBusIsUsedOnceQtGoesOn) {
    startStuck();

    bus->beforeWindow();

    EXPECT_FALSE(bus->connection());
    EXPECT_EQ(changed, 0);
    stuck.reset();
    std::filesystem::remove(folder.filePath("other").toStdString());
    EXPECT_TRUE(waitForConnection(true));
    EXPECT_TRUE(waitUntilDecided());
}

TEST_F(SessionBusStuckTest, QtsPartsAreUndecidedUntilItGoesOn) {
    startStuck();
    bool isBrokenOff = false;
    // The same delays as those of the bus, whose work is therefore done before.
    SubscriptionPtr later = queue.asyncAfter(std::chrono::seconds(2), [&] {
        later = queue.asyncAfter(std::chrono::seconds(1), [&] { isBrokenOff = true; });
    });

    ASSERT_TRUE(QTest::qWaitFor([&] { return isBrokenOff; }, static_cast<int>(kLong.count())));

    EXPECT_EQ(bus->qtParts(), SessionBus::QtParts::Undecided);
    stuck.reset();
    EXPECT_TRUE(waitUntilDecided());
}

TEST_F(SessionBusStuckTest, Ends) {
    startStuck();

    bus.reset();

    EXPECT_EQ(addressForOthers(), address);
}

TEST_F(SessionBusTest, AWindowWaitsUntilTheBusAndTheAccessibilityServiceHaveReplied) {
    startDaemon();
    start(kLong);

    bus->beforeWindow();

    EXPECT_TRUE(bus->connection());
    EXPECT_NE(bus->qtParts(), SessionBus::QtParts::Undecided);
    EXPECT_FALSE(qEnvironmentVariableIsSet("AT_SPI_BUS_ADDRESS"));
}

TEST_F(SessionBusTest, QtDoesNotWaitForAnAccessibilityServiceThatHangs) {
    startDaemon();
    const SilentAccessibility service(address);

    start();
    ASSERT_TRUE(waitForConnection(true));
    EXPECT_TRUE(waitUntilDecided());
    ASSERT_EQ(changed, 2);
    EXPECT_EQ(partsAtFirst, SessionBus::QtParts::Undecided);
}

TEST_F(SessionBusTest, AWindowWaitsBrieflyForAnAccessibilityServiceThatHangs) {
    startDaemon();
    const SilentAccessibility service(address);
    start(SessionBus::kWindowPatience);
    ASSERT_TRUE(waitForConnection(true));
    ASSERT_EQ(bus->qtParts(), SessionBus::QtParts::Undecided);
    const Ticks ticks(std::chrono::milliseconds(100));

    bus->beforeWindow();

    EXPECT_LT(ticks.count(), 40) << "periods, of which one is expected";
    EXPECT_NE(bus->qtParts(), SessionBus::QtParts::Undecided);
}

/// Fixture: an accessibility bus apart from the session bus. Its daemon is `daemon`.
class AccessibilityBusTest : public SessionBusTest {
protected:
    AccessibilityBusTest() {
        sessionBus.start("dbus-daemon", {"--session", "--nofork", "--nopidfile", "--print-address",
                                         "--address=unix:path=" + folder.filePath("session")});
        EXPECT_TRUE(sessionBus.waitForReadyRead());
        startDaemon();
        signalDaemon(SIGSTOP);
        address = "unix:path=" + folder.filePath("session").toStdString();
    }
    ~AccessibilityBusTest() override {
        bus.reset();
        sessionBus.kill();
        sessionBus.waitForFinished();
    }
    AccessibilityBusTest(const AccessibilityBusTest&) = delete;
    AccessibilityBusTest& operator=(const AccessibilityBusTest&) = delete;

    /// Lets the accessibility bus go on and expects that the bridge is created to connect to it.
    void expectBridgeOnceTheBusGoesOn() {
        ASSERT_TRUE(waitForConnection(true));
        EXPECT_EQ(bus->qtParts(), SessionBus::QtParts::Undecided);

        signalDaemon(SIGCONT);

        EXPECT_TRUE(waitUntilDecided());
        EXPECT_NE(addressForBridge, kHidden);
    }

    QProcess sessionBus;
    std::string accessibilityBus = address;
};

TEST_F(AccessibilityBusTest, QtDoesNotConnectToOneOfTheServiceThatHangs) {
    AccessibilityService service(address, true, accessibilityBus);
    start();

    EXPECT_TRUE(waitUntilDecided());

    EXPECT_EQ(addressForBridge, kHidden);
    EXPECT_EQ(service.queries(), 1);
}

TEST_F(AccessibilityBusTest, QtDoesNotConnectToOneOfTheEnvironmentThatHangs) {
    qputenv(kAccessibilityBus, QByteArray::fromStdString(accessibilityBus));
    start(std::chrono::seconds(1));

    bus->beforeWindow();

    EXPECT_EQ(addressForBridge, kHidden);
    EXPECT_EQ(qgetenv(kAccessibilityBus).toStdString(), accessibilityBus);
}

TEST_F(AccessibilityBusTest, QtDoesNotConnectToOneOfTheScreenThatHangs) {
    accessibilityBusOfScreen = accessibilityBus;
    start(std::chrono::seconds(1));

    bus->beforeWindow();

    EXPECT_EQ(addressForBridge, kHidden);
}

TEST_F(AccessibilityBusTest, QtDoesNotConnectToOneWithAFullBacklog) {
    const std::string full = folder.filePath("full").toStdString();
    const HangingBus hanging(full, 1, HangingBus::Others::WaitInConnect);
    accessibilityBusOfScreen = "unix:path=" + full;
    ASSERT_EQ(BusProbe(accessibilityBusOfScreen).wait(kLong), BusProbe::State::Replied);
    ASSERT_EQ(BusProbe(accessibilityBusOfScreen).wait(kLong), BusProbe::State::Full);
    const std::string withAnother = accessibilityBusOfScreen + ";" + address;
    EXPECT_EQ(BusProbe(withAnother).wait(kLong), BusProbe::State::Full);
    start(kLong);

    bus->beforeWindow();

    EXPECT_EQ(addressForBridge, kHidden);
}

TEST_F(AccessibilityBusTest, QtDoesNotConnectToOneThatCannotBeProbed) {
    accessibilityBusOfScreen = "tcp:host=localhost,port=1";
    start(kLong);

    bus->beforeWindow();

    EXPECT_EQ(addressForBridge, kHidden);
}

TEST_F(AccessibilityBusTest, QtConnectsToOneOfTheServiceThatRepliesLate) {
    AccessibilityService service(address, true, accessibilityBus);
    start();

    expectBridgeOnceTheBusGoesOn();
}

TEST_F(AccessibilityBusTest, QtConnectsToOneOfTheEnvironmentThatRepliesLate) {
    qputenv(kAccessibilityBus, QByteArray::fromStdString(accessibilityBus));
    start();

    expectBridgeOnceTheBusGoesOn();
}

TEST_F(AccessibilityBusTest, QtConnectsToOneOfTheScreenThatRepliesLate) {
    accessibilityBusOfScreen = accessibilityBus;
    start();

    expectBridgeOnceTheBusGoesOn();
}

TEST_F(AccessibilityBusTest, QtIsNotKeptOffTheServiceByAScreenThatAnnouncesABusThatHasGone) {
    accessibilityBusOfScreen = "unix:path=" + folder.filePath("gone").toStdString();
    start(kLong);

    bus->beforeWindow();

    EXPECT_EQ(addressForBridge, "");
}

TEST_F(AccessibilityBusTest, TheBusIsNotStartedWhileAccessibilityIsOff) {
    AccessibilityService service(address, false, accessibilityBus);
    start();

    EXPECT_TRUE(waitUntilDecided());

    EXPECT_EQ(addressForBridge, "");
    EXPECT_EQ(service.queries(), 0);
}

TEST_F(AccessibilityBusTest, TheLossOfTheSessionBusEndsTheWait) {
    accessibilityBusOfScreen = accessibilityBus;
    start();
    ASSERT_TRUE(waitForConnection(true));
    EXPECT_EQ(addressForBridge, std::nullopt);
    std::optional<SessionBus::QtParts> reported;
    const auto loss = bus->onChanged([&] { reported = bus->qtParts(); });

    sessionBus.kill();

    EXPECT_TRUE(QTest::qWaitFor([&] { return reported.has_value(); }));
    EXPECT_NE(reported, SessionBus::QtParts::Undecided);
    EXPECT_EQ(addressForBridge, kHidden);
}

TEST_F(SessionBusTest, TheBusIsHiddenUntilItReplies) {
    startDaemon();
    signalDaemon(SIGSTOP);
    start();
    EXPECT_EQ(addressForOthers(), "disabled:");

    signalDaemon(SIGCONT);

    ASSERT_TRUE(waitForConnection(true));
    EXPECT_EQ(addressForOthers(), address);
    ASSERT_TRUE(waitUntilDecided());
    EXPECT_FALSE(qEnvironmentVariableIsSet("AT_SPI_BUS_ADDRESS"));
}

TEST_F(SessionBusTest, AnInputMethodFindsABusThatReplies) {
    startDaemon();
    qputenv(kVariable, QByteArray::fromStdString(address));
    bus.emplace(queue, kLong);

    bus->beforeInputMethod();

    EXPECT_EQ(addressForOthers(), address);
}

TEST_F(SessionBusTest, AnInputMethodDoesNotFindABusThatHangs) {
    startDaemon();
    signalDaemon(SIGSTOP);
    qputenv(kVariable, QByteArray::fromStdString(address));
    bus.emplace(queue, std::chrono::milliseconds(1));

    bus->beforeInputMethod();

    EXPECT_EQ(addressForOthers(), kHidden);
}

TEST_F(SessionBusTest, AMissingBusIsNotHidden) {
    start();

    EXPECT_EQ(addressForOthers(), address);
    EXPECT_FALSE(qEnvironmentVariableIsSet("AT_SPI_BUS_ADDRESS"));
}

TEST_F(SessionBusTest, WithoutAnAddressItStaysIdle) {
    address = "disabled:";
    start();
    QCoreApplication::processEvents();

    EXPECT_FALSE(bus->connection());
    EXPECT_EQ(changed, 1);
}

} // namespace
} // namespace tessarel::qt
