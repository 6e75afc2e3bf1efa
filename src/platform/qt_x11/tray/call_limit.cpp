// SPDX-License-Identifier: MIT

#include "platform/qt_x11/tray/call_limit.h"

#include "platform/qt_x11/tray/icon_connections.h"

#include <QDBusConnection>
#include <QEvent>
#include <QPointer>
#include <QString>

namespace tessarel::qt {

void CallLimit::refresh() {
    for (const QDBusConnection& connection : iconConnections()) {
        for (const char* const path : {"/StatusNotifierItem", "/MenuBar"}) {
            if (QObject* const object = connection.objectRegisteredAt(QString::fromLatin1(path)))
                add(*object);
        }
    }
}

/// An event that is not handled makes Qt reply with an error. These objects have no queued slots and no other
/// filter.
bool CallLimit::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::MetaCall)
        return false;
    const auto start = m_queue.now();
    if (start - m_began >= kInterval) {
        m_began = start;
        m_calls = 0;
        m_work = {};
    }
    if (++m_calls > kFirstCalls && m_work >= kMostWork)
        return true;
    const QPointer<CallLimit> self(this); // a call may choose the row that ends the program
    watched->event(event);
    if (self)
        m_work += m_queue.now() - start;
    return true;
}

} // namespace tessarel::qt
