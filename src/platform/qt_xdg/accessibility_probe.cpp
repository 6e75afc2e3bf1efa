// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/accessibility_probe.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusPendingCall>
#include <QObject>
#include <QString>
#include <QVariant>
#include <QtGlobal>

#include <algorithm>
#include <utility>

namespace tessarel::qt {

namespace {

/// Returns a call of the accessibility service that does not start it.
QDBusMessage serviceCall(const QString& interface, const QString& member) {
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"),
                                                          QStringLiteral("/org/a11y/bus"), interface, member);
    message.setAutoStartService(false);
    return message;
}

/// Returns whether the bridge asks the service for the address of the bus. Asking makes the service start the
/// bus.
bool isEnabled(const QVariantMap& status) {
    return qEnvironmentVariableIsSet("QT_LINUX_ACCESSIBILITY_ALWAYS_ON") ||
           status.value(QStringLiteral("ScreenReaderEnabled")).toBool() ||
           status.value(QStringLiteral("IsEnabled")).toBool();
}

} // namespace

AccessibilityProbe::AccessibilityProbe(QtMainQueue& queue, QDBusConnection sessionBus,
                                       const Announced& announced, std::chrono::milliseconds patience,
                                       std::function<void()> replied)
    : m_queue(queue), m_sessionBus(std::move(sessionBus)), m_patience(patience),
      m_replied(std::move(replied)), m_later(queue) {
    if (!announced.byEnvironment.empty()) {
        probe(announced.byEnvironment);
        return;
    }
    if (!announced.byScreen.empty())
        probe(announced.byScreen);
    QDBusMessage status =
        serviceCall(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
    status << QStringLiteral("org.a11y.Status");
    m_status = call(status);
}

AccessibilityProbe::State AccessibilityProbe::proceed() {
    if (m_status && m_status->isFinished()) {
        const QVariant status = resultOf(m_status);
        if (status.isValid() && isEnabled(qdbus_cast<QVariantMap>(status)))
            m_address = call(serviceCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")));
    }
    if (m_address && m_address->isFinished()) {
        if (const QString address = resultOf(m_address).toString(); !address.isEmpty())
            probe(address.toStdString());
    }
    bool isWaiting = m_status || m_address;
    for (Bus& bus : m_buses) {
        const BusProbe::State state = bus.probe.proceed();
        m_isSilent = m_isSilent || state == BusProbe::State::Full;
        isWaiting = isWaiting || state == BusProbe::State::Waiting;
        if (state != BusProbe::State::Waiting)
            bus.reply.reset();
    }
    if (m_isSilent)
        return State::Silent;
    return isWaiting ? State::Waiting : State::Replied;
}

/// Only buses that can be probed count as such that reply.
void AccessibilityProbe::probe(const std::string& address) {
    m_isSilent = m_isSilent || !BusProbe::supports(address);
    Bus& bus = m_buses.emplace_back(address);
    if (bus.probe.fileDescriptor() >= 0)
        bus.reply = m_queue.onReadable(bus.probe.fileDescriptor(), m_replied);
    else
        m_later.async(m_replied);
}

AccessibilityProbe::Call AccessibilityProbe::call(const QDBusMessage& message) {
    auto pending = std::make_unique<QDBusPendingCallWatcher>(
        m_sessionBus.asyncCall(message, static_cast<int>(m_patience.count())));
    QObject::connect(pending.get(), &QDBusPendingCallWatcher::finished, pending.get(),
                     [this] { m_later.async(m_replied); });
    return pending;
}

/// Ends the call and returns the result, which is invalid for an error.
QVariant AccessibilityProbe::resultOf(Call& finished) {
    const Call call = std::move(finished);
    m_isSilent = m_isSilent || call->error().type() == QDBusError::NoReply;
    return call->isError() ? QVariant() : call->reply().arguments().value(0);
}

} // namespace tessarel::qt
