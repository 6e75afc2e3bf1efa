// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt/qt_main_queue.h"
#include "platform/qt_x11/tray/qt_status_item.h"
#include "platform/qt_xdg/session_bus.h"
#include "support/x11/child_process.h"
#include "support/x11/x_server.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariant>

#include <array>
#include <memory>
#include <vector>

namespace tessarel::fuzz {

/// A status item on a private X server and a private session bus, where a process without a screen plays the
/// panel. Calls are delivered within this process, without the bus.
class StatusItemDesktop {
public:
    explicit StatusItemDesktop(Menu menu);
    StatusItemDesktop(const StatusItemDesktop&) = delete;
    StatusItemDesktop& operator=(const StatusItemDesktop&) = delete;
    ~StatusItemDesktop();

    /// Returns the numbers of the rows that the item shows at present.
    [[nodiscard]] const std::vector<int>& ids() const { return m_ids; }
    [[nodiscard]] QDBusMessage call(const char* path, const char* interface, const char* method,
                                    const QVariantList& arguments) const;
    /// Makes a call and lets the program do what follows from it. Ends the fuzzer if a row is chosen that a
    /// user could not choose.
    void send(const QDBusMessage& call);

private:
    /// The means of the desktop, which have to be there before the application object.
    struct Surroundings {
        Surroundings();

        x11test::XServer server;
        x11test::ChildProcess bus;
        std::unique_ptr<x11test::ChildProcess> panel;
    };

    void readIds();
    void choose(const MenuItem& row);

    Surroundings m_surroundings;
    Menu m_menu;
    int m_count = 1;
    std::array<char, 5> m_name{"fuzz"};
    std::array<char*, 2> m_arguments{m_name.data(), nullptr};
    QApplication m_application{m_count, m_arguments.data()};
    qt::QtMainQueue m_queue;
    qt::SessionBus m_bus{m_queue};
    qt::QtStatusItem m_item{m_queue, m_bus};
    SubscriptionPtr m_created;
    std::unique_ptr<QDBusConnection> m_connection;
    std::vector<int> m_ids;
    bool m_areIdsOld = true;
};

} // namespace tessarel::fuzz
