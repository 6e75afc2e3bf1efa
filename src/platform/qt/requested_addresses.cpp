// SPDX-License-Identifier: MIT

#include "platform/qt/requested_addresses.h"

#include <QCoreApplication>
#include <QFileOpenEvent>
#include <QUrl>

#include <utility>

namespace tessarel::qt {

RequestedAddresses::RequestedAddresses(std::function<void(const std::string& address)> requested)
    : m_requested(std::move(requested)) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool RequestedAddresses::eventFilter(QObject* object, QEvent* event) {
    if (object != QCoreApplication::instance() || event->type() != QEvent::FileOpen)
        return false;
    const QUrl address = static_cast<QFileOpenEvent*>(event)->url();
    if (!address.isLocalFile())
        m_requested(address.toEncoded().toStdString());
    return true;
}

} // namespace tessarel::qt
