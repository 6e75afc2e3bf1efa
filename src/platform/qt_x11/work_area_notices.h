// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/main_queue_port.h"

#include <QAbstractNativeEventFilter>
#include <QByteArray>

#include <cstdint>

namespace tessarel::qt {

/// Merges the events that tell Qt of a changed work area, which any client can cause.
///
/// Qt waits for the server at each of them, and handles all events that have arrived before it returns to its
/// event loop. If they come faster than the replies, it never returns. This filter drops them, and has the
/// server send Qt one of the same content in the next iteration of the main queue.
class WorkAreaNotices : public QAbstractNativeEventFilter {
public:
    /// Requires the application object, which must outlive this one, as must `queue`. Does nothing when Qt
    /// does not run on X11.
    explicit WorkAreaNotices(MainQueuePort& queue);
    WorkAreaNotices(const WorkAreaNotices&) = delete;
    WorkAreaNotices& operator=(const WorkAreaNotices&) = delete;
    ~WorkAreaNotices() override;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void sendNotice();

    MainQueuePort& m_queue;
    std::uint32_t m_workArea = 0;    // the atom; 0 when Qt does not run on X11
    std::uint32_t m_root = 0;        // the root window, whose property it is
    std::uint32_t m_window = 0;      // of Qt's connection, which receives our notice
    SubscriptionPtr m_scheduledSend; // null when none is pending
    bool m_isSent = false;           // our notice is on its way to Qt
};

} // namespace tessarel::qt
