// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/wayland/bus_link.h"
#include "ports/desktop/rect.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tessarel::plasmatest {

/// A window as KWin itself sees it.
struct SeenWindow {
    std::string name; ///< KWin's own identifier
    std::string title;
    std::string windowClass;
    int pid = 0;
    Rect frame;
    bool isActive = false;
    bool isTiled = false;
    bool isMinimized = false;
    bool isFullScreen = false;
    std::vector<std::string> activities; ///< on all if empty
};

/// A script of the test in KWin that reports all windows after every change, without the program under test.
class Probe {
public:
    /// Waits until the first report has arrived. The script is written to `folder`. Throws std::runtime_error
    /// if KWin does not run the script.
    Probe(const std::string& busAddress, const std::filesystem::path& folder);
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;
    ~Probe() = default;

    /// Returns the windows as last reported, back to front.
    [[nodiscard]] const std::vector<SeenWindow>& windows() const { return m_windows; }
    /// Waits for reports until `holds` returns true. Returns false if it does not.
    bool waitUntil(const std::function<bool()>& holds);
    /// Waits until every report has arrived that KWin has sent so far.
    void roundTrip();
    /// Runs JavaScript once in KWin, and waits until it has run. Throws std::runtime_error if it fails.
    void run(const std::string& script);

    [[nodiscard]] wayland::BusLink& link() { return m_link; }

private:
    /// Waits for the reply to a call to KWin. Throws std::runtime_error if there is none, or an error.
    [[nodiscard]] wayland::BusMessage replyTo(wayland::BusCall call);
    void handle(const std::string& report);

    wayland::BusLink m_link;
    std::filesystem::path m_folder;
    int m_scripts = 0;
    bool m_hasReport = false;
    std::vector<SeenWindow> m_windows;
    SubscriptionPtr m_reports;
};

} // namespace tessarel::plasmatest
