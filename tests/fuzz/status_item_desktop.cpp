// SPDX-License-Identifier: MIT

#include "fuzz/status_item_desktop.h"

#include "fuzz/input.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>

namespace tessarel::fuzz {

namespace {

/// Appends the numbers of the rows in a part of the menu: (ia{sv}av), a number, properties and rows.
void appendIds(const QDBusArgument& part, std::vector<int>& ids) {
    int id = 0;
    QVariantMap properties;
    part.beginStructure();
    part >> id >> properties;
    ids.push_back(id);
    part.beginArray();
    while (!part.atEnd()) {
        QDBusVariant child;
        part >> child;
        appendIds(child.variant().value<QDBusArgument>(), ids);
    }
    part.endArray();
    part.endStructure();
}

/// Returns whether a user can choose `row` in `menu`.
bool offers(const Menu& menu, const MenuItem& row) {
    return std::ranges::any_of(menu, [&row](const MenuItem& item) {
        return offers(item.submenu, row) ||
               (item == row && item.isEnabled && !item.isSeparator && item.submenu.empty());
    });
}

/// Returns Qt's connection for the icon, which is named after the process and a running number.
QDBusConnection connectionOfIcon() {
    constexpr int kMost = 10;
    QDBusConnection connection{QString()};
    for (int number = 1; number <= kMost && !connection.isConnected(); ++number)
        connection = QDBusConnection(QStringLiteral("org.kde.StatusNotifierItem-%1-%2")
                                         .arg(QCoreApplication::applicationPid())
                                         .arg(number));
    return connection;
}

x11test::Environment withBus(x11test::Environment environment) {
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + environment.at("XDG_RUNTIME_DIR") + "/bus";
    environment["QT_QPA_PLATFORM"] = "xcb";
    return environment;
}

} // namespace

StatusItemDesktop::Surroundings::Surroundings()
    : bus({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address",
           "--address=" + withBus(server.environment()).at("DBUS_SESSION_BUS_ADDRESS")},
          server.environment()) {
    (void)bus.readLine();
    for (const auto& [name, value] : withBus(server.environment()))
        ::setenv(name.c_str(), value.c_str(), 1);
    panel = std::make_unique<x11test::ChildProcess>(std::vector<std::string>{TESSAREL_STATUS_ITEM_PANEL},
                                                    withBus(server.environment()));
    (void)panel->readLine();
}

StatusItemDesktop::StatusItemDesktop(Menu menu) : m_menu(std::move(menu)) {
    m_bus.start();
    m_created = m_item.create({.menuNeedsUpdate = [this] { return m_menu; },
                               .itemSelected = [this](const MenuItem& row) { choose(row); }});
    (void)m_item.setSymbol("rectangle.split.2x2", "Tessarel");
    m_item.setTitle("Tessarel");
    bool isPlaced = false;
    m_item.whenPlaced([&](bool isShown) {
        isPlaced = true;
        require(isShown, "the icon is shown");
    });
    while (!isPlaced)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QApplication::processEvents();
    m_connection = std::make_unique<QDBusConnection>(connectionOfIcon());
    require(m_connection->isConnected(), "Qt has a connection for the icon");
    readIds();
    require(m_ids.size() > 1, "the menu has rows");
}

StatusItemDesktop::~StatusItemDesktop() = default;

QDBusMessage StatusItemDesktop::call(const char* path, const char* interface, const char* method,
                                     const QVariantList& arguments) const {
    QDBusMessage message =
        QDBusMessage::createMethodCall(m_connection->baseService(), QString::fromLatin1(path),
                                       QString::fromLatin1(interface), QString::fromLatin1(method));
    message.setArguments(arguments);
    return message;
}

void StatusItemDesktop::send(const QDBusMessage& call) {
    (void)m_connection->call(call);
    QApplication::processEvents();
    while (QWidget* const menu = QApplication::activePopupWidget())
        menu->hide(); // closing leaves a connection behind in Qt each time
    if (std::exchange(m_areIdsOld, false))
        readIds();
}

void StatusItemDesktop::readIds() {
    m_ids.clear();
    const QDBusMessage reply =
        m_connection->call(call("/MenuBar", "com.canonical.dbusmenu", "GetLayout", {0, -1, QStringList()}));
    if (reply.arguments().size() > 1)
        appendIds(reply.arguments().at(1).value<QDBusArgument>(), m_ids);
}

void StatusItemDesktop::choose(const MenuItem& row) {
    require(offers(m_menu, row), "only a row that the menu offers is chosen");
    m_areIdsOld = true; // the rows are rebuilt
}

} // namespace tessarel::fuzz
