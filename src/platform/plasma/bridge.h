// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "model/subscription.h"
#include "platform/plasma/reports.h"
#include "platform/wayland/bus_link.h"
#include "platform/wayland/compositor.h"
#include "platform/wayland/mirror.h"
#include "ports/deferred_work.h"
#include "ports/main_queue_port.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>

namespace tessarel::plasma {

/// The connection to KWin: a script that KWin runs for this program. It fills the mirror and places windows.
class Bridge : public wayland::Compositor {
public:
    /// The script is written to `folder`. `report` gets a text for the user if that fails, or KWin does not
    /// take or run the script. All referenced objects must outlive this one.
    Bridge(wayland::BusLink& link, wayland::Mirror& mirror, MainQueuePort& queue,
           std::filesystem::path folder, std::function<void(const std::string&)> report);
    Bridge(const Bridge&) = delete;
    Bridge& operator=(const Bridge&) = delete;
    /// Unloads the script.
    ~Bridge() override;

    /// Starts to load the script, in place of the one that an earlier run has left behind. If KWin does not
    /// take it, which it may not do yet, tries again later. Call it once the bus has accepted the link.
    void load();
    /// Waits until the script has reported all windows, at most for `patience`.
    void awaitWindows(std::chrono::milliseconds patience);
    /// Returns whether KWin has accepted the script, or has not replied yet. False also while an accepted
    /// script has reported nothing for 10 s, as one does that fails in KWin.
    [[nodiscard]] bool isAccepted() const { return m_isAccepted && (!m_isOverdue || m_mirror.isReady()); }
    /// Returns whether KWin has not taken the script, and is to be asked again.
    [[nodiscard]] bool isRetrying() const { return m_nextAttempt != nullptr; }
    /// Calls `failed` when the script cannot be written, when KWin has not taken it for 10 s, and again at
    /// the last attempt, or when an accepted script has reported nothing for 10 s. It may still run later,
    /// unless it cannot be written.
    [[nodiscard]] SubscriptionPtr onFailed(std::function<void()> failed);

    /// Brings this program's windows to the user: those that there are, or else the next one.
    void bringOwnWindows();

    void place(wayland::WindowId window, const Rect& frame) override;
    bool waitUntilSettled(wayland::WindowId window, std::chrono::milliseconds patience) override;

private:
    /// A request that the script has not answered.
    struct UnderWay {
        std::uint64_t serial = 0;
        MainQueuePort::TimePoint since;
    };

    [[nodiscard]] std::filesystem::path file() const;
    [[nodiscard]] bool writeScript() const;
    void tryToLoad(int attempts);
    void awaitReport();
    void fail(const std::string& problem);
    void handle(const wayland::BusMessage& message);
    void handleReport(const std::string& text);
    void end(const Settled& settled);
    void keepForCommands(std::uint64_t token);
    void send(const std::string& command);
    void sendCommands();

    wayland::BusLink& m_link;
    wayland::Mirror& m_mirror;
    MainQueuePort& m_queue;
    std::filesystem::path m_folder;
    std::function<void(const std::string&)> m_report;
    std::string m_compositorName; ///< unique bus name of KWin; only its calls are accepted
    bool m_isAccepted = true;
    bool m_isOverdue = false;        ///< the script should have reported by now
    std::uint64_t m_waitingCall = 0; ///< token of the script's call of "next"; 0 if there is none
    std::string m_unsent;            ///< commands that wait for that call, without the brackets of the list
    std::uint64_t m_lastSerial = 0;
    std::map<wayland::WindowId, UnderWay> m_underWay;
    std::set<wayland::WindowId> m_late; ///< whose last placement is over, but not carried out, nor waited for
    Signal<> m_failed;
    SubscriptionPtr m_calls;
    SubscriptionPtr m_delivered;
    SubscriptionPtr m_nextAttempt; ///< null unless KWin has not taken the script, and is asked again
    SubscriptionPtr m_refusal;     ///< the time until `onFailed` reports that KWin refuses the script
    SubscriptionPtr m_overdue;
};

} // namespace tessarel::plasma
