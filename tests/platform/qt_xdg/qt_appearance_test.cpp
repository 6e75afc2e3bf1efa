// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/qt_appearance.h"

#include "support/offscreen_test.h"
#include "support/scratch_folder.h"
#include "support/ticks.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QPalette>
#include <QProcess>
#include <QTest>
#include <QThread>
#include <QVariantMap>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <optional>
#include <string>

namespace tessarel::qt {
namespace {

const QString kService = "org.freedesktop.portal.Desktop";
const QString kPath = "/org/freedesktop/portal/desktop";
const QString kInterface = "org.freedesktop.portal.Settings";
const QString kNamespace = "org.freedesktop.appearance";

/// Implements the settings portal of a desktop whose accent colour is red.
class Portal : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() != "ReadAll")
            return false;
        return isSilent || bus.send(message.createReply(settings()));
    }

    std::atomic<uint> scheme = 1;
    std::atomic<double> redPart = 1.0; ///< of the accent colour; out of range for none
    std::atomic<bool> isSilent = false;

private:
    [[nodiscard]] QVariant settings() const {
        QDBusArgument red;
        red.beginStructure();
        red << redPart.load() << 0.0 << 0.0;
        red.endStructure();
        QDBusArgument all;
        all.beginMap(QMetaType::fromType<QString>(), QMetaType::fromType<QVariantMap>());
        all.beginMapEntry();
        all << kNamespace
            << QVariantMap{{"color-scheme", scheme.load()}, {"accent-color", QVariant::fromValue(red)}};
        all.endMapEntry();
        all.endMap();
        return QVariant::fromValue(all);
    }
};

/// A session of KDE, whose accent colour is in a file. Until the file is written there is no accent colour.
class KdeSession {
public:
    KdeSession() {
        qputenv("XDG_CURRENT_DESKTOP", "KDE");
        for (const auto* const variable : {"XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"})
            qputenv(variable, folder.path().c_str());
    }
    KdeSession(const KdeSession&) = delete;
    KdeSession& operator=(const KdeSession&) = delete;
    ~KdeSession() {
        for (const auto* const variable : {"XDG_CURRENT_DESKTOP", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"})
            qunsetenv(variable);
    }

    void use(const std::string& accent) const {
        std::ofstream(folder.path() / "kdeglobals") << "[General]\nAccentColor=" << accent << "\n";
    }

private:
    ScratchFolder folder;
};

/// A private session bus with the portal in its own thread, as if it were another program.
class QtAppearanceTest : public OffscreenTest {
protected:
    QtAppearanceTest() {
        qunsetenv("GTK_THEME");
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        EXPECT_TRUE(daemon.waitForReadyRead());
        address = QString::fromUtf8(daemon.readLine()).trimmed();
        portal.moveToThread(&thread);
        thread.start();
    }
    ~QtAppearanceTest() override {
        QDBusConnection::disconnectFromBus("ours");
        QDBusConnection::disconnectFromBus("portal");
        thread.quit();
        thread.wait();
        daemon.kill();
        daemon.waitForFinished();
    }
    QtAppearanceTest(const QtAppearanceTest&) = delete;
    QtAppearanceTest& operator=(const QtAppearanceTest&) = delete;

    void startPortal() {
        QDBusConnection bus = QDBusConnection::connectToBus(address, "portal");
        ASSERT_TRUE(bus.registerVirtualObject(kPath, &portal));
        ASSERT_TRUE(bus.registerService(kService));
    }

    [[nodiscard]] static bool isDark() {
        return QApplication::palette().color(QPalette::Window).lightness() < 80;
    }
    [[nodiscard]] static QColor accent() { return QApplication::palette().color(QPalette::Highlight); }
    /// Waits for an accent colour, which comes later where the portal takes more than the 50 ms of `apply`.
    [[nodiscard]] static bool waitFor(const QColor& colour) {
        return QTest::qWaitFor([&colour] { return accent() == colour; });
    }

    KdeSession kde;
    QProcess daemon;
    QString address;
    QThread thread;
    Portal portal;
    bool hasBus = true;
    QtAppearance appearance{[this]() -> std::optional<QDBusConnection> {
        if (!hasBus)
            return std::nullopt;
        return QDBusConnection::connectToBus(address, "ours");
    }};
};

TEST_F(QtAppearanceTest, AppliesTheDesktopsPreferences) {
    startPortal();

    appearance.apply();

    EXPECT_TRUE(waitFor(QColor(Qt::red)));
    EXPECT_TRUE(isDark());
}

TEST_F(QtAppearanceTest, FollowsTheDesktop) {
    startPortal();
    appearance.apply();
    ASSERT_TRUE(waitFor(QColor(Qt::red)));
    portal.scheme = 2;

    QDBusMessage change = QDBusMessage::createSignal(kPath, kInterface, "SettingChanged");
    change << kNamespace << "color-scheme" << QVariant::fromValue(QDBusVariant(2U));
    QDBusConnection("portal").send(change);

    EXPECT_TRUE(QTest::qWaitFor([] { return !isDark(); }));
}

TEST_F(QtAppearanceTest, TheAccentColourArrivesWithoutWaitingOnceThereIsABus) {
    startPortal();

    appearance.busChanged();

    EXPECT_EQ(appearance.accent(), QColor(kAccent));
    EXPECT_TRUE(waitFor(QColor(Qt::red)));
    EXPECT_EQ(appearance.accent(), QColor(Qt::red));
}

TEST_F(QtAppearanceTest, QueriesTheDesktopOnlyOnce) {
    startPortal();
    appearance.apply();
    ASSERT_TRUE(waitFor(QColor(Qt::red)));
    portal.scheme = 2;

    appearance.apply();

    EXPECT_TRUE(isDark());
}

TEST_F(QtAppearanceTest, WindowsGetTheProgramsIcon) {
    EXPECT_TRUE(QApplication::windowIcon().isNull());

    appearance.apply();

    EXPECT_FALSE(QApplication::windowIcon().isNull());
}

TEST_F(QtAppearanceTest, WithoutAPortalItIsLight) {
    appearance.apply();

    EXPECT_FALSE(isDark());
    EXPECT_EQ(accent(), QColor("#0a72e3"));
}

TEST_F(QtAppearanceTest, WithoutABusItIsLightUntilThereIsOne) {
    startPortal();
    hasBus = false;
    appearance.apply();
    EXPECT_FALSE(isDark());

    hasBus = true;
    appearance.busChanged();

    EXPECT_TRUE(QTest::qWaitFor([] { return isDark(); }));
}

TEST_F(QtAppearanceTest, KeepsTheColoursWhenTheBusIsLost) {
    startPortal();
    appearance.apply();
    ASSERT_TRUE(waitFor(QColor(Qt::red)));
    hasBus = false;

    appearance.busChanged();
    QApplication::processEvents();

    EXPECT_TRUE(isDark());
}

TEST_F(QtAppearanceTest, WithoutAPortalItHasTheAccentColourOfTheDesktop) {
    kde.use("1,2,3");

    appearance.busChanged();

    EXPECT_TRUE(waitFor(QColor(1, 2, 3)));
}

TEST_F(QtAppearanceTest, WithoutABusItHasTheAccentColourOfTheDesktop) {
    kde.use("1,2,3");
    hasBus = false;

    appearance.busChanged();

    EXPECT_EQ(accent(), QColor(1, 2, 3));
}

TEST_F(QtAppearanceTest, ThePortalsAccentColourComesBeforeThatOfTheDesktop) {
    kde.use("1,2,3");
    startPortal();

    appearance.apply();

    EXPECT_TRUE(waitFor(QColor(Qt::red)));
}

TEST_F(QtAppearanceTest, AnAccentColourThatTheDesktopTakesBackGivesWayToTheProgramsOwn) {
    startPortal();
    appearance.apply();
    ASSERT_TRUE(waitFor(QColor(Qt::red)));

    portal.redPart = -1;
    appearance.busChanged();

    EXPECT_TRUE(QTest::qWaitFor([this] { return appearance.accent() == QColor(kAccent); }));
}

TEST_F(QtAppearanceTest, DoesNotWaitForASilentPortal) {
    startPortal();
    portal.isSilent = true;
    const Ticks ticks(std::chrono::milliseconds(50));

    appearance.apply();

    EXPECT_LT(ticks.count(), 40) << "periods, of which one is expected";
    EXPECT_FALSE(isDark());
}

} // namespace
} // namespace tessarel::qt
